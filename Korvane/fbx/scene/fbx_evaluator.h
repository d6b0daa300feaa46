#pragma once

// Where the nodes of an FBX scene are at a time of one of its takes (docs/formats/fbx.md, "Curves"). Made once for a
// take, then asked for any number of times and nodes. Refers to the scene, which must outlive it and stay as it is;
// many threads may ask.

#include "Korvane/fbx/scene/fbx_scene.h"

#include <array>
#include <span>
#include <vector>

namespace korvane
{

class fbx_evaluator
{
public:
    // Without a stack (fbx_none): the scene at rest, as the nodes' own properties say.
    explicit fbx_evaluator(const fbx_scene& scene, std::size_t stack = fbx_none);

    bool isAnimated(std::size_t node) const { return !m_moves[node].empty(); }
    // The node's placement with what the take moves put in: translation, rotation (degrees) and scaling.
    [[nodiscard]] fbx_placement placement(std::size_t node, fbx_ticks time) const;
    // Relative to the parent.
    [[nodiscard]] fbx_transform local(std::size_t node, fbx_ticks time) const;
    // Of every node, in the scene's order.
    [[nodiscard]] std::vector<fbx_world> world(fbx_ticks time) const;

private:
    struct move // of one property of a node, by one layer
    {
        const fbx_animation_layer* layer;
        const fbx_curve_node* curve_node;
        bool is_base; // of the stack's first layer: takes the place of what the node says
    };

    double weightAt(const fbx_animation_layer& layer, fbx_ticks time) const;
    glm::dvec3 valueAt(const fbx_curve_node& curve_node, fbx_ticks time) const;
    void apply(const move& move, fbx_ticks time, fbx_placement& placement) const;

    const fbx_scene& m_scene;
    std::vector<std::vector<move>> m_moves; // for each node, lowest layer first
};

} // namespace korvane
