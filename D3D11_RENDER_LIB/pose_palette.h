#pragma once

// What moves the vertices of a part, as one matrix a bone: for software devices, where multiplying three of them for
// each vertex costs. Portable.

#include "D3D11_RENDER_LIB/gpu_layouts.h"

namespace korvane
{

// Of the constants of a draw.
void fillPose(const mvp_buffer& constants, pose_buffer& pose);

} // namespace korvane
