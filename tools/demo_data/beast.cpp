#include "tools/demo_data/beast.h"

#include <array>
#include <utility>

namespace korvane::demo
{

namespace
{

struct bone_row
{
    const char* name;
    const char* parent;
    vec3 position;
    const char* tail; // the bone at which it ends; null: it points as its parent does
};

constexpr bone_row trunk[] = {
    {"root", nullptr, {0, 0, 0}, nullptr},
    {"pelvis", "root", {0, 1.38, 0.55}, "spine_0"},
    {"spine_0", "pelvis", {0, 1.42, 0.33}, "spine_1"},
    {"spine_1", "spine_0", {0, 1.40, 0.05}, "spine_2"},
    {"spine_2", "spine_1", {0, 1.42, -0.25}, "neck_0"},
    {"neck_0", "spine_2", {0, 1.40, -0.52}, "neck_1"},
    {"neck_1", "neck_0", {0, 1.60, -0.70}, "neck_2"},
    {"neck_2", "neck_1", {0, 1.79, -0.84}, "head"},
    {"head", "neck_2", {0, 1.93, -0.93}, "head_tip"},
    {"jaw", "head", {0, 1.82, -0.97}, nullptr},
    {"head_tip", "head", {0, 1.62, -1.24}, nullptr},
    {"tail_0", "pelvis", {0, 1.40, 0.76}, "tail_1"},
    {"tail_1", "tail_0", {0, 1.25, 0.87}, "tail_2"},
    {"tail_2", "tail_1", {0, 1.02, 0.93}, "tail_3"},
    {"tail_3", "tail_2", {0, 0.78, 0.95}, nullptr},
};

constexpr bone_row side[] = {
    // the left one; the right one is its mirror image
    {"ear_l", "head", {0.06, 2.02, -0.89}, nullptr},
    {"scapula_l", "spine_2", {0.12, 1.44, -0.28}, "upperarm_l"},
    {"upperarm_l", "scapula_l", {0.16, 1.10, -0.55}, "forearm_l"},
    {"forearm_l", "upperarm_l", {0.17, 0.92, -0.34}, "cannon_fore_l"},
    {"cannon_fore_l", "forearm_l", {0.165, 0.51, -0.405}, "pastern_fore_l"},
    {"pastern_fore_l", "cannon_fore_l", {0.165, 0.20, -0.37}, "hoof_fore_l"},
    {"hoof_fore_l", "pastern_fore_l", {0.165, 0.07, -0.43}, nullptr},
    {"thigh_l", "pelvis", {0.13, 1.24, 0.60}, "gaskin_l"},
    {"gaskin_l", "thigh_l", {0.18, 0.94, 0.42}, "cannon_hind_l"},
    {"cannon_hind_l", "gaskin_l", {0.165, 0.57, 0.76}, "pastern_hind_l"},
    {"pastern_hind_l", "cannon_hind_l", {0.165, 0.21, 0.70}, "hoof_hind_l"},
    {"hoof_hind_l", "pastern_hind_l", {0.165, 0.07, 0.64}, nullptr},
};

std::string sided(const char* name, bool is_left)
{
    std::string result = name;
    if (!is_left && result.ends_with("_l"))
        result.back() = 'r';
    return result;
}

rig_skeleton makeBeastRig()
{
    rig_skeleton result{"beast01", {}};
    std::vector<std::string> tails;
    const auto add = [&](const bone_row& row, bool is_left) {
        const vec3 mirror{is_left ? 1.0 : -1.0, 1, 1};
        const int parent = row.parent ? result.find(sided(row.parent, is_left)) : -1;
        result.bones.push_back({sided(row.name, is_left), parent, row.position * mirror, {}});
        tails.push_back(row.tail ? sided(row.tail, is_left) : "");
    };
    for (const bone_row& row : trunk)
        add(row, true);
    for (const bool is_left : {true, false})
        for (const bone_row& row : side)
            add(row, is_left);
    for (std::size_t i = 1; i < tails.size(); ++i) // the root keeps the world's axes
    {
        rig_bone& each = result.bones[i];
        if (tails[i].empty())
            each.rotation = result.bones[static_cast<std::size_t>(each.parent)].rotation;
        else
        {
            const vec3 end = result.bones[static_cast<std::size_t>(result.find(tails[i]))].position;
            each.rotation = turnBetween({0, 0, -1}, normalised(end - each.position), {0, 1, 0});
        }
    }
    return result;
}

class beast_poser
{
public:
    explicit beast_poser(const beast_controls& controls) : m_controls(controls), m_rig(beastRig()) {}

