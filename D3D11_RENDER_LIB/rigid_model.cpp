#include "D3D11_RENDER_LIB/rigid_model.h"

#include "D3D11_RENDER_LIB/pose_palette.h"

#include <algorithm>
#include <optional>

namespace korvane
{

bool rigid_model::create(lib3d& library, const scene_part& part, gpu_textures& views)
{
    m_has_skeleton = part.model->has_skeleton;
    m_is_attached_to_bone = part.bone >= 0;
    m_weapon = gpuMatrix(part.weapon);
    const std::vector<scene_group>& groups = part.groups();
    m_groups.resize(groups.size());
    for (std::size_t i = 0; i < groups.size(); ++i)
        if (!m_groups[i].create(library, groups[i], part.bone, part.textures[i], views))
            return false;
    return true;
}

void rigid_model::draw(lib3d& library, frame_constants& frame) const
{
    if (frame.part < frame.poses.size())
    {
        const part_pose& pose = frame.poses[frame.part];
        std::copy(pose.inverse.begin(), pose.inverse.end(), frame.vs.inverse.begin());
        std::copy(pose.transforms.begin(), pose.transforms.end(), frame.vs.tranforms.begin());
        frame.vs.color = {static_cast<float>(pose.heat_bone), 0, 0, 0};
    }
    frame.vs.is_weapon = m_is_attached_to_bone ? 1 : 0;
    frame.vs.mWeapon = m_weapon;
    std::optional<std::int32_t> posed; // as what the pose was uploaded
    const bool is_part_selected = frame.selected && frame.selected->part == frame.part;
    for (std::uint32_t i = 0; i < m_groups.size(); ++i)
    {
        if (frame.hidden != nullptr &&
            std::binary_search(frame.hidden->begin(), frame.hidden->end(), shown_group{frame.part, i}))
            continue;
        // Groups without weights cannot be skinned, even in a model with a skeleton.
        frame.vs.static_model = m_has_skeleton && m_groups[i].isSkinned() ? 0 : 1;
        const bool is_selected = is_part_selected && frame.selected->group == i;
        std::int32_t& flags = frame.ps.debug_flags[3];
        flags = is_selected ? flags | draw_selected : flags & ~draw_selected;
        if (frame.pass == model_pass::surfaces && posed != frame.vs.static_model)
        {
            fillPose(frame.vs, frame.pose);
            library.uploadPose(frame.pose);
            posed = frame.vs.static_model;
        }
        m_groups[i].draw(library, frame);
    }
}

} // namespace korvane
