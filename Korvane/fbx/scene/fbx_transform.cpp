#include "Korvane/fbx/scene/fbx_transform.h"

#include <glm/geometric.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace korvane
{

namespace
{

constexpr double degree = std::numbers::pi / 180;

struct axis_order
{
    glm::length_t first;
    glm::length_t second;
    glm::length_t third;
    double sign; // 1 for x y z and its rotations, -1 for the others
};

const axis_order& axesOf(fbx_rotation_order order)
{
    static constexpr std::array<axis_order, 7> table = {
        {{0, 1, 2, 1}, {0, 2, 1, -1}, {1, 2, 0, 1}, {1, 0, 2, -1}, {2, 0, 1, 1}, {2, 1, 0, -1}, {0, 1, 2, 1}}};
    return table[static_cast<std::size_t>(order)];
}

glm::dquat aboutAxis(glm::length_t axis, double degrees)
{
    glm::dquat rotation(std::cos(degrees * degree / 2), 0, 0, 0);
    (axis == 0 ? rotation.x : axis == 1 ? rotation.y : rotation.z) = std::sin(degrees * degree / 2);
    return rotation;
}

glm::dmat3 scaleMatrix(const glm::dvec3& scaling)
{
    return {scaling.x, 0, 0, 0, scaling.y, 0, 0, 0, scaling.z};
}

} // namespace

glm::dmat4 fbx_transform::matrix() const
{
    glm::dmat4 result(glm::mat3_cast(rotation) * scaleMatrix(scaling));
    result[3] = glm::dvec4(translation, 1);
    return result;
}

glm::dquat quaternionFromEuler(const glm::dvec3& degrees, fbx_rotation_order order)
{
    const axis_order& axes = axesOf(order);
    return aboutAxis(axes.third, degrees[axes.third]) * aboutAxis(axes.second, degrees[axes.second]) *
           aboutAxis(axes.first, degrees[axes.first]);
}

glm::dvec3 eulerFromQuaternion(const glm::dquat& rotation, fbx_rotation_order order)
{
    const axis_order& axes = axesOf(order);
    const glm::dmat3 columns = glm::mat3_cast(glm::normalize(rotation));
    const auto entry = [&columns](glm::length_t row, glm::length_t column) { return columns[column][row]; };
    const double sine = std::clamp(-axes.sign * entry(axes.third, axes.first), -1.0, 1.0);
    glm::dvec3 angles(0);
    angles[axes.second] = std::asin(sine);
    if (std::abs(sine) > 1 - 1e-14) // first and third turn about the same line: all of it goes to the first
    {
        angles[axes.first] = std::atan2(-axes.sign * entry(axes.second, axes.third), entry(axes.second, axes.second));
    }
    else
    {
        angles[axes.first] = std::atan2(axes.sign * entry(axes.third, axes.second), entry(axes.third, axes.third));
        angles[axes.third] = std::atan2(axes.sign * entry(axes.second, axes.first), entry(axes.first, axes.first));
    }
    return angles / degree;
}

fbx_transform localTransform(const fbx_placement& placement)
{
    const fbx_placement& p = placement;
    fbx_transform local;
    local.rotation = quaternionFromEuler(p.rotation, p.activeOrder());
    if (p.hasRotationSpace())
        local.rotation = quaternionFromEuler(p.pre_rotation, fbx_rotation_order::xyz) * local.rotation *
                         glm::conjugate(quaternionFromEuler(p.post_rotation, fbx_rotation_order::xyz));
    local.scaling = p.scaling;
    // T Roff Rp R Rp^-1 Soff Sp S Sp^-1 applied to the origin.
    const glm::dvec3 turned = p.scaling_offset + p.scaling_pivot - p.scaling * p.scaling_pivot - p.rotation_pivot;
    local.translation = p.translation + p.rotation_offset + p.rotation_pivot + local.rotation * turned;
    return local;
}

fbx_transform geometricTransform(const fbx_placement& placement)
{
    return {placement.geometric_translation, quaternionFromEuler(placement.geometric_rotation, fbx_rotation_order::xyz),
            placement.geometric_scaling};
}

fbx_world worldTransform(const fbx_world& parent, fbx_inherit inherit_type, const fbx_transform& local)
{
    fbx_world world;
    world.rotation = parent.rotation * local.rotation;
    world.own_scaling = local.scaling;
    const glm::dmat3 whole = parent.inherited * scaleMatrix(parent.own_scaling);
    const glm::dmat3 turn = glm::mat3_cast(local.rotation);
    if (inherit_type == fbx_inherit::rr_s)
        world.inherited = glm::transpose(turn) * parent.inherited * turn;
    else if (inherit_type == fbx_inherit::rr_ss)
        world.inherited = whole;
    else
        world.inherited = glm::transpose(turn) * whole * turn;
    world.matrix = glm::dmat4(glm::mat3_cast(world.rotation) * world.inherited * scaleMatrix(world.own_scaling));
    world.matrix[3] = glm::dvec4(glm::dvec3(parent.matrix * glm::dvec4(local.translation, 1)), 1);
    return world;
}

} // namespace korvane
