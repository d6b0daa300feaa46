#include "D3D11_RENDER_LIB/sub_mesh.h"

#include "D3D11_RENDER_LIB/d3d_check.h"
#include "DDSTextureLoader/dds_texture.h"

#include <algorithm>

namespace korvane
{

namespace
{

constexpr char source_name[] = "sub_mesh";
constexpr std::size_t diffuse_slot = 0;
constexpr std::size_t normal_slot = 1;
constexpr std::size_t specular_slot = 2;
constexpr UINT first_register = 6; // t6

com_ptr<ID3D11Buffer> buffer(ID3D11Device& device, D3D11_BIND_FLAG kind, const void* contents, std::size_t size_bytes)
{
    const CD3D11_BUFFER_DESC description(static_cast<UINT>(size_bytes), static_cast<UINT>(kind));
    D3D11_SUBRESOURCE_DATA data{};
    data.pSysMem = contents;
    com_ptr<ID3D11Buffer> result;
    requireSuccess(device.CreateBuffer(&description, &data, result.put()), source_name);
    return result;
}

bool hasSrgbView(ID3D11ShaderResourceView* view)
{
    if (!view)
        return false;
    D3D11_SHADER_RESOURCE_VIEW_DESC description{};
    view->GetDesc(&description);
    return isSrgb(static_cast<dds_format>(description.Format));
}

// False: there is no such file. A file that cannot become a texture gives an empty view.
bool loadTexture(ID3D11Device& device, std::uint32_t type, const std::string& path, const texture_source& source,
                 textures_rmv2& shared, const lib3d::log_port& log, com_ptr<ID3D11ShaderResourceView>& view)
{
    if (path.empty())
        return false;
    const auto known =
        std::find_if(shared.begin(), shared.end(), [&](const texture_info& info) { return info.path == path; });
    if (known != shared.end())
    {
        view = known->view;
        return true;
    }
    const std::optional<memory_file> file = source.read(path);
    if (!file)
        return false;
    dds_image image;
    failure why;
    if (!readDds(file->bytes(), image, why) || !createDdsTexture(device, image, view, why))
    {
        why.path = path;
        if (log)
            log(describe(why));
    }
    shared.push_back({type, path, view});
    return true;
}

} // namespace

void sub_mesh::create(ID3D11Device& device, const gpu_mesh& mesh)
{
    *this = sub_mesh();
    m_has_alpha = mesh.has_alpha;
    m_is_skinned = mesh.is_skinned;
    m_raster = mesh.has_alpha            ? raster_mode::both_faces
               : mesh.is_wound_backwards ? raster_mode::front_faces_reversed
                                         : raster_mode::front_faces;
    if (mesh.indices.empty())
        return;
    m_index_count = static_cast<UINT>(mesh.indices.size());
    m_index_buffer = buffer(device, D3D11_BIND_INDEX_BUFFER, mesh.indices.data(), mesh.indices.size() * 2);
    m_vertex_buffer =
        buffer(device, D3D11_BIND_VERTEX_BUFFER, mesh.vertices.data(), mesh.vertices.size() * sizeof(gpu_vertex));
}

bool sub_mesh::loadTextures(ID3D11Device& device, const gpu_mesh& mesh, const texture_source& source,
                            textures_rmv2& shared, const lib3d::log_port& log)
{
    for (std::size_t slot = 0; slot < texture_slot_count; ++slot)
    {
        const bool is_found =
            loadTexture(device, texture_slot_types[slot], mesh.texture_paths[slot], source, shared, log, m_views[slot]);
        if (!is_found && (slot == diffuse_slot || slot == normal_slot))
            return false;
        if (slot == diffuse_slot)
            m_is_diffuse_srgb = hasSrgbView(m_views[slot].get());
        if (slot == specular_slot)
            m_is_specular_srgb = hasSrgbView(m_views[slot].get());
    }
    return true;
}

int sub_mesh::boundSlots() const
{
    int slots = 0;
    for (std::size_t slot = 0; slot < texture_slot_count; ++slot)
        slots |= m_views[slot] ? 1 << slot : 0;
    return slots;
}

void sub_mesh::draw(lib3d& library, bool is_wireframe) const
{
    if (m_index_count == 0)
        return;
    light_buffer& constants = library.ps_constants;
    constants.has_alpha = m_has_alpha ? 1 : 0;
    constants.is_diffuse_linear = m_is_diffuse_srgb ? 0 : 1;
    constants.is_specular_linear = m_is_specular_srgb ? 0 : 1;
    constants.debug_flags[2] = boundSlots();
    library.uploadConstants();
    library.useModelShaders(is_wireframe ? raster_mode::wireframe : m_raster);

    ID3D11DeviceContext& context = library.context();
    ID3D11Buffer* vertices = m_vertex_buffer.get();
    const UINT stride = sizeof(gpu_vertex);
    const UINT offset = 0;
    context.IASetVertexBuffers(0, 1, &vertices, &stride, &offset);
    context.IASetIndexBuffer(m_index_buffer.get(), DXGI_FORMAT_R16_UINT, 0);
    std::array<ID3D11ShaderResourceView*, texture_slot_count> views{};
    for (std::size_t slot = 0; slot < views.size(); ++slot)
        views[slot] = m_views[slot].get();
    context.PSSetShaderResources(first_register, texture_slot_count, views.data());
    context.DrawIndexed(m_index_count, 0, 0);
}

} // namespace korvane
