#pragma once

// The device's half of a loaded_scene: its figure and, for when it is asked for, a floor grid. The window and the
// off-screen renderer draw through this one class; both belong to the thread that draws.

#include "D3D11_RENDER_LIB/d3d_drawable.h"
#include "D3D11_RENDER_LIB/gpu_textures.h"
#include "D3D11_RENDER_LIB/scene_targets.h"
#include "Korvane/scene/loaded_scene.h"
#include "Korvane/viewer/view_state.h"

#include <memory>

namespace korvane
{

class model_scene
{
public:
    explicit model_scene(log_port log = {}) : m_log(std::move(log)) {}

    // Makes the scene's objects in place of what was shown, or of nothing for null. False when the device was lost:
    // what is left is to be released.
    [[nodiscard]] bool create(lib3d& library, const loaded_scene* scene);
    void release();

    // A whole frame into an output of the targets' size.
    void draw(lib3d& library, const scene_targets& targets, ID3D11RenderTargetView* output,
              const view_state& view) const;

private:
    log_port m_log;
    std::unique_ptr<gpu_textures> m_po_textures;
    std::unique_ptr<id3d_drawable_object> m_po_figure; // null: nothing is shown
    std::unique_ptr<id3d_drawable_object> m_po_floor;
};

} // namespace korvane
