#include "Korvane/viewer/preview_pictures.h"

#include "D3D11_RENDER_LIB/d3d_check.h"
#include "Korvane/viewer/model_scene.h"

#include <cstring>
#include <utility>
#include <vector>

namespace korvane
{

struct preview_pictures::device_half
{
    explicit device_half(device_faults* faults) : library(faults) {}

    lib3d library;
    model_scene drawn;
    scene_targets targets;
    picture_target target;
    std::vector<std::uint8_t> pixels;
    std::uint32_t width = 0, height = 0; // of the targets
};

preview_pictures::preview_pictures(device_faults* faults) : m_po_faults(faults) {}
preview_pictures::~preview_pictures() = default;

// False when the device was lost or the work was to stop.
bool preview_pictures::drawOnce(const scene_pointer& scene, std::uint32_t width, std::uint32_t height,
                                const work_port& work, picture& made)
{
    constexpr UINT smooth_edges = 4;
    device_half& device = *m_po_device;
    lib3d& library = device.library;
    if (device.width != width || device.height != height)
    {
        const UINT samples = library.isSoftware() ? 1 : smooth_edges;
        if (!device.targets.create(library, width, height, samples) || !device.target.create(library, width, height))
            return false;
        device.width = width;
        device.height = height;
    }
    if (!device.drawn.create(library, scene) || !device.drawn.finishTextures(library) || work.isStopped())
        return false;
    view_state view;
    view.eye.frame(scene->bounds, static_cast<float>(width) / static_cast<float>(height));
    device.drawn.draw(library, device.targets, device.target.view(), view);
    if (!device.target.read(library, device.pixels))
        return false;
    made = picture(width, height);
    std::memcpy(made.pixels().data(), device.pixels.data(), device.pixels.size());
    return true;
}

bool preview_pictures::draw(const scene_pointer& scene, std::uint32_t width, std::uint32_t height,
                            const work_port& work, picture& made, failure& why)
{
    for (int attempt = 0; attempt < 2; ++attempt)
    {
        if (!m_po_device)
        {
            auto fresh = std::make_unique<device_half>(m_po_faults);
            fresh->library.tolerateFailures(true); // a preview is nothing to end for
            if (!fresh->library.createDevice(device_kind::best, work.log, why))
                return false;
            if (!fresh->library.createAll())
                continue;
            m_po_device = std::move(fresh);
        }
        const bool is_drawn = drawOnce(scene, width, height, work, made);
        if (m_po_device->library.loss() != S_OK)
            m_po_device.reset();
        else if (is_drawn || work.isStopped())
        {
            m_po_device->drawn.release();
            return is_drawn;
        }
    }
    return fail(why, failure_kind::unsupported, "the graphics device was lost");
}

} // namespace korvane
