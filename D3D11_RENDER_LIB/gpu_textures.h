#pragma once

// The textures of a scene on one device. Groups that share a texture share its view, and another level of detail takes
// over the views of the former one.

#include "D3D11_RENDER_LIB/lib3d.h"
#include "EASY_GUI/services/log_port.h"
#include "Korvane/scene/scene_texture.h"

#include <map>
#include <memory>

namespace korvane
{

using texture_view = com_ptr<ID3D11ShaderResourceView>;

class gpu_textures
{
public:
    // The log is told of a texture that the device refuses or that cannot be read again. The former textures of the
    // same device may be null.
    gpu_textures(log_port log, const gpu_textures* former) : m_log(std::move(log)), m_po_former(former) {}

    // The view of a texture; stays empty for null and for one that the device refuses. False when the device was lost.
    // The scene lets its bytes go once they are on the device.
    [[nodiscard]] bool find(lib3d& library, const std::shared_ptr<const scene_texture>& texture, texture_view& view);
    void forgetFormer() { m_po_former = nullptr; } // before the former textures go

private:
    [[nodiscard]] bool create(lib3d& library, const scene_texture& texture, texture_view& view) const;

    log_port m_log;
    const gpu_textures* m_po_former;
    std::map<std::shared_ptr<const scene_texture>, texture_view> m_views;
};

} // namespace korvane
