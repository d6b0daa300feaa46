#include "D3D11_RENDER_LIB/sub_mesh.h"

#include "D3D11_RENDER_LIB/gpu_mesh.h"

#include <algorithm>

namespace korvane
{

namespace
{

constexpr char sub_mesh_source[] = "sub_mesh";
constexpr UINT first_register = 6; // t6

ID3D11ShaderResourceView* viewOf(const std::shared_ptr<const gpu_texture>& texture)
{
    return texture ? texture->view.get() : nullptr;
}

bool decodesSrgb(const std::shared_ptr<const gpu_texture>& texture)
{
    return texture && texture->is_srgb;
}

} // namespace

bool sub_mesh::create(lib3d& library, const scene_group& group, int bone, const group_textures& textures,
                      gpu_textures& views)
{
    m_has_alpha = group.has_alpha;
    m_is_skinned = bone >= 0 || group.has_weights;
    if (!createBuffers(library, group, bone))
        return false;
    for (std::size_t slot = 0; slot < texture_slot_count; ++slot)
        m_textures[slot] = views.find(textures[slot], slot == diffuse_slot || slot == specular_slot);
    if (library.isSoftware())
        m_packed = views.packer().find({m_textures[normal_slot], m_textures[mask_slot], m_textures[gloss_slot]});
    return true;
}

bool sub_mesh::createBuffers(lib3d& library, const scene_group& group, int bone)
{
    const vertex_store& store = *group.store;
    std::vector<std::uint16_t> kept;
    const std::span<const std::uint16_t> indices = drawnIndices(store, kept);
    m_index_count = static_cast<UINT>(indices.size());
    if (indices.empty())
        return true;
    if (!library.createBuffer(D3D11_BIND_INDEX_BUFFER, std::as_bytes(indices), "group indices", sub_mesh_source,
                              m_index_buffer) ||
        !library.createBuffer(D3D11_BIND_VERTEX_BUFFER, store.vertices.size() * sizeof(gpu_vertex), "group vertices",
                              sub_mesh_source, m_vertex_buffer))
        return false;
    mesh_summary mesh = buildGpuVertices(store, bone, [&](std::size_t first, std::span<const gpu_vertex> vertices) {
        library.fill(*m_vertex_buffer.get(), first * sizeof(gpu_vertex), std::as_bytes(vertices));
    });
    m_reach = std::move(mesh.reach);
    m_surface = m_has_alpha ? surface_kind::with_alpha : mesh.has_frames ? surface_kind::framed : surface_kind::bare;
    m_raster = m_has_alpha               ? raster_mode::both_faces
               : mesh.is_wound_backwards ? raster_mode::front_faces_reversed
                                         : raster_mode::front_faces;
    return true;
}

int sub_mesh::boundSlots() const
{
    int slots = 0;
    for (std::size_t slot = 0; slot < texture_slot_count; ++slot)
        slots |= viewOf(m_textures[slot]) ? 1 << slot : 0;
    return slots;
}

std::array<float, texture_slot_count> sub_mesh::mapLevels(bool is_packed) const
{
    std::array<float, texture_slot_count> levels{};
    std::transform(m_textures.begin(), m_textures.end(), levels.begin(),
                   [](const auto& texture) { return texture ? texture->levels : 0.0f; });
    if (is_packed)
        levels[normal_slot] = m_packed->levels;
    return levels;
}

void sub_mesh::draw(lib3d& library, frame_constants& constants) const
{
    if (m_index_count == 0)
        return;
    constants.ps.has_alpha = m_has_alpha ? 1 : 0;
    constants.ps.is_diffuse_linear = decodesSrgb(m_textures[diffuse_slot]) ? 0 : 1;
    constants.ps.is_specular_linear = decodesSrgb(m_textures[specular_slot]) ? 0 : 1;
    constants.ps.debug_flags[2] = boundSlots();
    if (constants.pass == model_pass::shading)
        library.uploadLight(constants.ps);
    else if (constants.pass != model_pass::surfaces || m_surface != surface_kind::framed)
        library.uploadConstants(constants.vs, constants.ps);
    const bool is_packed = constants.pass == model_pass::shading && library.looksAtPackedMaps();
    bindTextures(library, is_packed);
    const screen_area reached = m_reach.onScreen(constants.vs, constants.width, constants.height);
    constants.reached.add(reached);
    ++constants.group;
    if (constants.pass == model_pass::shading)
        return library.drawShading(constants.group, reached, mapLevels(is_packed));
    library.useModelShaders(constants.pass, m_raster);
    if (constants.pass == model_pass::surfaces)
        library.useSurfaceShader(m_surface, constants.group);

    ID3D11DeviceContext& context = library.context();
    ID3D11Buffer* vertices = m_vertex_buffer.get();
    const UINT stride = sizeof(gpu_vertex);
    const UINT offset = 0;
    context.IASetVertexBuffers(0, 1, &vertices, &stride, &offset);
    context.IASetIndexBuffer(m_index_buffer.get(), DXGI_FORMAT_R16_UINT, 0);
    context.DrawIndexed(m_index_count, 0, 0);
}

void sub_mesh::bindTextures(lib3d& library, bool is_packed) const
{
    std::array<ID3D11ShaderResourceView*, texture_slot_count> views{};
    std::transform(m_textures.begin(), m_textures.end(), views.begin(), [](const auto& texture) {
        return texture && texture->pending && !texture->view ? texture->pending.get() : viewOf(texture);
    });
    if (is_packed)
    {
        views[normal_slot] = m_packed->view.get();
        views[mask_slot] = views[gloss_slot] = nullptr;
    }
    library.context().PSSetShaderResources(first_register, texture_slot_count, views.data());
}

} // namespace korvane
