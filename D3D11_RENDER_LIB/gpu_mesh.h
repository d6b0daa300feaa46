#pragma once

// What the renderer makes of a group before any Direct3D call: vertices in the shaders' layout and indices that cannot
// reach past them. Portable.

#include "D3D11_RENDER_LIB/gpu_layouts.h"
#include "D3D11_RENDER_LIB/screen_area.h"
#include "Korvane/models/rmv2_data.h"

#include <cstdint>
#include <vector>

namespace korvane
{

struct gpu_mesh
{
    std::vector<gpu_vertex> vertices;
    std::vector<std::uint16_t> indices; // whole triangles with existing vertices only
    mesh_reach reach;
    bool is_wound_backwards = false; // most triangles turn away from their normals (as format 5 is stored)
};

// Bone below zero: bones and weights as in the file. Zero or more: every vertex hangs on that one bone, with the
// weights 1, 0, 0, 0. Components that are NaN or infinite become 0, so that nothing undefined reaches the screen.
[[nodiscard]] gpu_mesh buildGpuMesh(const vertex_store& store, int bone = -1);

} // namespace korvane
