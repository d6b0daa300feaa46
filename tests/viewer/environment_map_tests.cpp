#include "D3D11_RENDER_LIB/environment_map.h"

#include <glm/geometric.hpp>
#include <glm/gtc/packing.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace korvane
{

namespace
{

TEST(environment_map, levelsHalveDownToOneTexelAndStayInRange)
{
    const std::vector<cube_level> levels = specularEnvironment();
    ASSERT_EQ(levels.size(), 7u);
    std::uint32_t size = specular_cube_size;
    for (const cube_level& level : levels)
    {
        EXPECT_EQ(level.size, size);
        ASSERT_EQ(level.texels.size(), std::size_t{6} * size * size * 4);
        for (const std::uint16_t half : level.texels)
        {
            const float value = glm::unpackHalf1x16(half);
            ASSERT_TRUE(value > 0 && value < 50) << value;
        }
        size /= 2;
    }
}

// The average over all directions is the light in the room: blurring must move it, not make it.
TEST(environment_map, blurringKeepsTheLight)
{
    const auto average = [](float roughness) {
        double sum = 0;
        double weights = 0;
        for (std::uint32_t face = 0; face < 6; ++face)
            for (std::uint32_t y = 0; y < 32; ++y)
                for (std::uint32_t x = 0; x < 32; ++x)
                {
                    const glm::vec3 direction = cubeDirection(face, x, y, 32);
                    // Texels near the edges of a face cover less of the sphere.
                    const double cosine =
                        double{std::max({std::abs(direction.x), std::abs(direction.y), std::abs(direction.z)})};
                    const double weight = cosine * cosine * cosine;
                    sum += weight * double{environmentRadiance(direction, roughness).g};
                    weights += weight;
                }
        return sum / weights;
    };
    const double sharp = average(0.1f);
    for (const float roughness : {0.3f, 0.6f, 1.0f})
        EXPECT_NEAR(average(roughness) / sharp, 1.0, 0.12) << roughness;
}

// What software devices shade with: the formula and the maps are one environment.
TEST(environment_map, theFormulaIsTheMap)
{
    shading_buffer buffer;
    fillEnvironment(buffer);
    const cube_level map = diffuseEnvironment();
    for (std::uint32_t i = 0; i < 6 * map.size * map.size; ++i)
    {
        const std::uint32_t face = i / (map.size * map.size), y = i / map.size % map.size, x = i % map.size;
        const glm::vec3 d = cubeDirection(face, x, y, map.size);
        const std::array<float, 9> functions = {
            1, d.x, d.y, d.z, d.x * d.y, d.y * d.z, d.z * d.x, d.x * d.x - d.y * d.y, 3 * d.z * d.z - 1};
        for (std::size_t channel = 0; channel < 3; ++channel)
        {
            float sum = 0;
            for (std::size_t k = 0; k < functions.size(); ++k)
                sum += buffer.irradiance[k][channel] * functions[k];
            ASSERT_NEAR(sum, glm::unpackHalf1x16(map.texels[std::size_t{i} * 4 + channel]),
                        0.06f); // of about 0.8; nine functions cannot follow every bend
        }
    }
}

TEST(environment_map, facesLookWhereDirect3DPutsThem)
{
    const glm::vec3 middles[] = {{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0}, {0, 0, 1}, {0, 0, -1}};
    for (std::uint32_t face = 0; face < 6; ++face)
        EXPECT_GT(glm::dot(cubeDirection(face, 8, 8, 16), middles[face]), 0.98f) << face;
    EXPECT_GT(cubeDirection(4, 15, 8, 16).x, 0.5f) << "+z: right is +x";
    EXPECT_GT(cubeDirection(4, 8, 0, 16).y, 0.5f) << "+z: the first row is the top";
    EXPECT_LT(cubeDirection(0, 15, 8, 16).z, -0.5f) << "+x: right is -z";
}

} // namespace

} // namespace korvane
