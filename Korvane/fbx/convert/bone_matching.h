#pragma once

// Which bones of an FBX scene are those of a template: by name, as names are shown, behind a prefix that programs put
// before all of them ("rig:", "mixamorig:"). Plain values; any thread.

#include "Korvane/fbx/scene/fbx_scene.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace korvane
{

struct bone_matching
{
    std::string prefix;               // taken off the FBX file's names, as it is shown; empty: none
    std::vector<std::size_t> nodes;   // for each bone of the template; fbx_none: the FBX file does not have it
    std::vector<std::string> surplus; // whole names of the FBX file's bones that the template does not have
    // Bones of the template that the FBX file has more than once, as a rider and his horse both have a head: where the
    // template's other bones stand tells which one counts, else it is the first.
    std::vector<std::string> told_apart;
    std::vector<std::string> doubtful;

    std::size_t matchedCount() const;
};

// Nodes of the scene's bones, in the order of the tree: parents first.
[[nodiscard]] std::vector<std::size_t> boneNodes(const fbx_scene& scene);
// Without a prefix given, the one is taken off with which most bones match; an empty one is none.
[[nodiscard]] bone_matching matchBones(const std::vector<std::string>& template_names, const fbx_scene& scene,
                                       const std::vector<std::size_t>& nodes, const std::optional<std::string>& prefix);

// For each name the one of the others that it most likely means, apart from case and punctuation; empty: none is near.
[[nodiscard]] std::vector<std::string> nearestBones(const std::vector<std::string>& names,
                                                    const std::vector<std::string>& others);

// True for nodes that a take moves or turns.
[[nodiscard]] std::vector<bool> movedNodes(const fbx_scene& scene, const fbx_stack& take);

} // namespace korvane
