#include "tools/demo_data/humanoid_skeleton.h"

#include <cassert>
#include <string>
#include <vector>

namespace korvane::demo
{

namespace
{

struct bone_row
{
    const char* name;
    const char* parent;
    vec3 position;
    const char* tail;
};

// The trunk, and one side of everything that comes in pairs; "_l" stands for both sides where the pose is symmetric.
constexpr bone_row trunk[] = {
    {"root", nullptr, {0, 0, 0}, nullptr},
    {"pelvis", "root", {0, 0.985, 0.005}, "spine_0"},
    {"spine_0", "pelvis", {0, 1.07, 0.005}, "spine_1"},
    {"spine_1", "spine_0", {0, 1.19, 0.0}, "spine_2"},
    {"spine_2", "spine_1", {0, 1.32, 0.01}, "neck"},
    {"neck", "spine_2", {0, 1.475, 0.025}, "head"},
    {"head", "neck", {0, 1.565, 0.01}, "head_tip"},
    {"head_tip", "head", {0, 1.79, 0.0}, nullptr},
    {"jaw", "head", {0, 1.585, -0.035}, nullptr},
    {"cape_0", "spine_2", {0, 1.42, 0.13}, "cape_1"},
    {"cape_1", "cape_0", {0, 1.05, 0.20}, "cape_2"},
    {"cape_2", "cape_1", {0, 0.70, 0.26}, "cape_3"},
    {"cape_3", "cape_2", {0, 0.40, 0.31}, nullptr},
};

constexpr bone_row leg[] = {
    {"upperleg_l", "pelvis", {0.095, 0.945, 0.0}, "lowerleg_l"},
    {"upperleg_roll_l", "upperleg_l", {0.105, 0.74, -0.005}, "lowerleg_l"},
    {"lowerleg_l", "upperleg_l", {0.118, 0.52, -0.012}, "foot_l"},
    {"foot_l", "lowerleg_l", {0.135, 0.095, 0.025}, "toe_l"},
    {"toe_l", "foot_l", {0.16, 0.03, -0.105}, nullptr},
};

struct arm_pose // the left arm carries the shield before the body, the right one holds the sword upright
{
    vec3 shoulder, elbow, wrist, knuckles;
    vec3 across; // from the index to the little finger, unit length
    vec3 curl;   // where the finger tips go from the knuckles, unit length
};

constexpr arm_pose left_arm = {{0.193, 1.425, 0.012},  {0.322, 1.168, 0.050}, {0.212, 1.108, -0.172},
                               {0.172, 1.090, -0.250}, {0, -0.97, 0.25},      {-0.89, 0.05, 0.45}};
constexpr arm_pose right_arm = {{-0.193, 1.425, 0.012},  {-0.325, 1.170, 0.045}, {-0.402, 1.040, -0.165},
                                {-0.426, 1.006, -0.248}, {0.16, -0.91, 0.38},    {0.97, 0.18, 0.10}};

class table
{
public:
    table()
    {
        m_bones.reserve(80);
        for (const bone_row& row : trunk)
            add(row.name, row.parent ? row.parent : "", row.position, row.tail ? row.tail : "");
        addArm("_l", left_arm);
        addArm("_r", right_arm);
        for (const double side : {1.0, -1.0})
            for (const bone_row& row : leg)
                add(sided(row.name, side), sided(row.parent, side), row.position * vec3{side, 1, 1},
                    row.tail ? sided(row.tail, side) : "");
        add("be_prop_0", "hand_r", right_arm.knuckles + right_arm.curl * 0.03, "");
        add("be_prop_1", "hand_l", left_arm.knuckles + left_arm.curl * 0.03, "");
        m_names.shrink_to_fit();
        for (std::size_t i = 0; i < m_bones.size(); ++i)
        {
            m_bones[i].name = m_names[i];
            m_bones[i].parent = find(m_parents[i]);
            m_bones[i].tail = find(m_tails[i]);
        }
    }

    std::span<const bone> bones() const { return m_bones; }
    int find(std::string_view name) const
    {
        for (std::size_t i = 0; i < m_names.size(); ++i)
            if (m_names[i] == name)
                return static_cast<int>(i);
        return -1;
    }

private:
    static std::string sided(std::string name, double side)
    {
        if (side < 0 && name.ends_with("_l"))
            name.back() = 'r';
        return name;
    }
    void add(std::string name, std::string parent, vec3 position, std::string tail)
    {
        m_bones.push_back({{}, -1, position, -1});
        m_names.push_back(std::move(name));
        m_parents.push_back(std::move(parent));
        m_tails.push_back(std::move(tail));
    }
    void addArm(const std::string& side, const arm_pose& pose)
    {
        add("clav" + side, "spine_2", {pose.shoulder.x * 0.15, 1.435, 0.0}, "upperarm" + side);
        add("upperarm" + side, "clav" + side, pose.shoulder, "lowerarm" + side);
        add("upperarm_roll" + side, "upperarm" + side, mix(pose.shoulder, pose.elbow, 0.5), "lowerarm" + side);
        add("lowerarm" + side, "upperarm" + side, pose.elbow, "hand" + side);
        add("lowerarm_roll" + side, "lowerarm" + side, mix(pose.elbow, pose.wrist, 0.5), "hand" + side);
        add("hand" + side, "lowerarm" + side, pose.wrist, "middle_0" + side);
        const vec3 forward = normalised(pose.knuckles - pose.wrist);
        const char* fingers[] = {"index", "middle", "ring", "pinky"};
        for (int i = 0; i < 4; ++i)
        {
            const vec3 base = pose.knuckles + pose.across * (0.021 * (i - 1.5));
            const double size = i == 1 ? 1.0 : i == 3 ? 0.8 : 0.93;
            addFinger(fingers[i] + std::string("_"), side,
                      {base, base + mix(forward, pose.curl, 0.45) * (0.036 * size),
                       base + mix(forward, pose.curl, 0.8) * (0.036 * size) + pose.curl * (0.03 * size)});
        }
        const vec3 thumb = mix(pose.wrist, pose.knuckles, 0.35) - pose.across * 0.036 + pose.curl * 0.014;
        addFinger("thumb_", side,
                  {thumb, thumb + forward * 0.034 - pose.across * 0.006 + pose.curl * 0.016,
                   thumb + forward * 0.052 + pose.curl * 0.043});
    }
    void addFinger(const std::string& name, const std::string& side, const vec3 (&joints)[3])
    {
        for (int i = 0; i < 3; ++i)
            add(name + static_cast<char>('0' + i) + side,
                i == 0 ? "hand" + side : name + static_cast<char>('0' + i - 1) + side, joints[i],
                i == 2 ? "" : name + static_cast<char>('1' + i) + side);
    }

    std::vector<bone> m_bones;
    std::vector<std::string> m_names, m_parents, m_tails;
};

const table& theTable()
{
    static const table instance;
    return instance;
}

} // namespace

std::span<const bone> humanoidBones()
{
    return theTable().bones();
}

int boneIndex(std::string_view name)
{
    const int index = theTable().find(name);
    assert(index >= 0);
    return index;
}

double squaredDistanceToBone(std::span<const bone> bones, int index, vec3 point)
{
    const bone& from = bones[static_cast<std::size_t>(index)];
    const vec3 begin = from.position;
    const vec3 axis = from.tail < 0 ? vec3{} : bones[static_cast<std::size_t>(from.tail)].position - begin;
    const double size = dot(axis, axis);
    const double along = size > 0 ? clamp01(dot(point - begin, axis) / size) : 0;
    const vec3 difference = point - (begin + axis * along);
    return dot(difference, difference);
}

} // namespace korvane::demo
