#pragma once

// The GPU side of one mesh group: buffers, texture views by slot, and what its draw call sets.

#include "D3D11_RENDER_LIB/gpu_mesh.h"
#include "D3D11_RENDER_LIB/lib3d.h"
#include "D3D11_RENDER_LIB/texture_source.h"

#include <array>
#include <string>
#include <vector>

namespace korvane
{

inline constexpr std::size_t sub_mesh_view_count = 8; // of which the first texture_slot_count are used

// One texture of a model, kept by the model's list so that groups which share a texture share its view.
struct texture_info
{
    std::uint32_t type = 0;
    std::string path; // internal path, as the group names it
    com_ptr<ID3D11ShaderResourceView> view;
};
using textures_rmv2 = std::vector<texture_info>;

class sub_mesh
{
public:
    // Buffers only. A mesh without triangles makes none and draws nothing.
    void create(ID3D11Device& device, const gpu_mesh& mesh);

    // Fills the texture slots. False when diffuse or normal map cannot be found: loading ends there, for this group
    // and, by agreement, for the model's later groups. A file that is there but damaged or refused leaves its slot
    // empty and is told to the log; the three other slots may be missing.
    [[nodiscard]] bool loadTextures(ID3D11Device& device, const gpu_mesh& mesh, const texture_source& source,
                                    textures_rmv2& shared, const lib3d::log_port& log);

    // Uploads both constant buffers, binds everything of the group and draws it.
    void draw(lib3d& library, bool is_wireframe) const;

    bool isDiffuseSrgb() const { return m_is_diffuse_srgb; }
    bool isSpecularSrgb() const { return m_is_specular_srgb; }
    bool isSkinned() const { return m_is_skinned; }
    int boundSlots() const; // a bit for each slot that holds a view

private:
    com_ptr<ID3D11Buffer> m_vertex_buffer;
    com_ptr<ID3D11Buffer> m_index_buffer;
    UINT m_index_count = 0;
    std::array<com_ptr<ID3D11ShaderResourceView>, sub_mesh_view_count> m_views;
    raster_mode m_raster = raster_mode::front_faces;
    bool m_has_alpha = false;
    bool m_is_skinned = false;
    bool m_is_diffuse_srgb = false;
    bool m_is_specular_srgb = false;
};

} // namespace korvane
