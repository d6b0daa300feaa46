#pragma once

// What the render loop draws, held through this base class. A drawable makes its objects on the device when it is
// created and releases them on destruction; the constants of a frame are given to it.

#include "D3D11_RENDER_LIB/lib3d.h"
#include "Korvane/scene/shown_group.h"

#include <cstdint>
#include <optional>
#include <span>

namespace korvane
{

// How a part of the scene stands: its bones. Both are empty, or have all that the shaders have.
struct part_pose
{
    std::span<const gpu_matrix> inverse; // of the bind pose
    std::span<const gpu_matrix> transforms;
    int heat_bone = -1; // whose weights are shown; below zero: none of this part
};

// What all draws of a frame share. What belongs to one drawable (is_weapon, has_alpha, ...) is set by it for its own
// draws and means nothing afterwards.
struct frame_constants
{
    mvp_buffer vs;
    light_buffer ps;
    pose_buffer pose; // of the part, for model_pass::surfaces
    model_pass pass = model_pass::lit;
    std::optional<shown_group> selected;
    const shown_groups* hidden = nullptr; // null: none
    std::span<const part_pose> poses;     // of the scene's parts
    std::uint32_t part = 0;               // of the scene, that is being drawn
    std::int32_t width = 1;               // of the picture
    std::int32_t height = 1;
    UINT group = 0;      // that was drawn last of the pass: from 1 on (model_pass::surfaces and shading)
    screen_area reached; // by what was drawn
};

class id3d_drawable_object
{
public:
    virtual ~id3d_drawable_object() = default;

    // Issues the draw calls, on the thread that owns the context.
    virtual void draw(lib3d& library, frame_constants& frame) const = 0;
};

// Lines: positions with colours in the model's space, two vertices each.
class d3d_drawable_geometry : public id3d_drawable_object
{
public:
    // False when the device was lost. Without lines nothing is drawn.
    [[nodiscard]] bool create(lib3d& library, std::span<const gpu_line_vertex> lines);
    void draw(lib3d& library, frame_constants& frame) const override;

private:
    com_ptr<ID3D11Buffer> m_vertex_buffer;
    UINT m_vertex_count = 0;
};

} // namespace korvane
