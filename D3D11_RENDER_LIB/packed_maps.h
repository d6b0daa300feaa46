#pragma once

// What shading looks at of the normal, gloss and mask maps of a group, in one texture: x and y of the normal, the
// smoothness and the occlusion. For software devices, where each texture that is looked at costs a twentieth of a
// frame. The device makes them itself, of whatever maps are there, and again when one of them has come or changed. The
// thread that draws.

#include "D3D11_RENDER_LIB/lib3d.h"

#include <array>
#include <cstddef>
#include <map>
#include <memory>

namespace korvane
{

using texture_view = com_ptr<ID3D11ShaderResourceView>;

// One texture of a scene, as the groups hold it.
struct gpu_texture
{
    texture_view view;    // empty: it is not there yet
    bool is_srgb = false; // the view decodes
    float levels = 0;     // log2 of the larger side
    texture_view pending; // bound instead, and not looked at: software devices compile shaders anew for an empty place
};

// As the groups hold it, too.
struct packed_maps
{
    texture_view view; // empty: nothing was packed yet
    float levels = 0;  // log2 of the larger side
};

class map_packer
{
public:
    enum kind : std::size_t
    {
        normal,
        mask,
        gloss,
        kind_count
    };
    using maps = std::array<std::shared_ptr<const gpu_texture>, kind_count>; // null: the group has none

    // What these become; groups with the same maps share it.
    [[nodiscard]] std::shared_ptr<const packed_maps> find(const maps& of);

    // Before the groups are drawn: packs those whose maps are others than before. The channel of the gloss map is 0..3.
    // False when the device was lost.
    [[nodiscard]] bool update(lib3d& library, int channel);

private:
    struct entry
    {
        std::shared_ptr<packed_maps> result = std::make_shared<packed_maps>();
        std::array<texture_view, kind_count> packed; // of which it was made
        int channel = -1;
        com_ptr<ID3D11Texture2D> texture;
    };

    [[nodiscard]] bool createFiller(lib3d& library);
    [[nodiscard]] bool createTexture(lib3d& library, entry& one);
    [[nodiscard]] bool pack(lib3d& library, entry& one);

    std::map<maps, entry> m_entries;
    texture_view
        m_filler; // bound for a map that is not there: software devices compile shaders anew for an empty place
};

} // namespace korvane
