#pragma once

// What the renderer makes of a group before any Direct3D call: vertices in the shaders' layout and indices that cannot
// reach past them. Portable.

#include "D3D11_RENDER_LIB/gpu_layouts.h"
#include "D3D11_RENDER_LIB/screen_area.h"
#include "Korvane/models/rmv2_data.h"

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace korvane
{

// The vertices come to it in portions, in their order; first is the number of the portion's first one. Portions,
// because one array of all of them would be fresh memory, and that costs more than what is put into it.
using vertex_port = std::function<void(std::size_t first, std::span<const gpu_vertex> vertices)>;

struct mesh_summary
{
    mesh_reach reach;
    bool has_frames = true;          // every vertex has a normal, a tangent and a binormal
    bool is_wound_backwards = false; // most triangles turn away from their normals (as format 5 is stored)
};

// Bone below zero: bones and weights as in the file. Zero or more: every vertex hangs on that one bone, with the
// weights 1, 0, 0, 0. Components that are NaN or infinite become 0, so that nothing undefined reaches the screen.
[[nodiscard]] mesh_summary buildGpuVertices(const vertex_store& store, int bone, const vertex_port& take);

// Whole triangles with existing vertices only: the store's own indices where all are, else those that are in kept.
[[nodiscard]] std::span<const std::uint16_t> drawnIndices(const vertex_store& store, std::vector<std::uint16_t>& kept);

} // namespace korvane
