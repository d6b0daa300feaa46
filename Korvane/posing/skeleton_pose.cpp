#include "Korvane/posing/skeleton_pose.h"

#include "Korvane/posing/transform.h"

namespace korvane
{

std::vector<joint> bindPose(const anim_data& skeleton)
{
    std::vector<joint> joints;
    joints.reserve(skeleton.bones.size());
    for (const anim_bone& bone : skeleton.bones)
    {
        joint& target = joints.emplace_back();
        target.name = bone.name;
        target.index = bone.index;
        target.parent = bone.parent;
        target.translation = bone.translation;
        target.rotation = bone.rotation;
        target.local = transformMatrix(bone.translation, bone.rotation);
    }
    return joints;
}

bool skeleton_pose::setSkeleton(const anim_data& skeleton)
{
    m_player.unload();
    m_animation = {};
    m_current = bindPose(skeleton);
    const bool fits = m_tree.build(m_current);
    m_bind = m_current; // with the matrices
    return fits;
}

bool skeleton_pose::setAnimation(std::shared_ptr<const anim_data> source, failure& why)
{
    if (!m_animation.expand(std::move(source), m_bind, why))
        return false;
    m_player.load({m_animation.frameRate(), m_animation.endTime(), m_animation.frameCount()});
    show(0, 0);
    return true;
}

void skeleton_pose::clearAnimation()
{
    m_player.unload();
    m_animation = {};
    show(0, 0);
}

void skeleton_pose::advance(playback_control& control)
{
    control.advance(m_player);
    if (hasAnimation())
        show(m_player.position().frame, m_player.position().fraction);
}

void skeleton_pose::show(std::uint64_t frame, float fraction)
{
    if (hasAnimation())
        m_animation.sample(frame, fraction, m_current);
    else
        for (std::size_t i = 0; i < m_current.size(); ++i)
        {
            m_current[i].translation = m_bind[i].translation;
            m_current[i].rotation = m_bind[i].rotation;
        }
    m_tree.updateWorld();
}

} // namespace korvane
