#pragma once

// What the renderer makes of a decoded group before any Direct3D call: vertices in the shaders' layout, indices that
// cannot reach past them, and the facts that decide how the group is drawn. Portable.

#include "D3D11_RENDER_LIB/gpu_layouts.h"
#include "Korvane/models/rmv2_data.h"

#include <glm/vec3.hpp>

#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace korvane
{

inline constexpr std::size_t texture_slot_count = 5;
// The texture type number of each slot: diffuse, normal map, specular, mask, gloss map.
inline constexpr std::array<std::uint32_t, texture_slot_count> texture_slot_types{0, 1, 11, 3, 12};

struct gpu_mesh
{
    std::vector<gpu_vertex> vertices;
    std::vector<std::uint16_t> indices; // whole triangles with existing vertices only
    std::size_t dropped_triangles = 0;  // those that named a vertex that does not exist
    bool has_alpha = false;             // alpha mode 1: alpha tested, seen from both sides
    bool is_skinned = false;            // the vertex format carries bone weights
    bool is_wound_backwards = false;    // most triangles turn away from their normals (as format 5 is stored)
    std::array<std::string, texture_slot_count> texture_paths; // empty: the group has none for the slot
};

// Bone below zero: bones and weights as in the file. Zero or more: every vertex hangs on that one bone, with the
// weights 1, 0, 0, 0. Components that are not finite become 0, so that nothing undefined reaches the screen.
[[nodiscard]] gpu_mesh buildGpuMesh(const group_data& group, int bone = -1);

struct model_bounds
{
    glm::vec3 least{std::numeric_limits<float>::max()};
    glm::vec3 most{std::numeric_limits<float>::lowest()};

    bool isEmpty() const { return least.x > most.x; }
    glm::vec3 centre() const { return isEmpty() ? glm::vec3(0) : (least + most) * 0.5f; }
    glm::vec3 extent() const { return isEmpty() ? glm::vec3(0) : most - least; }
    void add(const glm::vec3& point);
};

// Bounds of the vertices that triangles use; a group's stored box may say anything.
void addToBounds(const gpu_mesh& mesh, model_bounds& bounds);

} // namespace korvane
