#pragma once

// Meshes and the few ways in which the demo models are built: everything is a rectangular grid of points, made by
// lofting outlines along a path, turned into a closed shell where an edge would be open. Space as in
// humanoid_skeleton.h. Triangles are ordered so that cross(b - a, c - a) points outwards.

#include "tools/demo_data/humanoid_skeleton.h"

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

namespace korvane::demo
{

struct mesh_vertex
{
    vec3 position, normal, tangent, bitangent;         // unit vectors; tangent along u, bitangent along v
    vec2 uv;                                           // v grows downwards in the image
    std::array<std::uint8_t, 4> bones{};               // of the builder's skeleton, the strongest first
    std::array<std::uint8_t, 4> weights{255, 0, 0, 0}; // sum 255
};

struct mesh
{
    std::vector<mesh_vertex> vertices;
    std::vector<std::uint32_t> indices;

    void append(const mesh& other);
};

// Parts of at most limit vertices each, in triangle order.
[[nodiscard]] std::vector<mesh> split(const mesh& whole, std::size_t limit);

// rows x columns points, row by row. When it wraps, the last column repeats the first (with another u).
struct grid
{
    std::size_t rows = 0, columns = 0;
    bool wraps = false;
    std::vector<vec3> points;
    std::vector<vec2> uvs;

    vec3& at(std::size_t row, std::size_t column) { return points[row * columns + column]; }
    const vec3& at(std::size_t row, std::size_t column) const { return points[row * columns + column]; }
};

// Which bones may move a part; one: it is rigid. Several: each point belongs to the nearest ones, blended smoothly.
using bone_choice = std::span<const int>;

// One outline of a loft: an oval across the path. back and front are the half depths, square bends the oval (0) towards
// a rectangle (1).
struct section
{
    vec3 centre;
    double half_width = 0, front = 0, back = 0;
    double square = 0;
};

struct loft_options
{
    int around = 24, along = 4;        // columns, rows between two sections, before density
    double from_turn = 0, to_turn = 1; // 0 is the back, 0.25 the right (-x), 0.5 the front
    vec3 back_hint{0, 0, 1};           // the direction of turn 0, made perpendicular to the path
    vec3 axis;                         // outlines stay perpendicular to it, whatever the path does; zero: to the path
    double u0 = 0, u1 = 1, v0 = 0, v1 = 1;
    // Moves a point; turn and along (0 to 1 over the whole loft), its outward direction.
    std::function<vec3(vec3 point, vec3 outward, double turn, double along)> shape;
};

// density multiplies the numbers of rows and columns; 1 is LOD 0 of the standard figure.
[[nodiscard]] grid loft(std::span<const section> sections, const loft_options& options, double density);

class mesh_builder
{
public:
    // The bones to which it is rigged outlive it.
    explicit mesh_builder(double density, std::span<const bone> skeleton = humanoidBones())
        : m_skeleton(skeleton)
        , m_density(density)
    {
    }

    double density() const { return m_density; }
    mesh take() { return std::move(m_mesh); }

    // A surface whose normals point away from its rows' centres.
    void outward(const grid& surface, bone_choice bones);
    // A surface whose normals point to the side of towards.
    void facing(const grid& surface, vec3 towards, bone_choice bones);
    // Both sides of a sheet and the edges between them. The grid is the side away from its rows' centres, or, when
    // towards is given, the side that faces it.
    void shell(const grid& surface, double thickness, bone_choice bones, const vec3* towards = nullptr);
    // A loft with rounded or flat ends closed to a point.
    void closedLoft(std::vector<section> sections, const loft_options& options, bone_choice bones);
    // A box with sharp edges; half extents along three axes.
    void box(vec3 centre, vec3 axis_x, vec3 axis_y, vec3 axis_z, bone_choice bones, double uv_scale = 1);

private:
    void add(const grid& surface, std::vector<vec3> normals, bool flip, bone_choice bones);

    std::span<const bone> m_skeleton;
    mesh m_mesh;
    double m_density;
};

} // namespace korvane::demo
