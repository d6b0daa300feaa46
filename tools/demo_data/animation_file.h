#pragma once

// Builds an .anim file (docs/formats/anim.md) in memory out of poses. The poses are in the program's space; the file is
// mirrored in X, and the version 7 block of static values stands where readers look for it: behind the maps.

#include "tools/demo_data/rig.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace korvane::demo
{

enum class still_bones // what becomes of a bone that keeps its rest value through all frames
{
    tracks,  // a track like any other
    nothing, // no track
    constant // version 7: no track, its value among the static ones
};

struct animation_source
{
    std::uint32_t version = 7; // 5 or 7
    double frame_rate = 20;
    still_bones still = still_bones::nothing;
    const rig_skeleton* skeleton = nullptr;
    std::span<const rig_pose> frames; // each with a joint for every bone
};

[[nodiscard]] std::vector<std::byte> animationBytes(const animation_source& source);

// The skeleton itself: the rest pose as the only frame, a track for every bone.
[[nodiscard]] std::vector<std::byte> skeletonBytes(const rig_skeleton& skeleton, std::uint32_t version);

} // namespace korvane::demo
