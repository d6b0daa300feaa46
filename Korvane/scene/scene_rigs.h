#pragma once

// From a skeleton's id to a rig of a scene, and what of a model does not fit the skeleton that it names. Nothing is
// shown in silence that is not as the files say: each fault is a line.

#include "Korvane/game/game_data.h"
#include "Korvane/scene/loaded_scene.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

// What a skeleton may have: as many matrices as the shader holds. Bones beyond them stay in the bind pose.
inline constexpr std::size_t max_rig_bones = 256;

// Looks the skeleton of an id up, as for a model at that path, and reads it. Always gives a rig; its problem says why
// it has no skeleton, or what is wrong with it.
[[nodiscard]] scene_rig readRig(const std::string& id, const game_data& game, const std::string& around);
// The same of a skeleton that was read already: what is no number is replaced, and named.
[[nodiscard]] scene_rig rigOf(anim_data skeleton, std::string id, std::string path);

// The bone of that name, in the form of the file; below zero: there is none.
[[nodiscard]] int findBone(const anim_data& skeleton, std::string_view name);
// On which bone a point of a model sits: that of its name, else that of its number; below zero: on none.
[[nodiscard]] int boneOf(const scene_point& point, const anim_data& skeleton);

// The attachment points of a model's first level that has any, each name once.
[[nodiscard]] std::vector<scene_point> pointsOf(const RMV2_FILE_DATA& data);

// "3 vertices name bones up to 41 that the skeleton \"x\" (39 bones) does not have: they stay in the bind pose"; empty
// when all are there.
[[nodiscard]] std::string missingBones(const std::vector<scene_group>& groups, const scene_rig& rig);

} // namespace korvane
