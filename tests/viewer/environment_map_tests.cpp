#include "D3D11_RENDER_LIB/environment_images.h"
#include "Korvane/textures/block_decoder.h"

#include <glm/geometric.hpp>
#include <glm/gtc/packing.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <thread>

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

// What graphics cards get, against the formula in another arithmetic, block by block.
TEST(environment_images, blocksHoldTheLightThatTheFormulaGives)
{
    std::atomic<bool> must_stop{false};
    const auto images = makeEnvironmentImages(must_stop);
    ASSERT_TRUE(images);
    EXPECT_EQ(images->specular.levels.size(), 11u);
    EXPECT_EQ(images->diffuse.levels.size(), 11u);
    EXPECT_EQ(images->reflectance.levels.size(), 9u);
    const struct
    {
        std::size_t level;
        double typical, most; // parts of the light
    } rows[] = {{0, 0.002, 0.01}, {3, 0.004, 0.04}, {6, 0.02, 0.08}, {10, 0.001, 0.001}};
    for (const auto& row : rows)
    {
        const std::uint32_t size = whole_cube_size >> row.level, blocks = std::max(size / 4, 1u);
        const std::vector<std::byte>& level = images->specular.levels[row.level];
        ASSERT_EQ(level.size(), std::size_t{6} * blocks * blocks * 16);
        double sum = 0, most = 0, count = 0;
        for (std::uint32_t block = 0; block < 6 * blocks * blocks; block += std::max(blocks / 16, 1u) * 7)
        {
            block_halves halves;
            decodeBc6hHalves(level.data() + std::size_t{block} * 16, false, halves);
            const std::uint32_t face = block / (blocks * blocks);
            for (std::uint32_t i = 0; i < std::min(size * size, 16u); ++i)
            {
                const std::uint32_t x = block % blocks * 4 + i % 4, y = block / blocks % blocks * 4 + i / 4;
                const glm::vec3 expected =
                    environmentRadiance(cubeDirection(face, x, y, size), static_cast<float>(row.level) / 10);
                for (int channel = 0; channel < 3; ++channel)
                {
                    const auto seen = double{glm::unpackHalf1x16(halves[i][static_cast<std::size_t>(channel)])};
                    const double wrong = std::abs(seen / double{expected[channel]} - 1);
                    sum += wrong * wrong;
                    most = std::max(most, wrong);
                    ++count;
                }
            }
        }
        EXPECT_LT(std::sqrt(sum / count), row.typical) << row.level;
        EXPECT_LT(most, row.most) << row.level;
    }
    must_stop = true;
    EXPECT_FALSE(makeEnvironmentImages(must_stop));
}

TEST(environment_images, aMirrorReflectsByFresnelAndARoughWallLessThanItGets)
{
    for (const float cosine : {0.1f, 0.4f, 0.7f, 1.0f})
    {
        const glm::vec2 mirror = environmentReflectance(cosine, 0.001f), wall = environmentReflectance(cosine, 1);
        EXPECT_NEAR(mirror.y, std::pow(1 - cosine, 5.0f), 0.01f) << cosine;
        EXPECT_NEAR(mirror.x + mirror.y, 1, 0.01f) << cosine;
        EXPECT_LT(wall.x + wall.y, 0.75f) << cosine;
        EXPECT_GT(wall.x, 0.2f) << cosine;
    }
}

TEST(environment_images, theyComeFromAThreadOncePerAskingAndItsEndIsNotWaitedFor)
{
    std::atomic<int> news{0};
    environment_making making([&news] { ++news; });
    auto taken = std::chrono::steady_clock::duration::max(); // by the quicker one
    for (int round = 1; round < 3; ++round)
    {
        const auto begin = std::chrono::steady_clock::now();
        std::unique_ptr<environment_images> made;
        for (int i = 0; i < 12000 && !made; ++i, std::this_thread::sleep_for(std::chrono::milliseconds(10)))
            made = making.take();
        ASSERT_TRUE(made && !made->specular.levels.empty());
        EXPECT_EQ(news, round);
        taken = std::min(taken, std::chrono::steady_clock::now() - begin);
    }
    const auto begin = std::chrono::steady_clock::now();
    {
        environment_making stopped([&news] { ++news; });
        EXPECT_FALSE(stopped.take());
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, taken / 2);
    EXPECT_EQ(news, 2);
}

} // namespace

} // namespace korvane
