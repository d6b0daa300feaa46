#pragma once

// The drawables that the render loop holds. They create their resources on the device when they are created, draw on
// the thread that owns the context, and release in release() or on destruction, while nobody draws them. The device
// and the context are borrowed.

#include "D3D11_RENDER_LIB/lib3d.h"

#include <vector>

namespace korvane
{

// The abstract drawable.
class id3d_drawable_object
{
public:
    virtual ~id3d_drawable_object() = default;

    // Issues the draw calls. The view's part of the constants is set already; what a drawable changes of them (its
    // flags, its matrices) it leaves changed.
    virtual void draw(lib3d& library) = 0;
    virtual void release() = 0;
};

// A drawable with buffers of its own.
class d3d_drawable : public id3d_drawable_object
{
public:
    void release() override;

protected:
    [[nodiscard]] static com_ptr<ID3D11Buffer> immutableBuffer(ID3D11Device& device, D3D11_BIND_FLAG kind,
                                                               const void* contents, std::size_t size_bytes);

    com_ptr<ID3D11Buffer> m_vertex_buffer;
    UINT m_element_count = 0;
};

// Lines: positions with colours in the model's space, two vertices each.
class d3d_drawable_geometry : public d3d_drawable
{
public:
    void create(ID3D11Device& device, const std::vector<gpu_line_vertex>& lines);
    void draw(lib3d& library) override;
};

} // namespace korvane
