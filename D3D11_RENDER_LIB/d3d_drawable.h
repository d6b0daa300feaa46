#pragma once

// What the render loop draws, held through this base class. A drawable makes its objects on the device when it is
// created and releases them on destruction; the constants of a frame are given to it and stay as they are.

#include "D3D11_RENDER_LIB/lib3d.h"

#include <span>

namespace korvane
{

// What all draws of a frame share.
struct frame_constants
{
    mvp_buffer vs;
    light_buffer ps;
    bool is_wireframe = false;
};

class id3d_drawable_object
{
public:
    virtual ~id3d_drawable_object() = default;

    // Issues the draw calls, on the thread that owns the context.
    virtual void draw(lib3d& library, const frame_constants& frame) const = 0;
};

// Lines: positions with colours in the model's space, two vertices each.
class d3d_drawable_geometry : public id3d_drawable_object
{
public:
    // False when the device was lost. Without lines nothing is drawn.
    [[nodiscard]] bool create(lib3d& library, std::span<const gpu_line_vertex> lines);
    void draw(lib3d& library, const frame_constants& frame) const override;

private:
    com_ptr<ID3D11Buffer> m_vertex_buffer;
    UINT m_vertex_count = 0;
};

} // namespace korvane
