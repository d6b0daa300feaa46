#pragma once

// Where an animation's bones are at times of an FBX take, relative to their parents in the animation, whatever stands
// between and above them in the FBX scene. Comes from the nodes' world transforms: nodes above the bones, their scale,
// the scene's axes and another hierarchy of bones all lose themselves on the way. Scale itself is left out.
// Space: the games' files' own (export_scene.h), lengths in the scene's unit. One thread at a time.

#include "Korvane/fbx/scene/fbx_evaluator.h"

#include <span>
#include <vector>

namespace korvane
{

struct sampled_bone
{
    std::size_t node = fbx_none; // of the scene; none: the bone keeps the values below
    std::int32_t parent = -1;    // among the bones; one that is none, or a ring of parents: no parent
    glm::dvec3 own_translation{0};
    glm::dquat own_rotation{1, 0, 0, 0};
};

struct bone_place // relative to the parent
{
    glm::dvec3 translation{0};
    glm::dquat rotation{1, 0, 0, 0}; // of unit length
};

class fbx_bone_sampler
{
public:
    // The scene must outlive the object. A stack of fbx_none: the scene at rest.
    fbx_bone_sampler(const fbx_scene& scene, std::size_t stack, std::vector<sampled_bone> bones);

    // One for each bone; the values of a damaged file may be no numbers. Valid until the next call.
    [[nodiscard]] std::span<const bone_place> sample(fbx_ticks time);

    // False: the scene's three axes are not at right angles, and Y up was assumed.
    bool hasAxes() const { return m_has_axes; }

private:
    void setAxes();
    void placeNodes(fbx_ticks time);
    void placeBones();

    const fbx_scene& m_scene;
    fbx_evaluator m_evaluator;
    std::vector<sampled_bone> m_bones;
    std::vector<std::size_t> m_order;       // of the bones: parents first
    std::vector<std::size_t> m_needed;      // nodes with a bone, and those above them, in the scene's order
    std::vector<fbx_world> m_nodes;         // of all nodes, but only the needed ones are kept up
    std::vector<bone_place> m_world;        // of the bones
    std::vector<bone_place> m_local;        // of the bones
    glm::dmat3 m_axes{1};                   // from the scene's axes to the files'
    glm::dquat m_axes_rotation{1, 0, 0, 0}; // the same as a rotation, behind a mirroring in X where there is one
    bool m_is_mirrored = false;             // the scene is left-handed
    bool m_has_axes = true;
};

} // namespace korvane
