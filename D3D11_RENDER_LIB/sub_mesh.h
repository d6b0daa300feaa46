#pragma once

// The GPU side of one mesh group: buffers, texture views by slot, and what its draw call sets.

#include "D3D11_RENDER_LIB/d3d_drawable.h"
#include "D3D11_RENDER_LIB/gpu_textures.h"
#include "Korvane/scene/loaded_scene.h"

#include <array>
#include <memory>

namespace korvane
{

class sub_mesh
{
public:
    // A group without triangles makes no buffers and draws nothing. Bone as in scene_part. False when the device was
    // lost.
    [[nodiscard]] bool create(lib3d& library, const scene_group& group, int bone, const group_textures& textures,
                              gpu_textures& views);

    // Uploads the constant buffers that the pass looks at, binds everything of the group and draws it. What the
    // constants say of the group is written into them here.
    void draw(lib3d& library, frame_constants& constants) const;

    bool isSkinned() const { return m_is_skinned; }

private:
    void bindTextures(lib3d& library, bool is_packed) const;
    [[nodiscard]] bool createBuffers(lib3d& library, const scene_group& group, int bone);
    std::array<float, texture_slot_count> mapLevels(bool is_packed) const;
    int boundSlots() const; // a bit for each slot that holds a view

    com_ptr<ID3D11Buffer> m_vertex_buffer;
    com_ptr<ID3D11Buffer> m_index_buffer;
    UINT m_index_count = 0;
    mesh_reach m_reach;
    std::array<std::shared_ptr<const gpu_texture>, texture_slot_count> m_textures; // null: the group has none
    std::shared_ptr<const packed_maps> m_packed;                                   // null on graphics cards
    surface_kind m_surface = surface_kind::bare;
    raster_mode m_raster = raster_mode::front_faces;
    bool m_has_alpha = false;
    bool m_is_skinned = false;
};

} // namespace korvane
