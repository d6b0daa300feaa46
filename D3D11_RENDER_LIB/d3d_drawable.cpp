#include "D3D11_RENDER_LIB/d3d_drawable.h"

#include "D3D11_RENDER_LIB/d3d_check.h"

namespace korvane
{

void d3d_drawable::release()
{
    m_vertex_buffer.reset();
    m_element_count = 0;
}

com_ptr<ID3D11Buffer> d3d_drawable::immutableBuffer(ID3D11Device& device, D3D11_BIND_FLAG kind, const void* contents,
                                                    std::size_t size_bytes)
{
    const CD3D11_BUFFER_DESC description(static_cast<UINT>(size_bytes), static_cast<UINT>(kind));
    D3D11_SUBRESOURCE_DATA data{};
    data.pSysMem = contents;
    com_ptr<ID3D11Buffer> buffer;
    requireSuccess(device.CreateBuffer(&description, &data, buffer.put()), "d3d_drawable");
    return buffer;
}

void d3d_drawable_geometry::create(ID3D11Device& device, const std::vector<gpu_line_vertex>& lines)
{
    release();
    if (lines.empty())
        return;
    m_vertex_buffer = immutableBuffer(device, D3D11_BIND_VERTEX_BUFFER, lines.data(), lines.size() * sizeof(lines[0]));
    m_element_count = static_cast<UINT>(lines.size());
}

void d3d_drawable_geometry::draw(lib3d& library)
{
    if (m_element_count == 0)
        return;
    library.uploadConstants();
    library.useLineShaders();
    ID3D11Buffer* buffer = m_vertex_buffer.get();
    const UINT stride = sizeof(gpu_line_vertex);
    const UINT offset = 0;
    library.context().IASetVertexBuffers(0, 1, &buffer, &stride, &offset);
    library.context().Draw(m_element_count, 0);
}

} // namespace korvane
