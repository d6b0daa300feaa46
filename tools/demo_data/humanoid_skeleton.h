#pragma once

// The skeleton "humanoid01" of the demo data: names, parents and bind positions. Space: metres, y up, left-handed as
// the decoded models are; the figure stands on y = 0, looks along -z, its left hand is at +x. A bone's axes are those
// of the world in the bind pose (identity rotations), so a local translation is the difference to the parent's
// position.

#include "tools/demo_data/demo_math.h"

#include <cstddef>
#include <span>
#include <string_view>

namespace korvane::demo
{

struct bone
{
    std::string_view name;
    int parent; // index, lower than the bone's own; -1: the root
    vec3 position;
    int tail; // the bone (index) at whose position this one ends; -1: it ends where it begins
};

inline constexpr std::string_view skeleton_name = "humanoid01";

[[nodiscard]] std::span<const bone> humanoidBones();
[[nodiscard]] int boneIndex(std::string_view name); // of a bone that exists

// Square of the distance from a point to the line from the position of one of the bones to its tail.
[[nodiscard]] double squaredDistanceToBone(std::span<const bone> bones, int index, vec3 point);

} // namespace korvane::demo
