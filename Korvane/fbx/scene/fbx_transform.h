#pragma once

// How a node of an FBX scene is placed: the properties a file stores, the local transform they add up to, and the world
// transform that the inheritance of rotation and scale makes of it (docs/formats/fbx.md, "Scene"). Column vectors,
// angles in degrees, lengths in the file's unit, double precision. Plain values: any thread.

#include <glm/gtc/quaternion.hpp>
#include <glm/mat3x3.hpp>
#include <glm/mat4x4.hpp>
#include <glm/vec3.hpp>

#include <cstdint>

namespace korvane
{

// The letter that stands first acts first. The spheric order is treated as xyz.
enum class fbx_rotation_order : std::uint8_t
{
    xyz,
    xzy,
    yzx,
    yxz,
    zxy,
    zyx,
    spheric_xyz
};

// How the parent's rotation (R) and scale (S) meet the node's own (r, s).
enum class fbx_inherit : std::uint8_t
{
    rr_ss, // rotations multiply, scales multiply axis by axis
    rs_rs, // the plain product of matrices
    rr_s   // the parent's own scale is left out; the node's translation still lies in the parent's space
};

struct fbx_placement // as stored; the members bear the properties' names
{
    glm::dvec3 translation{0};
    glm::dvec3 rotation{0};
    glm::dvec3 scaling{1};
    glm::dvec3 rotation_offset{0};
    glm::dvec3 rotation_pivot{0};
    glm::dvec3 scaling_offset{0};
    glm::dvec3 scaling_pivot{0};
    glm::dvec3 pre_rotation{0};  // always xyz
    glm::dvec3 post_rotation{0}; // always xyz; its inverse takes effect
    glm::dvec3 geometric_translation{0};
    glm::dvec3 geometric_rotation{0}; // always xyz
    glm::dvec3 geometric_scaling{1};
    fbx_rotation_order rotation_order = fbx_rotation_order::xyz;
    // The pre-rotation, the post-rotation and the order take effect when the first is set and the second is not.
    bool rotation_active = false;
    bool rotation_space_for_limit_only = false;
    fbx_inherit inherit_type = fbx_inherit::rr_ss;

    bool hasRotationSpace() const { return rotation_active && !rotation_space_for_limit_only; }
    fbx_rotation_order activeOrder() const { return hasRotationSpace() ? rotation_order : fbx_rotation_order::xyz; }
};

struct fbx_transform // translation * rotation * scaling
{
    glm::dvec3 translation{0};
    glm::dquat rotation{1, 0, 0, 0}; // w first
    glm::dvec3 scaling{1};

    glm::dmat4 matrix() const;
};

[[nodiscard]] glm::dquat quaternionFromEuler(const glm::dvec3& degrees, fbx_rotation_order order);
// Angles that give this rotation; the second of the order within -90 to 90 degrees.
[[nodiscard]] glm::dvec3 eulerFromQuaternion(const glm::dquat& rotation, fbx_rotation_order order);

// Relative to the parent, pivots and offsets included, without the geometric part.
[[nodiscard]] fbx_transform localTransform(const fbx_placement& placement);
// What is between the node and its mesh; not inherited by the children.
[[nodiscard]] fbx_transform geometricTransform(const fbx_placement& placement);

struct fbx_world
{
    glm::dmat4 matrix{1};            // node to world
    glm::dquat rotation{1, 0, 0, 0}; // the product of all rotations, without any scale
    // What came down from above, in the axes of the node: the matrix's linear part is rotation * inherited *
    // own_scaling.
    glm::dmat3 inherited{1};
    glm::dvec3 own_scaling{1};
};

[[nodiscard]] fbx_world worldTransform(const fbx_world& parent, fbx_inherit inherit_type, const fbx_transform& local);

} // namespace korvane
