#include "D3D11_RENDER_LIB/environment_map.h"

#include <glm/common.hpp>
#include <glm/geometric.hpp>
#include <glm/gtc/packing.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <tuple>

namespace korvane
{

namespace
{

const environment_light::lobe soft_boxes[] = {
    {{-0.55f, 0.62f, -0.56f}, {3.4f, 3.2f, 2.9f}, 22.0f}, // key, warm, above the left shoulder of the viewer
    {{0.90f, 0.15f, -0.40f}, {0.9f, 1.0f, 1.2f}, 9.0f},   // fill, cool, from the right
    {{0.45f, 0.50f, 0.74f}, {2.6f, 2.7f, 3.0f}, 16.0f},   // rim, behind the model
    {{-0.85f, 0.20f, 0.48f}, {1.2f, 1.1f, 1.0f}, 12.0f},  // second rim
};

// What a surface of a given roughness averages over, as a lobe of its own.
constexpr float cosine_sharpness = 2.1f;

float blurSharpness(float roughness)
{
    const float alpha = roughness * roughness;
    return 1.0f / glm::max(0.5f * alpha * alpha, 1e-4f) + 1.0f;
}

constexpr glm::vec3 room_below(0.13f, 0.12f, 0.11f), room_middle(0.30f, 0.31f, 0.33f), room_above(0.60f, 0.63f, 0.68f);

// Walls and floor, dark below, light above, are flatter the wider the average; the energy of a lobe stays the same.
environment_light blurred(float blur)
{
    const float contrast = blur / (blur + 1.5f);
    environment_light light;
    light.middle = room_middle;
    light.above = (room_above - room_middle) * contrast;
    light.below = (room_below - room_middle) * contrast;
    static_assert(std::size(soft_boxes) == std::tuple_size_v<decltype(light.lobes)>);
    std::transform(std::begin(soft_boxes), std::end(soft_boxes), light.lobes.begin(), [blur](auto lobe) {
        const float kept = blur / (lobe.sharpness + blur);
        lobe.direction = glm::normalize(lobe.direction);
        lobe.amplitude *= kept;
        lobe.sharpness *= kept;
        return lobe;
    });
    return light;
}

glm::vec3 radiance(const glm::vec3& direction, const environment_light& light)
{
    glm::vec3 sum = light.middle + (direction.y > 0 ? light.above : -light.below) * direction.y;
    for (const environment_light::lobe& lobe : light.lobes)
        sum += lobe.amplitude * std::exp(lobe.sharpness * (glm::dot(direction, lobe.direction) - 1));
    return sum;
}

cube_level cubeLevel(std::uint32_t size, const environment_light& light)
{
    cube_level level;
    level.size = size;
    level.texels.reserve(std::size_t{6} * size * size * 4);
    for (std::uint32_t face = 0; face < 6; ++face)
        for (std::uint32_t y = 0; y < size; ++y)
            for (std::uint32_t x = 0; x < size; ++x)
            {
                const glm::vec3 color = radiance(cubeDirection(face, x, y, size), light);
                for (const float channel : {color.r, color.g, color.b, 1.0f})
                    level.texels.push_back(glm::packHalf1x16(channel));
            }
    return level;
}

} // namespace

glm::vec3 cubePoint(std::uint32_t face, std::uint32_t x, std::uint32_t y, std::uint32_t size)
{
    const float u = (static_cast<float>(x) + 0.5f) / static_cast<float>(size) * 2.0f - 1.0f;
    const float v = (static_cast<float>(y) + 0.5f) / static_cast<float>(size) * 2.0f - 1.0f;
    const glm::vec3 points[] = {{1, -v, -u}, {-1, -v, u}, {u, 1, v}, {u, -1, -v}, {u, -v, 1}, {-u, -v, -1}};
    return points[face];
}

glm::vec3 cubeDirection(std::uint32_t face, std::uint32_t x, std::uint32_t y, std::uint32_t size)
{
    return glm::normalize(cubePoint(face, x, y, size));
}

environment_light specularLight(float roughness)
{
    return blurred(blurSharpness(roughness));
}

environment_light diffuseLight()
{
    return blurred(cosine_sharpness);
}

glm::vec3 environmentRadiance(const glm::vec3& direction, float roughness)
{
    return radiance(direction, specularLight(roughness));
}

std::vector<cube_level> specularEnvironment()
{
    std::vector<cube_level> levels;
    for (std::uint32_t size = specular_cube_size; size > 0; size /= 2)
        levels.push_back(cubeLevel(size, specularLight(static_cast<float>(levels.size()) / 6.0f)));
    return levels;
}

cube_level diffuseEnvironment()
{
    return cubeLevel(diffuse_cube_size, diffuseLight());
}

// The irradiance is smooth enough for nine numbers a colour: it is projected on their functions, sum by sum over a
// cube.
void fillEnvironment(shading_buffer& buffer)
{
    constexpr std::uint32_t size = 32;
    const environment_light light = diffuseLight();
    std::array<glm::vec3, 9> sums{};
    std::array<float, 9> squares{};
    for (std::uint32_t face = 0; face < 6; ++face)
        for (std::uint32_t y = 0; y < size; ++y)
            for (std::uint32_t x = 0; x < size; ++x)
            {
                const glm::vec3 d = cubeDirection(face, x, y, size);
                const float nearest = std::max({std::abs(d.x), std::abs(d.y), std::abs(d.z)});
                const float angle = nearest * nearest * nearest; // the solid angle of a texel, up to a factor
                const glm::vec3 seen = radiance(d, light);
                // Orthogonal over the sphere, so that each is found alone.
                const std::array<float, 9> functions = {
                    1, d.x, d.y, d.z, d.x * d.y, d.y * d.z, d.z * d.x, d.x * d.x - d.y * d.y, 3 * d.z * d.z - 1};
                for (std::size_t i = 0; i < functions.size(); ++i)
                {
                    sums[i] += seen * (functions[i] * angle);
                    squares[i] += functions[i] * functions[i] * angle;
                }
            }
    const auto padded = [](const glm::vec3& value) { return gpu_float4{value.x, value.y, value.z, 0}; };
    for (std::size_t i = 0; i < sums.size(); ++i)
        buffer.irradiance[i] = padded(sums[i] / squares[i]);
    static_assert(std::size(soft_boxes) == 4);
    for (int lobe_number = 0; lobe_number < 4; ++lobe_number)
    {
        const environment_light::lobe& one = soft_boxes[lobe_number];
        const auto place = static_cast<std::size_t>(lobe_number);
        const glm::vec3 direction = glm::normalize(one.direction);
        buffer.lobe_sharpness[place] = one.sharpness;
        for (int i = 0; i < 3; ++i)
        {
            buffer.lobe_direction[static_cast<std::size_t>(i)][place] = direction[i];
            buffer.lobe_amplitude[static_cast<std::size_t>(i)][place] = one.amplitude[i];
        }
    }
    buffer.room = {padded(room_below - room_middle), padded(room_middle), padded(room_above - room_middle)};
}

} // namespace korvane
