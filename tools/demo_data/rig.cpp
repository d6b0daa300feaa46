#include "tools/demo_data/rig.h"

#include "tools/demo_data/humanoid_skeleton.h"

#include <algorithm>
#include <cassert>

namespace korvane::demo
{

namespace
{

rig_skeleton makeHumanoidRig()
{
    rig_skeleton result{std::string(skeleton_name), {}};
    for (const bone& each : humanoidBones())
        result.bones.push_back({std::string(each.name), each.parent, each.position, {}});
    return result;
}

} // namespace

const rig_skeleton& humanoidRig()
{
    static const rig_skeleton instance = makeHumanoidRig();
    return instance;
}

int rig_skeleton::find(std::string_view bone) const
{
    for (std::size_t i = 0; i < bones.size(); ++i)
        if (bones[i].name == bone)
            return static_cast<int>(i);
    assert(false);
    return 0;
}

rig::rig(const rig_skeleton& skeleton)
    : m_skeleton(skeleton)
    , m_turns(skeleton.bones.size())
    , m_offsets(skeleton.bones.size())
{
}

quaternion rig::worldTurn(int bone) const
{
    quaternion result;
    for (; bone >= 0; bone = parent(bone))
        result = localTurn(bone) * result;
    return result;
}

vec3 rig::position(int bone) const
{
    vec3 result;
    for (; bone >= 0; bone = parent(bone))
    {
        const int above = parent(bone);
        const vec3 from = above < 0 ? vec3{} : restPosition(above);
        result =
            restPosition(bone) - from + m_offsets[static_cast<std::size_t>(bone)] + rotated(localTurn(bone), result);
    }
    return result;
}

void rig::turnInWorld(int bone, const quaternion& rotation)
{
    const int above = parent(bone);
    turn(bone, above < 0 ? rotation : normalisedTurn(inverse(worldTurn(above)) * rotation));
}

vec3 rig::restPole(int upper, int lower, int end) const
{
    const vec3 along = normalised(restPosition(end) - restPosition(upper));
    const vec3 bend = restPosition(lower) - restPosition(upper);
    return normalised(bend - along * dot(bend, along));
}

void rig::reach(int upper, int lower, int end, vec3 target, vec3 pole)
{
    const vec3 rest_first = restPosition(lower) - restPosition(upper);
    const vec3 rest_second = restPosition(end) - restPosition(lower);
    const double first = length(rest_first), second = length(rest_second);
    const vec3 start = position(upper);
    const vec3 way = target - start;
    const vec3 along = normalised(way, {0, -1, 0});
    const double reach = std::clamp(length(way), std::abs(first - second) + 0.02, (first + second) * 0.9998);
    const vec3 bend = normalised(pole - along * dot(pole, along), {0, 0, -1});
    const double part = (first * first - second * second + reach * reach) / (2 * reach);
    const double height = std::sqrt(std::max(0.0, first * first - part * part));
    const vec3 joint = along * part + bend * height;

    const vec3 rest_along = normalised(restPosition(end) - restPosition(upper));
    const vec3 rest_hinge = normalised(cross(rest_along, restPole(upper, lower, end)));
    const vec3 hinge = normalised(cross(along, bend));
    turnInWorld(upper, turnOfFrame(normalised(rest_first), rest_hinge, normalised(joint), hinge));
    turnInWorld(lower, turnOfFrame(normalised(rest_second), rest_hinge, normalised(along * reach - joint), hinge));
}

rig_pose rig::pose() const
{
    rig_pose result;
    result.reserve(m_turns.size());
    for (std::size_t i = 0; i < m_turns.size(); ++i)
    {
        const rig_bone& each = m_skeleton.bones[i];
        const quaternion back =
            each.parent < 0 ? quaternion{} : inverse(m_skeleton.bones[static_cast<std::size_t>(each.parent)].rotation);
        const vec3 from = each.parent < 0 ? vec3{} : restPosition(each.parent);
        result.push_back(
            {rotated(back, each.position - from + m_offsets[i]), normalisedTurn(back * m_turns[i] * each.rotation)});
    }
    return result;
}

} // namespace korvane::demo
