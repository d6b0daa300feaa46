#include "Korvane/scene/scene_geometry.h"
#include "tests/support/mesh_builder.h"

#include <gtest/gtest.h>

#include <limits>

namespace korvane
{

namespace
{

vertex_store storeOf(const std::vector<glm::vec3>& positions, std::vector<std::uint16_t> indices)
{
    vertex_store store;
    store.vertices = vertex_array(positions.size());
    for (std::size_t i = 0; i < positions.size(); ++i)
    {
        store.vertices.records()[i] = {};
        store.vertices.records()[i].position = positions[i];
    }
    store.indices = std::move(indices);
    return store;
}

TEST(scene_geometry, trianglesWithMissingVerticesAreLeftOut)
{
    const std::vector<glm::vec3> three = {{0, 0, 0}, {0, 1, 0}, {1, 0, 0}};
    const struct
    {
        const char* name;
        std::vector<std::uint16_t> indices;
        std::vector<std::size_t> first_corners;
        std::size_t dropped;
    } rows[] = {
        {"all there", {0, 1, 2}, {0}, 0},
        {"one past the end", {0, 1, 3, 0, 1, 2}, {3}, 1},
        {"the largest index", {0xffff, 0, 1}, {}, 1},
        {"an unfinished triangle", {0, 1, 2, 0, 1}, {0}, 0},
        {"none", {}, {}, 0},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.name);
        std::vector<std::size_t> visited;
        const triangle_count count =
            forEachTriangle(storeOf(three, row.indices), [&](std::size_t first) { visited.push_back(first); });
        EXPECT_EQ(visited, row.first_corners);
        EXPECT_EQ(count.drawn, row.first_corners.size());
        EXPECT_EQ(count.dropped, row.dropped);
    }
    EXPECT_EQ(forEachTriangle(storeOf({}, {0, 1, 2}), [](std::size_t) {}).dropped, 1u) << "a group without vertices";
}

TEST(scene_geometry, boundsFollowTheTrianglesAndOnlyNumbers)
{
    model_bounds bounds;
    EXPECT_TRUE(bounds.isEmpty());
    measureGroup(storeOf({{-1, 0, 0}, {0, 2, 0}, {1, 0, 3}, {99, 99, 99}}, {0, 1, 2}), bounds);
    EXPECT_EQ(bounds.min, glm::vec3(-1, 0, 0));
    EXPECT_EQ(bounds.max, glm::vec3(1, 2, 3));

    constexpr float nan_value = std::numeric_limits<float>::quiet_NaN();
    measureGroup(storeOf({{nan_value, std::numeric_limits<float>::infinity(), 1e30f}}, {0, 0, 0}), bounds);
    EXPECT_EQ(bounds.max, glm::vec3(1, 2, 1000)) << "NaN and infinity count as 0, and nothing is beyond a kilometre";
}

} // namespace

} // namespace korvane
