#pragma once

// What a view shows: one model, or a figure of several, and, when asked for, a floor grid. The window and the
// off-screen renderer draw through this one class. Created and changed while nobody draws.

#include "D3D11_RENDER_LIB/render_variant.h"
#include "D3D11_RENDER_LIB/scene_targets.h"
#include "Korvane/viewer/view_state.h"

namespace korvane
{

class model_scene
{
public:
    explicit model_scene(const lib3d::log_port& log = {}) : m_model(log), m_variant(log) {}

    // Builds the model in place of what was shown; without data the scene is empty.
    void setModel(ID3D11Device& device, const rigid_model_source& source);
    // Builds the figure in place of what was shown.
    variant_outcome setVariant(ID3D11Device& device, const variant_source& source);
    void release();

    model_bounds bounds() const; // of what is shown

    // A whole frame into an output of the targets' size.
    void draw(lib3d& library, const scene_targets& targets, ID3D11RenderTargetView* output, const view_state& view);

private:
    rigid_model m_model;
    render_variant m_variant;
    d3d_drawable_geometry m_floor;
};

} // namespace korvane
