#pragma once

// What opening an FBX file as a model reads: the meshes and skeleton nodes that are direct children of the scene's
// root. Nothing is built from them yet. Nodes below the first level are not visited.

#include "EASY_GUI/services/failure.h"

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace korvane
{

struct fbx_model
{
    struct mesh
    {
        std::string name;                                 // of the node
        std::vector<std::array<float, 4>> control_points; // x, y, z and 1, in the file's unit and order
    };
    std::vector<mesh> meshes;
    std::vector<std::string> skeletons; // names of nodes
};

// False, with the reason and the position, for bytes that are no FBX file or a damaged one; the model stays as it is.
[[nodiscard]] bool importFbxModel(std::span<const std::byte> bytes, fbx_model& model, failure& why);

// What a person is told when that failed, or the file could not be read at all.
[[nodiscard]] std::string fbxImportError(const std::string& path);

} // namespace korvane
