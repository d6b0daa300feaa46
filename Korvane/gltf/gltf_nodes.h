#pragma once

// The parts of a glTF document: nodes, meshes, the skin, materials, and a take as an animation.

#include "Korvane/gltf/gltf_buffer.h"
#include "Korvane/gltf/gltf_export.h"

namespace korvane::gltf_nodes
{

// Bones are the nodes of the same numbers; behind them comes, when there are any, the node of which all are
// descendants, and then one for each mesh.
[[nodiscard]] gltf_json nodes(const export_scene& scene, const std::vector<int>& mesh_numbers);
// Of the nodes, those that stand in the scene itself.
[[nodiscard]] std::vector<std::size_t> rootNodes(const export_scene& scene);
// Of all bones, for all meshes: readers make one skeleton of it.
[[nodiscard]] gltf_json skin(const export_scene& scene, gltf_buffer& buffer);
// The meshes with triangles; numbers says which one each of the scene's is, below zero: none.
[[nodiscard]] gltf_json meshes(const export_scene& scene, const std::vector<std::size_t>& materials,
                               bool with_materials, gltf_buffer& buffer, std::vector<int>& numbers);
// Equal ones are one; numbers says which one each of the scene's is.
[[nodiscard]] gltf_json materials(const export_scene& scene, const gltf_pictures& pictures,
                                  std::vector<std::size_t>& numbers);
[[nodiscard]] gltf_json images(const gltf_pictures& pictures, gltf_buffer& buffer);
// Null when the take moves nothing.
[[nodiscard]] gltf_json animation(const gltf_take& take, gltf_buffer& buffer);

} // namespace korvane::gltf_nodes
