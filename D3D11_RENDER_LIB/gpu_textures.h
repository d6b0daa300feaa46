#pragma once

// The textures of a scene on one device. They are read by a thread of their own (texture_reading.h) and come to the
// device in portions, a few milliseconds a frame: a group is drawn without a texture until it is there. Groups that
// share a texture share its view, and the next scene takes over those that it shares with the former one. The thread
// that draws.

#include "D3D11_RENDER_LIB/lib3d.h"
#include "D3D11_RENDER_LIB/packed_maps.h"
#include "D3D11_RENDER_LIB/texture_reading.h"
#include "DDSTextureLoader/dds_texture.h"
#include "EASY_GUI/services/log_port.h"
#include "Korvane/scene/scene_texture.h"

#include <chrono>
#include <map>
#include <memory>
#include <vector>

namespace korvane
{

class gpu_textures
{
public:
    // The log is told of a texture that cannot be read or that the device refuses: a checkerboard is in its place. The
    // reading outlives the object; the former textures of the same device, which may be null, are needed until
    // forgetFormer().
    gpu_textures(log_port log, texture_reading& reading, const gpu_textures* former)
        : m_log(std::move(log))
        , m_reading(reading)
        , m_po_former(former)
    {
    }

    // The place of a texture; null for null. Colour: the shader decodes it, and looks at it as nothing else. Until it
    // is there, it shows what a former scene had of the same path.
    [[nodiscard]] std::shared_ptr<const gpu_texture> find(const std::shared_ptr<const scene_texture>& texture,
                                                          bool is_colour);
    void forgetFormer() { m_po_former = nullptr; } // before the former textures go

    // After the last find(): asks for what is not there yet. False when the device was lost.
    [[nodiscard]] bool load(lib3d& library);
    // Takes what was read to the device for about so long. False when the device was lost.
    [[nodiscard]] bool goOn(lib3d& library, std::chrono::milliseconds patience);
    // There is more to take at once, in the next frame.
    bool hasMore() const { return m_po_current != nullptr; }
    // Waits until all are there. False when the device was lost.
    [[nodiscard]] bool finish(lib3d& library);

    map_packer& packer() { return m_packer; } // of maps that find() has given

private:
    struct entry
    {
        std::shared_ptr<gpu_texture> shown;
        bool is_there = false;
        bool is_colour = true;          // for all that look at it
        bool is_kept_as_colour = false; // what is there
    };

    [[nodiscard]] bool takeOver(lib3d& library, bool waits);
    [[nodiscard]] bool begin(lib3d& library);
    [[nodiscard]] bool giveUp(lib3d& library);
    void end(const texture_view& view);

    log_port m_log;
    texture_reading& m_reading;
    const gpu_textures* m_po_former;
    std::map<std::shared_ptr<const scene_texture>, entry> m_entries;
    std::vector<std::shared_ptr<const scene_texture>> m_order; // as they were asked for
    std::unique_ptr<read_texture> m_po_current;                // on its way to the device
    dds_upload m_upload;
    map_packer m_packer;
    texture_view m_checkerboard; // made when it is needed first
};

} // namespace korvane
