#pragma once

// The skeletons and animations of the demo data as files, every animation in both versions of the format:
//
//   animations/skeletons/humanoid01.anim, beast01.anim
//   animations/battle/humanoid01/walk/hu1_walk_forward.anim       version 7; some with static values, some without
//   animations/battle/humanoid01/walk/hu1_walk_forward_v5.anim    version 5

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace korvane::demo
{

struct made_animation
{
    std::string path;
    std::string about;
    std::vector<std::byte> bytes;
};

// The skeletons first. False from the sink stops, and is returned.
[[nodiscard]] bool makeAnimations(const std::function<bool(made_animation made)>& sink);

// What archives have instead of the files of the same path: an older copy of the humanoid skeleton, with the same bind
// pose, and the mod's wave.
[[nodiscard]] made_animation olderSkeleton();
[[nodiscard]] made_animation moddedAnimation();

} // namespace korvane::demo