    rig_pose pose()
    {
        body();
        foreleg(m_controls.fore_left, "_l");
        foreleg(m_controls.fore_right, "_r");
        hindleg(m_controls.hind_left, "_l");
        hindleg(m_controls.hind_right, "_r");
        return m_rig.pose();
    }

private:
    static int bone(const std::string& name) { return beastRig().find(name); }

    void body()
    {
        m_rig.move(bone("root"), m_controls.root);
        m_rig.turn(bone("root"), turnOf({0, m_controls.facing, 0}));
        m_rig.move(bone("pelvis"), m_controls.body);
        m_rig.turn(bone("pelvis"), turnOf(m_controls.body_turn));
        for (const char* name : {"spine_0", "spine_1", "spine_2"})
            m_rig.turn(bone(name), turnOf(m_controls.back * (1.0 / 3)));
        for (const char* name : {"neck_0", "neck_1", "neck_2"})
            m_rig.turn(bone(name), turnOf(m_controls.neck * (1.0 / 3)));
        m_rig.turn(bone("head"), turnOf(m_controls.head));
        m_rig.turn(bone("jaw"), turnOf({m_controls.jaw, 0, 0}));
        for (const char* name : {"ear_l", "ear_r"})
            m_rig.turn(bone(name), turnOf({m_controls.ears, 0, 0}));
        constexpr std::array<double, 4> share = {0.4, 0.3, 0.2, 0.1};
        for (std::size_t i = 0; i < share.size(); ++i)
            m_rig.turn(bone("tail_" + std::to_string(i)),
                       turnOf({m_controls.tail_lift * share[i], 0, -m_controls.tail_sway * share[i]}));
    }

    void foreleg(const hoof_controls& hoof, const std::string& end)
    {
        m_rig.turn(bone("scapula" + end), turnAbout({1, 0, 0}, hoof.swing * 0.5));
        m_rig.turn(bone("upperarm" + end), turnAbout({1, 0, 0}, hoof.swing * 0.5));
        leg(hoof, bone("forearm" + end), bone("cannon_fore" + end), bone("pastern_fore" + end));
    }
    void hindleg(const hoof_controls& hoof, const std::string& end)
    {
        m_rig.turn(bone("thigh" + end), turnAbout({1, 0, 0}, hoof.swing));
        leg(hoof, bone("gaskin" + end), bone("cannon_hind" + end), bone("pastern_hind" + end));
    }
    void leg(const hoof_controls& hoof, int upper, int lower, int pastern)
    {
        const vec3 rest = m_rig.restPosition(pastern), tip{rest.x, 0, rest.z - 0.14};
        const quaternion facing = turnOf({0, m_controls.facing, 0});
        const quaternion roll = turnAbout({1, 0, 0}, -hoof.roll);
        const vec3 fetlock = tip + rotated(roll, rest - tip);
        const quaternion hips = m_rig.worldTurn(bone("pelvis"));
        m_rig.reach(upper, lower, pastern, rotated(facing, fetlock) + hoof.place,
                    rotated(hips, m_rig.restPole(upper, lower, pastern)));
        m_rig.turnInWorld(pastern, facing * roll);
    }

    const beast_controls& m_controls;
    rig m_rig;
};

} // namespace

const rig_skeleton& beastRig()
{
    static const rig_skeleton instance = makeBeastRig();
    return instance;
}

std::span<const bone> beastBones()
{
    static const std::vector<bone> bones = [] {
        std::vector<bone> result;
        for (const rig_bone& each : beastRig().bones)
            result.push_back({each.name, each.parent, each.position, -1});
        const auto addTail = [&result](const bone_row& row, bool is_left) {
            if (row.tail)
                result[static_cast<std::size_t>(beastRig().find(sided(row.name, is_left)))].tail =
                    beastRig().find(sided(row.tail, is_left));
        };
        for (const bone_row& row : trunk)
            addTail(row, true);
        for (const bool is_left : {true, false})
            for (const bone_row& row : side)
                addTail(row, is_left);
        return result;
    }();
    return bones;
}

rig_pose beastPose(const beast_controls& controls)
{
    return beast_poser(controls).pose();
}

} // namespace korvane::demo
