#include "D3D11_RENDER_LIB/gpu_mesh.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace korvane
{

namespace
{

constexpr float nan_value = std::numeric_limits<float>::quiet_NaN();

vertex_store storeOf(const std::vector<vertex_record>& records, std::vector<std::uint16_t> indices)
{
    vertex_store store;
    store.vertices = vertex_array(records.size());
    std::copy(records.begin(), records.end(), store.vertices.records().begin());
    store.indices = std::move(indices);
    return store;
}

vertex_record recordAt(float x, float y, float z, const glm::vec3& normal = glm::vec3(0, 0, -1))
{
    vertex_record record{};
    record.position = {x, y, z};
    record.normal = normal;
    return record;
}

struct built
{
    mesh_summary summary;
    std::vector<gpu_vertex> vertices;
};

built build(const vertex_store& store, int bone = -1)
{
    built result;
    result.summary = buildGpuVertices(store, bone, [&](std::size_t first, std::span<const gpu_vertex> vertices) {
        EXPECT_EQ(first, result.vertices.size());
        result.vertices.insert(result.vertices.end(), vertices.begin(), vertices.end());
    });
    return result;
}

TEST(gpu_mesh, everyFieldOfAVertexGoesToItsPlace)
{
    vertex_record record{};
    record.position = {1, 2, 3};
    record.uv = {4, 5};
    record.normal = {6, 7, 8};
    record.bitangent = {9, 10, 11};
    record.tangent = {12, 13, 14};
    record.bones = {15, 16, 17, 18};
    record.weights = {0.1f, 0.2f, 0.3f, 0.4f};
    const built mesh = build(storeOf({record}, {}));
    ASSERT_EQ(mesh.vertices.size(), 1u);
    const gpu_vertex& vertex = mesh.vertices[0];
    EXPECT_EQ(vertex.position, (gpu_float3{1, 2, 3}));
    EXPECT_EQ(vertex.uv, (std::array<float, 2>{4, 5}));
    EXPECT_EQ(vertex.normal, (gpu_float3{6, 7, 8}));
    EXPECT_EQ(vertex.tangent, (gpu_float3{12, 13, 14}));
    EXPECT_EQ(vertex.binormal, (gpu_float3{9, 10, 11}));
    EXPECT_EQ(vertex.bones, (std::array<std::uint32_t, 4>{15, 16, 17, 18}));
    EXPECT_EQ(vertex.weights, (gpu_float4{0.1f, 0.2f, 0.3f, 0.4f}));

    const built attached = build(storeOf({record}, {}), 7);
    EXPECT_EQ(attached.vertices[0].bones, (std::array<std::uint32_t, 4>{7, 7, 7, 7}));
    EXPECT_EQ(attached.vertices[0].weights, (gpu_float4{1, 0, 0, 0}));
}

TEST(gpu_mesh, onlyNumbersAndExistingVerticesReachTheDevice)
{
    const vertex_store store = storeOf(
        {recordAt(nan_value, std::numeric_limits<float>::infinity(), -1e30f), recordAt(1, 1, 1), recordAt(2, 2, 2)},
        {0, 1, 3, 0, 1, 2});
    const built mesh = build(store);
    EXPECT_EQ(mesh.vertices[0].position, (gpu_float3{0, 0, -1000}));
    EXPECT_EQ(mesh.vertices[0].normal, (gpu_float3{0, 0, -1}));
    std::vector<std::uint16_t> kept;
    EXPECT_TRUE(std::ranges::equal(drawnIndices(store, kept), std::vector<std::uint16_t>{0, 1, 2}));
}

TEST(gpu_mesh, verticesComeInPortions)
{
    std::vector<vertex_record> records;
    for (int i = 0; i < 1000; ++i)
        records.push_back(recordAt(static_cast<float>(i), 0, 0));
    const built mesh = build(storeOf(records, {}));
    ASSERT_EQ(mesh.vertices.size(), records.size());
    for (std::size_t i = 0; i < records.size(); ++i)
        ASSERT_EQ(mesh.vertices[i].position[0], static_cast<float>(i));
}

TEST(gpu_mesh, windingIsJudgedByTheNormals)
{
    // Seen from -z, where the normals point, 0 -> up -> right is clockwise.
    const std::vector<vertex_record> three = {recordAt(0, 0, 0), recordAt(0, 1, 0), recordAt(1, 0, 0)};
    EXPECT_FALSE(build(storeOf(three, {0, 1, 2})).summary.is_wound_backwards);
    EXPECT_TRUE(build(storeOf(three, {0, 2, 1})).summary.is_wound_backwards);
}

// The constants are the identity: a place of -1..1 is a place of the picture.
TEST(gpu_mesh, aGroupReachesAsFarAsItsBonesLetIt)
{
    std::vector<vertex_record> records = {recordAt(-0.5f, -0.5f, 0), recordAt(0.5f, -0.5f, 0), recordAt(0, 0.5f, 0)};
    for (vertex_record& record : records)
    {
        record.bones = {3, 7, 3, 3};
        record.weights = {0.5f, 0.5f, 0, 0};
    }
    const auto areaOf = [](const built& mesh, const mvp_buffer& constants) {
        const screen_area area = mesh.summary.reach.onScreen(constants, 100, 100);
        return std::array<int, 4>{area.left, area.top, area.right, area.bottom};
    };
    const built mesh = build(storeOf(records, {0, 1, 2}));
    mvp_buffer constants;
    EXPECT_EQ(areaOf(mesh, constants), (std::array<int, 4>{24, 24, 77, 77})) << "a pixel more on each side";
    constants.tranforms[7][0][3] = 0.4f; // moved to the right
    EXPECT_EQ(areaOf(mesh, constants), (std::array<int, 4>{24, 24, 97, 77}));
    constants.static_model = 1;
    EXPECT_EQ(areaOf(mesh, constants), (std::array<int, 4>{24, 24, 77, 77}));
    records[0].weights = {0.5f, 0.1f, 0, 0};
    constants.static_model = 0;
    EXPECT_EQ(areaOf(build(storeOf(records, {0, 1, 2})), constants), (std::array<int, 4>{0, 0, 100, 100}))
        << "weights that do not mix";
}

} // namespace

} // namespace korvane
