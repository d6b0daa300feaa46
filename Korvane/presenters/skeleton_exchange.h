#pragma once

// Another skeleton of the same id for a scene: when several archives have one, a person may want to see the model on
// each of them.

#include "Korvane/archives/path_tree.h"
#include "Korvane/scene/loaded_scene.h"

#include <string>
#include <vector>

namespace korvane
{

// Reads a skeleton from an entry of the archives. False, with the reason, when it cannot be read. Any thread that keeps
// the archives.
[[nodiscard]] bool readSkeleton(const pack_file_node& entry, const std::string& id, scene_rig& rig, failure& why);
// The scene with that skeleton in all its rigs of the same id; what hangs on a bone hangs on that of the same name. Of
// bones that it lacks the names are added to the lost ones: what hung there hangs on the first bone.
[[nodiscard]] scene_pointer exchangeSkeleton(const loaded_scene& scene, const scene_rig& by,
                                             std::vector<std::string>& lost);

} // namespace korvane
