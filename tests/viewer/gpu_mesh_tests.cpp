#include "D3D11_RENDER_LIB/gpu_mesh.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace korvane
{

namespace
{

constexpr float nan_value = std::numeric_limits<float>::quiet_NaN();

group_data groupOf(const std::vector<vertex_record>& records, std::vector<std::uint16_t> indices)
{
    group_data group;
    group.store.vertices = vertex_array(records.size());
    std::copy(records.begin(), records.end(), group.store.vertices.records().begin());
    group.store.indices = std::move(indices);
    return group;
}

vertex_record recordAt(float x, float y, float z, const glm::vec3& normal = glm::vec3(0, 0, -1))
{
    vertex_record record{};
    record.position = {x, y, z};
    record.normal = normal;
    return record;
}

TEST(GpuMesh, EveryFieldOfAVertexGoesToItsPlace)
{
    vertex_record record{};
    record.position = {1, 2, 3};
    record.uv = {4, 5};
    record.normal = {6, 7, 8};
    record.bitangent = {9, 10, 11};
    record.tangent = {12, 13, 14};
    record.bones = {15, 16, 17, 18};
    record.weights = {0.1f, 0.2f, 0.3f, 0.4f};
    const gpu_mesh mesh = buildGpuMesh(groupOf({record}, {}));
    ASSERT_EQ(mesh.vertices.size(), 1u);
    const gpu_vertex& vertex = mesh.vertices[0];
    EXPECT_EQ(vertex.position, (gpu_float3{1, 2, 3}));
    EXPECT_EQ(vertex.uv, (std::array<float, 2>{4, 5}));
    EXPECT_EQ(vertex.normal, (gpu_float3{6, 7, 8}));
    EXPECT_EQ(vertex.tangent, (gpu_float3{12, 13, 14}));
    EXPECT_EQ(vertex.binormal, (gpu_float3{9, 10, 11}));
    EXPECT_EQ(vertex.bones, (std::array<std::uint32_t, 4>{15, 16, 17, 18}));
    EXPECT_EQ(vertex.weights, (gpu_float4{0.1f, 0.2f, 0.3f, 0.4f}));

    const gpu_mesh attached = buildGpuMesh(groupOf({record}, {}), 7);
    EXPECT_EQ(attached.vertices[0].bones, (std::array<std::uint32_t, 4>{7, 7, 7, 7}));
    EXPECT_EQ(attached.vertices[0].weights, (gpu_float4{1, 0, 0, 0}));
    EXPECT_TRUE(attached.is_skinned);
}

TEST(GpuMesh, TrianglesWithMissingVerticesAreLeftOut)
{
    const std::vector<vertex_record> three = {recordAt(0, 0, 0), recordAt(0, 1, 0), recordAt(1, 0, 0)};
    const struct
    {
        const char* name;
        std::vector<std::uint16_t> indices;
        std::vector<std::uint16_t> kept;
        std::size_t dropped;
    } rows[] = {
        {"all there", {0, 1, 2}, {0, 1, 2}, 0},
        {"one past the end", {0, 1, 3, 0, 1, 2}, {0, 1, 2}, 1},
        {"the largest index", {0xffff, 0, 1}, {}, 1},
        {"an unfinished triangle", {0, 1, 2, 0, 1}, {0, 1, 2}, 0},
        {"none", {}, {}, 0},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.name);
        const gpu_mesh mesh = buildGpuMesh(groupOf(three, row.indices));
        EXPECT_EQ(mesh.indices, row.kept);
        EXPECT_EQ(mesh.dropped_triangles, row.dropped);
    }
    EXPECT_EQ(buildGpuMesh(groupOf({}, {0, 1, 2})).dropped_triangles, 1u) << "a group without vertices";
}

TEST(GpuMesh, WhatIsNotANumberNeitherDrawsNorFrames)
{
    const gpu_mesh mesh = buildGpuMesh(groupOf(
        {recordAt(nan_value, std::numeric_limits<float>::infinity(), 1e30f), recordAt(1, 1, 1), recordAt(2, 2, 2)},
        {0, 1, 2}));
    EXPECT_EQ(mesh.vertices[0].position[0], 0.0f);
    EXPECT_EQ(mesh.vertices[0].position[1], 0.0f);
    model_bounds bounds;
    addToBounds(mesh, bounds);
    EXPECT_LE(bounds.extent().z, 2000.0f);
}

TEST(GpuMesh, BoundsFollowTheTrianglesNotTheStoredBox)
{
    group_data group =
        groupOf({recordAt(-1, 0, 0), recordAt(0, 2, 0), recordAt(1, 0, 3), recordAt(99, 99, 99)}, {0, 1, 2});
    group.header.bbox_max = glm::vec3(500);
    model_bounds bounds;
    EXPECT_TRUE(bounds.isEmpty());
    addToBounds(buildGpuMesh(group), bounds);
    EXPECT_EQ(bounds.least, glm::vec3(-1, 0, 0));
    EXPECT_EQ(bounds.most, glm::vec3(1, 2, 3));
}

TEST(GpuMesh, WindingIsJudgedByTheNormals)
{
    // Seen from -z, where the normals point, 0 -> up -> right is clockwise.
    const std::vector<vertex_record> three = {recordAt(0, 0, 0), recordAt(0, 1, 0), recordAt(1, 0, 0)};
    EXPECT_FALSE(buildGpuMesh(groupOf(three, {0, 1, 2})).is_wound_backwards);
    EXPECT_TRUE(buildGpuMesh(groupOf(three, {0, 2, 1})).is_wound_backwards);
}

TEST(GpuMesh, TexturesTakeTheFirstEntryOfTheirType)
{
    group_data group = groupOf({}, {});
    for (const auto& [type, path] : {std::pair<std::uint32_t, const char*>{12, "gloss"},
                                     {0, "first"},
                                     {0, "second"},
                                     {1, "normal"},
                                     {5, "unused"},
                                     {3, "mask"}})
    {
        texture_entry& entry = group.textures.emplace_back();
        entry.type = type;
        entry.path = path;
    }
    group.alpha_mode = 1;
    const gpu_mesh mesh = buildGpuMesh(group);
    EXPECT_EQ(mesh.texture_paths, (std::array<std::string, 5>{"first", "normal", "", "mask", "gloss"}));
    EXPECT_TRUE(mesh.has_alpha);
    group.alpha_mode = 0xffffffff;
    EXPECT_FALSE(buildGpuMesh(group).has_alpha);
}

} // namespace

} // namespace korvane
