#pragma once

// The device's half of a loaded_scene and how it stands: its figure with the poses of its skeletons, and all that is
// drawn beside it (floor, shadow, bones, bounds, what is written over the picture). The window and the off-screen
// renderer draw through this one class; both belong to the thread that draws.

#include "D3D11_RENDER_LIB/drawable_cube.h"
#include "D3D11_RENDER_LIB/gpu_textures.h"
#include "D3D11_RENDER_LIB/overlay_layer.h"
#include "D3D11_RENDER_LIB/render_variant.h"
#include "D3D11_RENDER_LIB/scene_targets.h"
#include "D3D11_RENDER_LIB/shadow_map.h"
#include "Korvane/scene/loaded_scene.h"
#include "Korvane/viewer/posed_scene.h"
#include "Korvane/viewer/view_state.h"

#include <functional>
#include <memory>
#include <vector>

namespace korvane
{

class model_scene
{
public:
    // has_textures is called by another thread when a texture was read: another frame is to be drawn then.
    explicit model_scene(log_port log = {}, std::function<void()> has_textures = {})
        : m_log(std::move(log))
        , m_reading(std::move(has_textures))
    {
    }

    // Makes the scene's objects in place of what was shown, or of nothing for null; the bind pose is shown. False when
    // the device was lost: what is left is to be released.
    [[nodiscard]] bool create(lib3d& library, scene_pointer scene);
    void release();
    // The scene is drawn at once; its textures come to it by this, for a few milliseconds before each frame. False when
    // the device was lost.
    [[nodiscard]] bool loadTextures(lib3d& library);
    bool hasMoreTextures() const { return m_po_textures && m_po_textures->hasMore(); } // the next frame takes some
    [[nodiscard]] bool finishTextures(lib3d& library);                                 // waits for all of them
    // The font for what is written over the picture; without it nothing is. False when the device was lost.
    [[nodiscard]] bool createOverlay(lib3d& library, unsigned dpi);

    // How it stands; null while nothing is shown.
    posed_scene* pose() { return m_po_pose.get(); }

    // A whole frame into an output of the targets' size.
    void draw(lib3d& library, const scene_targets& targets, ID3D11RenderTargetView* output, const view_state& view);

private:
    [[nodiscard]] bool createFloor(lib3d& library, const model_bounds& bounds);
    void takePoses(const view_state& view);
    void drawFigure(lib3d& library, const scene_targets& targets, const view_state& view, const shown_frame& shown,
                    frame_constants& frame);
    bool hasSurfaces(const scene_targets& targets) const;
    bool isEncoded(const lib3d& library, const scene_targets& targets, const view_state& view) const;
    void drawLines(lib3d& library, const view_state& view, frame_constants& frame);
    void shadeSurfaces(lib3d& library, const scene_targets& targets, const shown_frame& shown, frame_constants& frame);
    screen_area drawnArea(const lib3d& library, const scene_targets& targets, const view_state& view) const;
    void drawLightMarker(lib3d& library, const view_state& view, frame_constants& frame);
    void drawOverlay(lib3d& library, const scene_targets& targets, const view_state& view);

    log_port m_log;
    texture_reading m_reading;
    std::unique_ptr<gpu_textures> m_po_textures;
    std::unique_ptr<render_variant> m_po_figure; // null: nothing is shown
    std::unique_ptr<d3d_drawable_geometry> m_po_floor;
    std::unique_ptr<d3d_drawable_geometry> m_po_bounds;
    std::unique_ptr<drawable_cube> m_po_marker; // of the side light; made when it is wanted first
    std::unique_ptr<shadow_map> m_po_shadow;    // made when it is wanted first
    std::unique_ptr<overlay_layer> m_po_overlay;
    std::unique_ptr<overlay_text> m_po_overlay_text;
    float m_overlay_scale = 1; // pixels for each of 96 to the inch
    std::unique_ptr<posed_scene> m_po_pose;
    std::vector<part_pose> m_poses;              // of the parts, as the frame shows them
    std::vector<gpu_line_vertex> m_lines;        // as many as the bone-line buffer holds
    std::size_t m_group_count = 0;               // of all parts
    std::unique_ptr<frame_constants> m_po_frame; // 33 KB: not on the stack, and not anew for each frame
};

} // namespace korvane
