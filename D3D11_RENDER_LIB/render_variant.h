#pragma once

// A figure: all parts of a scene, drawn in one space. A single model is a figure of one part.

#include "D3D11_RENDER_LIB/d3d_drawable.h"
#include "D3D11_RENDER_LIB/gpu_textures.h"
#include "Korvane/scene/loaded_scene.h"

#include <memory>
#include <vector>

namespace korvane
{

class render_variant : public id3d_drawable_object
{
public:
    // Makes the device's objects of a scene's parts. False when the device was lost.
    [[nodiscard]] bool create(lib3d& library, const loaded_scene& scene, gpu_textures& views);
    void draw(lib3d& library, frame_constants& frame) const override;

private:
    std::vector<std::unique_ptr<id3d_drawable_object>> m_parts;
};

} // namespace korvane
