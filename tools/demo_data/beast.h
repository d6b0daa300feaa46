#pragma once

// The second demo skeleton, "beast01": a horse of 39 bones, about 1.5 metres high at the withers, that looks along -z.
// A bone's -z points along it in the rest pose, so its rotations differ from bone to bone.

#include "tools/demo_data/humanoid_skeleton.h"
#include "tools/demo_data/motion_keys.h"
#include "tools/demo_data/rig.h"

namespace korvane::demo
{

[[nodiscard]] const rig_skeleton& beastRig();
[[nodiscard]] std::span<const bone> beastBones(); // the same, for building its mesh

struct hoof_controls
{
    vec3 place;       // of the hoof, against the rest pose, in the world's axes
    double roll = 0;  // degrees: the hoof rises about its tip
    double swing = 0; // the shoulder or the thigh goes forward, degrees
};

struct beast_controls // metres and degrees, as turnOf() has them
{
    vec3 root;
    double facing = 0;
    vec3 body, body_turn; // at the pelvis
    vec3 back;            // bends the spine
    vec3 neck, head;
    double jaw = 0, ears = 0;
    double tail_lift = 0, tail_sway = 0;
    hoof_controls fore_left, fore_right, hind_left, hind_right;
};

[[nodiscard]] rig_pose beastPose(const beast_controls& controls);

} // namespace korvane::demo
