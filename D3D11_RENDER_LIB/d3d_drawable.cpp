#include "D3D11_RENDER_LIB/d3d_drawable.h"

namespace korvane
{

bool d3d_drawable_geometry::create(lib3d& library, std::span<const gpu_line_vertex> lines)
{
    m_vertex_count = static_cast<UINT>(lines.size());
    return lines.empty() || library.createBuffer(D3D11_BIND_VERTEX_BUFFER, std::as_bytes(lines), "line vertices",
                                                 "d3d_drawable", m_vertex_buffer);
}

void d3d_drawable_geometry::draw(lib3d& library, frame_constants& frame) const
{
    if (m_vertex_count == 0)
        return;
    frame.vs.color = {1, 1, 1, 1};
    library.uploadConstants(frame.vs, frame.ps);
    library.useLineShaders(line_depth::tested);
    library.drawLines(*m_vertex_buffer.get(), m_vertex_count);
}

} // namespace korvane
