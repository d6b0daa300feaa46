#include "Korvane/fbx/convert/fbx_bone_sampler.h"

#include <glm/geometric.hpp>
#include <glm/matrix.hpp>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace korvane
{

namespace
{

std::size_t parentOf(const std::vector<sampled_bone>& bones, std::size_t bone)
{
    const std::int32_t parent = bones[bone].parent;
    return parent < 0 || static_cast<std::size_t>(parent) >= bones.size() ? fbx_none : static_cast<std::size_t>(parent);
}

// So many steps lead to every ancestor and once round every ring.
bool isOwnAncestor(const std::vector<sampled_bone>& bones, std::size_t bone)
{
    std::size_t above = parentOf(bones, bone);
    for (std::size_t step = 0; step < bones.size() && above != fbx_none && above != bone; ++step)
        above = parentOf(bones, above);
    return above == bone;
}

std::size_t depthOf(const std::vector<sampled_bone>& bones, std::size_t bone)
{
    std::size_t depth = 0;
    for (std::size_t above = parentOf(bones, bone); above != fbx_none; above = parentOf(bones, above))
        ++depth;
    return depth;
}

glm::dvec3 axisVector(const fbx_axis& axis)
{
    glm::dvec3 vector(0);
    vector[axis.axis] = axis.sign < 0 ? -1 : 1;
    return vector;
}

} // namespace

fbx_bone_sampler::fbx_bone_sampler(const fbx_scene& scene, std::size_t stack, std::vector<sampled_bone> bones)
    : m_scene(scene)
    , m_evaluator(scene, stack)
    , m_bones(std::move(bones))
    , m_order(m_bones.size())
    , m_nodes(scene.nodes.size())
    , m_world(m_bones.size())
    , m_local(m_bones.size())
{
    for (std::size_t i = 0; i < m_bones.size(); ++i)
        if (isOwnAncestor(m_bones, i)) // a ring is cut open at its first bone
            m_bones[i].parent = -1;
    std::vector<std::size_t> depth(m_bones.size());
    for (std::size_t i = 0; i < depth.size(); ++i)
        depth[i] = depthOf(m_bones, i);
    std::iota(m_order.begin(), m_order.end(), std::size_t{0});
    std::stable_sort(m_order.begin(), m_order.end(),
                     [&depth](std::size_t left, std::size_t right) { return depth[left] < depth[right]; });
    std::vector<bool> is_needed(scene.nodes.size(), false);
    for (const sampled_bone& bone : m_bones)
        for (std::size_t node = bone.node; node != fbx_none && !is_needed[node]; node = scene.nodes[node].parent)
            is_needed[node] = true;
    for (std::size_t node = 0; node < is_needed.size(); ++node)
        if (is_needed[node])
            m_needed.push_back(node);
    setAxes();
}

void fbx_bone_sampler::setAxes()
{
    const glm::dmat3 axes =
        glm::transpose(glm::dmat3(axisVector(m_scene.right), axisVector(m_scene.up), axisVector(m_scene.front)));
    const double handedness = glm::determinant(axes);
    if (std::abs(handedness) < 0.5) // two are the same
    {
        m_has_axes = false;
        return;
    }
    m_axes = axes;
    m_is_mirrored = handedness < 0;
    glm::dmat3 turn = axes;
    if (m_is_mirrored)
        turn[0] = -turn[0];
    m_axes_rotation = glm::quat_cast(turn);
}

void fbx_bone_sampler::placeNodes(fbx_ticks time)
{
    const fbx_world root;
    for (const std::size_t i : m_needed)
    {
        const fbx_node& node = m_scene.nodes[i];
        const fbx_world& above = node.parent == fbx_none ? root : m_nodes[node.parent];
        m_nodes[i] = worldTransform(above, node.placement.inherit_type, m_evaluator.local(i, time));
    }
}

void fbx_bone_sampler::placeBones()
{
    for (const std::size_t i : m_order)
    {
        const sampled_bone& bone = m_bones[i];
        const std::size_t parent = parentOf(m_bones, i);
        const bone_place above = parent == fbx_none ? bone_place() : m_world[parent];
        bone_place& world = m_world[i];
        bone_place& local = m_local[i];
        if (bone.node == fbx_none)
        {
            local = {bone.own_translation, bone.own_rotation};
            world = {above.translation + above.rotation * local.translation, above.rotation * local.rotation};
            continue;
        }
        const fbx_world& node = m_nodes[bone.node];
        glm::dquat rotation = node.rotation;
        if (m_is_mirrored)
            rotation = glm::dquat(rotation.w, rotation.x, -rotation.y, -rotation.z);
        world = {m_axes * glm::dvec3(node.matrix[3]), glm::normalize(m_axes_rotation * rotation)};
        const glm::dquat back = glm::conjugate(above.rotation);
        local = {back * (world.translation - above.translation), glm::normalize(back * world.rotation)};
    }
}

std::span<const bone_place> fbx_bone_sampler::sample(fbx_ticks time)
{
    placeNodes(time);
    placeBones();
    return m_local;
}

} // namespace korvane
