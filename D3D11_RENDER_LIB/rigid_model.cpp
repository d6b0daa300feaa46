#include "D3D11_RENDER_LIB/rigid_model.h"

namespace korvane
{

bool rigid_model::create(lib3d& library, const scene_part& part, gpu_textures& views)
{
    m_has_skeleton = part.model->has_skeleton;
    m_is_attached_to_bone = part.bone >= 0;
    const std::vector<scene_group>& groups = part.groups();
    m_groups.resize(groups.size());
    for (std::size_t i = 0; i < groups.size(); ++i)
        if (!m_groups[i].create(library, groups[i], part.bone, part.textures[i], views))
            return false;
    return true;
}

void rigid_model::draw(lib3d& library, const frame_constants& frame) const
{
    frame_constants own = frame;
    own.vs.is_weapon = m_is_attached_to_bone ? 1 : 0;
    for (const sub_mesh& group : m_groups)
    {
        // Groups without weights cannot be skinned, even in a model with a skeleton.
        own.vs.static_model = m_has_skeleton && group.isSkinned() ? 0 : 1;
        group.draw(library, own);
    }
}

} // namespace korvane
