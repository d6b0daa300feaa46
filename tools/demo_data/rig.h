#pragma once

// Poses a skeleton: bones are turned and moved against the rest pose, and legs and arms reach for a point. Turns are
// given in the axes of the rest pose's world, whatever a bone's own axes are; space as in humanoid_skeleton.h.

#include "tools/demo_data/rotation.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace korvane::demo
{

struct rig_bone
{
    std::string name;
    int parent = -1;     // index, lower than the bone's own
    vec3 position;       // in the rest pose
    quaternion rotation; // of the bone's axes in the rest pose, against the world's
};

struct rig_skeleton
{
    std::string name;
    std::vector<rig_bone> bones;

    int find(std::string_view bone) const; // of a bone that exists
};

struct rig_joint // in the parent's axes
{
    vec3 translation;
    quaternion rotation;
};
using rig_pose = std::vector<rig_joint>; // one for each bone

[[nodiscard]] const rig_skeleton& humanoidRig(); // the skeleton of humanoid_skeleton.h

class rig
{
public:
    // The skeleton outlives the rig. Without a call the pose is the rest pose.
    explicit rig(const rig_skeleton& skeleton);

    const rig_skeleton& skeleton() const { return m_skeleton; }

    // Against the rest pose, on top of what the parent does. The last call counts.
    void turn(int bone, const quaternion& rotation) { at(m_turns, bone) = rotation; }
    void move(int bone, vec3 offset) { at(m_offsets, bone) = offset; }
    // The bone's turn against the rest pose as the world sees it, whatever the parents do.
    void turnInWorld(int bone, const quaternion& rotation);
    // Turns upper and its child lower so that lower's child end comes to lie at the target, or as near as the bones are
    // long. The joint between them bends towards pole.
    void reach(int upper, int lower, int end, vec3 target, vec3 pole);
    // The direction towards which the joint bends in the rest pose.
    vec3 restPole(int upper, int lower, int end) const;

    vec3 restPosition(int bone) const { return m_skeleton.bones[static_cast<std::size_t>(bone)].position; }
    vec3 position(int bone) const;        // in the world
    quaternion worldTurn(int bone) const; // against the rest pose
    const quaternion& localTurn(int bone) const { return m_turns[static_cast<std::size_t>(bone)]; }

    [[nodiscard]] rig_pose pose() const;

private:
    template <class type>
    static type& at(std::vector<type>& values, int bone)
    {
        return values[static_cast<std::size_t>(bone)];
    }
    int parent(int bone) const { return m_skeleton.bones[static_cast<std::size_t>(bone)].parent; }

    const rig_skeleton& m_skeleton;
    std::vector<quaternion> m_turns;
    std::vector<vec3> m_offsets;
};

} // namespace korvane::demo
