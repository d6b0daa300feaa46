#pragma once

// The parts of a glTF document: nodes, meshes, the skin, materials, and a take as an animation.

#include "Korvane/gltf/gltf_buffer.h"
#include "Korvane/gltf/gltf_export.h"

namespace korvane::gltf_nodes
{

// Bones are the nodes of the same numbers; behind them comes, when there are any, the node of which all are
// descendants, and then one for each mesh.
// A skin for each skeleton that has a mesh; none for another one. Skins of several skeletons would list bones of the
// same name, which readers refuse.
struct mesh_numbers
{
    std::vector<int> meshes; // of each of the scene's: its number in the file; below zero: it has none
    std::vector<int> skins;  // the same
};
[[nodiscard]] gltf_json nodes(const export_scene& scene, const mesh_numbers& numbers);
// Of the nodes, those that stand in the scene itself.
[[nodiscard]] std::vector<std::size_t> rootNodes(const export_scene& scene);
[[nodiscard]] gltf_json skins(const export_scene& scene, gltf_buffer& buffer, mesh_numbers& numbers);
// The meshes with triangles.
[[nodiscard]] gltf_json meshes(const export_scene& scene, const std::vector<std::size_t>& materials,
                               bool with_materials, gltf_buffer& buffer, mesh_numbers& numbers);
// Equal ones are one; numbers says which one each of the scene's is.
[[nodiscard]] gltf_json materials(const export_scene& scene, const gltf_pictures& pictures,
                                  std::vector<std::size_t>& numbers);
[[nodiscard]] gltf_json images(const gltf_pictures& pictures, gltf_buffer& buffer);
// Null when the take moves nothing.
[[nodiscard]] gltf_json animation(const gltf_take& take, gltf_buffer& buffer);

} // namespace korvane::gltf_nodes
