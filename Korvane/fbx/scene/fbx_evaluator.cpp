#include "Korvane/fbx/scene/fbx_evaluator.h"

#include <cmath>

namespace korvane
{

namespace
{

glm::dvec3& memberOf(fbx_placement& placement, fbx_property property)
{
    if (property == fbx_property::translation)
        return placement.translation;
    return property == fbx_property::rotation ? placement.rotation : placement.scaling;
}

// Rotations as wholes, not by angle: the layer's, or the part of it that its weight leaves, on top of the one below;
// and the way from the one below to the layer's.
glm::dvec3 turnedFurther(const glm::dvec3& below, const glm::dvec3& added, double weight, fbx_rotation_order order)
{
    const glm::dquat none(1, 0, 0, 0);
    const glm::dquat part = glm::slerp(none, quaternionFromEuler(added, order), weight);
    return eulerFromQuaternion(quaternionFromEuler(below, order) * part, order);
}

glm::dvec3 turnedTowards(const glm::dvec3& below, const glm::dvec3& value, double weight, fbx_rotation_order order)
{
    return eulerFromQuaternion(glm::slerp(quaternionFromEuler(below, order), quaternionFromEuler(value, order), weight),
                               order);
}

glm::dvec3 power(const glm::dvec3& base, double exponent)
{
    if (exponent == 1)
        return base;
    if (exponent == 0)
        return glm::dvec3(1);
    glm::dvec3 result;
    for (glm::length_t axis = 0; axis < 3; ++axis) // a mirroring stays one
        result[axis] = std::copysign(std::pow(std::abs(base[axis]), exponent), base[axis]);
    return result;
}

} // namespace

fbx_evaluator::fbx_evaluator(const fbx_scene& scene, std::size_t stack) : m_scene(scene), m_moves(scene.nodes.size())
{
    if (stack == fbx_none)
        return;
    for (const fbx_animation_layer& layer : scene.stacks[stack].layers)
    {
        if (layer.is_muted)
            continue;
        for (const fbx_curve_node& curve_node : layer.curve_nodes)
        {
            if (curve_node.node == fbx_none || curve_node.property == fbx_property::other)
                continue;
            std::vector<move>& moves = m_moves[curve_node.node];
            moves.push_back({&layer, &curve_node, &layer == &scene.stacks[stack].layers.front()});
        }
    }
}

double fbx_evaluator::weightAt(const fbx_animation_layer& layer, fbx_ticks time) const
{
    return (layer.weight_curve == fbx_none ? layer.weight : m_scene.curves[layer.weight_curve].evaluate(time)) / 100;
}

glm::dvec3 fbx_evaluator::valueAt(const fbx_curve_node& curve_node, fbx_ticks time) const
{
    glm::dvec3 value = curve_node.defaults;
    for (std::size_t axis = 0; axis < 3; ++axis)
        if (curve_node.curves[axis] != fbx_none)
            value[static_cast<glm::length_t>(axis)] = m_scene.curves[curve_node.curves[axis]].evaluate(time);
    return value;
}

void fbx_evaluator::apply(const move& move, fbx_ticks time, fbx_placement& placement) const
{
    const fbx_animation_layer& layer = *move.layer;
    const fbx_property property = move.curve_node->property;
    const glm::dvec3 value = valueAt(*move.curve_node, time);
    glm::dvec3& target = memberOf(placement, property);
    if (move.is_base || layer.blend == fbx_animation_layer::blend_kind::replace)
    {
        target = value;
        return;
    }
    const double weight = weightAt(layer, time);
    const bool is_mix = layer.blend == fbx_animation_layer::blend_kind::mix;
    if (property == fbx_property::rotation && !layer.adds_angles)
        target = (is_mix ? turnedTowards : turnedFurther)(target, value, weight, placement.activeOrder());
    else if (property == fbx_property::scaling && !layer.adds_scales)
        target = (is_mix ? power(target, 1 - weight) : target) * power(value, weight);
    else
        target = target * (is_mix ? 1 - weight : 1) + value * weight;
}

fbx_placement fbx_evaluator::placement(std::size_t node, fbx_ticks time) const
{
    fbx_placement result = m_scene.nodes[node].placement;
    for (const move& move : m_moves[node])
        apply(move, time, result);
    return result;
}

fbx_transform fbx_evaluator::local(std::size_t node, fbx_ticks time) const
{
    return localTransform(placement(node, time));
}

std::vector<fbx_world> fbx_evaluator::world(fbx_ticks time) const
{
    std::vector<fbx_world> result(m_scene.nodes.size());
    const fbx_world root;
    for (std::size_t i = 0; i < result.size(); ++i)
    {
        const fbx_node& node = m_scene.nodes[i];
        const fbx_world& parent = node.parent == fbx_none ? root : result[node.parent];
        result[i] = worldTransform(parent, node.placement.inherit_type, local(i, time));
    }
    return result;
}

} // namespace korvane
