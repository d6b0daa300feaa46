#pragma once

// A whole model as the renderer holds it: one sub_mesh for each group of one level of detail, and whether it hangs on
// one bone.

#include "D3D11_RENDER_LIB/d3d_drawable.h"
#include "D3D11_RENDER_LIB/sub_mesh.h"

#include <vector>

namespace korvane
{

class rigid_model : public id3d_drawable_object
{
public:
    // Makes the device's objects of a part of a scene. False when the device was lost.
    [[nodiscard]] bool create(lib3d& library, const scene_part& part, gpu_textures& views);
    void draw(lib3d& library, frame_constants& frame) const override;

private:
    std::vector<sub_mesh> m_groups;
    gpu_matrix m_weapon = gpu_identity; // of a model that hangs on a bone
    bool m_has_skeleton = false;
    bool m_is_attached_to_bone = false;
};

} // namespace korvane
