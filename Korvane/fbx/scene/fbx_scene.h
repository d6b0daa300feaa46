#pragma once

// What an FBX document means (docs/formats/fbx.md, "Scene"): nodes with their placement, meshes, skins, poses and
// animation, in the file's own unit and axes. Everything refers by index into the scene's lists, and readScene() has
// checked every index, count and parent: whoever walks the scene needs no check. The scene owns its data; many threads
// may read it.

#include "EASY_GUI/services/failure.h"
#include "Korvane/fbx/container/fbx_document.h"
#include "Korvane/fbx/scene/fbx_curve.h"
#include "Korvane/fbx/scene/fbx_transform.h"

#include <glm/mat4x4.hpp>
#include <glm/vec3.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace korvane
{

constexpr std::size_t fbx_none = static_cast<std::size_t>(-1);

enum class fbx_node_type
{
    mesh,
    skeleton,
    camera,
    light,
    null,
    other // any other attribute
};

struct fbx_node
{
    std::string name; // as in the file: may be empty, and need not be unique
    fbx_node_type type = fbx_node_type::null;
    std::size_t parent = fbx_none;     // none: a child of the scene's root
    std::vector<std::size_t> children; // in the order of the file's connections
    fbx_placement placement;
    std::size_t mesh = fbx_none;        // several nodes may show the same one
    std::vector<std::string> materials; // names, in the order in which the polygons of the mesh count them
    // Skeleton nodes only.
    std::string skeleton_kind; // "Root", "LimbNode", "Limb", "Effector"
    glm::dvec3 color{0.8};
    double size = 100;
};

// Normals or texture coordinates. The entry of a corner is found by the mapping; through the indices, if there are any.
struct fbx_layer_element
{
    enum class mapping_kind
    {
        control_point,
        corner,
        polygon,
        all_same
    };
    std::string name;
    mapping_kind mapping = mapping_kind::corner;
    std::vector<double> values;        // `width` numbers for each entry
    std::vector<std::int32_t> indices; // empty: direct; -1: no entry
    std::size_t width = 3;
};

struct fbx_cluster
{
    std::string name;
    std::size_t bone = fbx_none;       // a node
    std::vector<std::int32_t> indices; // of control points
    std::vector<double> weights;       // one for each index, as in the file
    glm::dmat4 mesh_to_bone{1};        // at the time of binding, as stored ("Transform")
    glm::dmat4 bone_to_world{1};       // at the time of binding ("TransformLink")
};

struct fbx_skin
{
    std::string name;
    std::vector<fbx_cluster> clusters; // in the order of the file's connections
};

struct fbx_mesh
{
    std::string name;
    std::vector<double> points;              // x, y, z of each control point
    std::vector<std::uint32_t> corners;      // control points, polygon after polygon
    std::vector<std::uint32_t> polygon_ends; // one past each polygon's last corner
    std::vector<fbx_layer_element> normals;
    std::vector<fbx_layer_element> uv_sets;
    // For each polygon which of its node's materials; may be more than it has. Empty: the file does not say.
    std::vector<std::int32_t> polygon_materials;
    std::vector<fbx_skin> skins;
    std::vector<std::size_t> nodes; // that show it; may be empty

    std::size_t pointCount() const { return points.size() / 3; }
    glm::dvec3 point(std::size_t index) const
    {
        return {points[3 * index], points[3 * index + 1], points[3 * index + 2]};
    }
    // The entry of an element for a corner of a polygon: an index in units of `width`; fbx_none: the corner has none.
    std::size_t entryOf(const fbx_layer_element& element, std::size_t corner, std::size_t polygon) const;
    // What a fan of each polygon gives.
    std::size_t triangleCount() const;
};

struct fbx_pose
{
    struct entry
    {
        std::size_t node = fbx_none;
        glm::dmat4 matrix{1}; // node to world
    };
    std::string name;
    bool is_bind = false;
    std::vector<entry> entries;
};

enum class fbx_property // of a node, that a curve node moves
{
    translation,
    rotation,
    scaling,
    other
};

struct fbx_curve_node
{
    std::string name;
    std::size_t node = fbx_none; // none: moves something else than a node
    fbx_property property = fbx_property::other;
    glm::dvec3 defaults{0};                                             // where a curve is missing
    std::array<std::size_t, 3> curves = {fbx_none, fbx_none, fbx_none}; // x, y, z; another property's first three
};

struct fbx_animation_layer
{
    enum class blend_kind
    {
        additive,
        replace,
        mix // like replace, but the weight lets through what lies below
    };
    std::string name;
    blend_kind blend = blend_kind::additive;
    bool is_muted = false;
    bool adds_angles = false; // rotations are added or mixed angle by angle; otherwise as wholes
    bool adds_scales = false; // scales are added or mixed as numbers; otherwise multiplied, or mixed geometrically
    double weight = 100;      // percent
    std::size_t weight_curve = fbx_none;
    std::vector<fbx_curve_node> curve_nodes;
};

struct fbx_stack // a take
{
    std::string name;
    fbx_ticks begin = 0; // the stated span; keys may lie outside
    fbx_ticks end = 0;
    std::vector<fbx_animation_layer> layers; // the base first
};

struct fbx_axis
{
    int axis = 0; // 0 x, 1 y, 2 z
    int sign = 1;
};

struct fbx_scene
{
    double unit_metres = 0.01; // what one unit of a world position is
    fbx_axis right{0, 1};
    fbx_axis up{1, 1};
    fbx_axis front{2, 1}; // towards the viewer
    double frames_per_second = 30;
    double ticks_per_second = 46186158000.0;

    std::vector<fbx_node> nodes;    // parents before their children
    std::vector<std::size_t> roots; // the scene root's children
    std::vector<fbx_mesh> meshes;
    std::vector<fbx_pose> poses;
    std::vector<fbx_curve> curves;
    std::vector<fbx_stack> stacks;  // in the file's order
    std::vector<std::string> notes; // what was left out, one sentence each, at most a hundred

    double seconds(fbx_ticks time) const { return static_cast<double>(time) / ticks_per_second; }
    fbx_ticks ticks(double seconds) const; // the nearest; a NaN is 0
    // Names from the root down, joined by '|'.
    std::string path(std::size_t node) const;
    // The times of a take's first and last key; false: it has none.
    bool keySpan(const fbx_stack& stack, fbx_ticks& first, fbx_ticks& last) const;
};

// False, with the reason, for a document that contradicts itself: parents in a circle, indices beyond their list,
// counts that do not fit together, key times that run back. What merely leads nowhere (a connection to an object that
// is not there, a cluster without a bone) is left out, with a note. The document is used up: large arrays are moved.
[[nodiscard]] bool readScene(fbx_document document, fbx_scene& scene, failure& why);

} // namespace korvane
