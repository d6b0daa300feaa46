#pragma once

// What a view shows: the model and, when asked for, a floor grid. The window and the off-screen renderer draw through
// this one class. Created and changed while nobody draws.

#include "D3D11_RENDER_LIB/rigid_model.h"
#include "D3D11_RENDER_LIB/scene_targets.h"
#include "Korvane/viewer/view_state.h"

namespace korvane
{

class model_scene
{
public:
    explicit model_scene(lib3d::log_port log = {}) : m_model(std::move(log)) {}

    // Builds the model; without data the scene is empty.
    void setModel(ID3D11Device& device, const rigid_model_source& source);
    const rigid_model& model() const { return m_model; }
    void release();

    // A whole frame into an output of the targets' size.
    void draw(lib3d& library, const scene_targets& targets, ID3D11RenderTargetView* output, const view_state& view);

private:
    rigid_model m_model;
    d3d_drawable_geometry m_floor;
};

} // namespace korvane
