#include "D3D11_RENDER_LIB/environment_map.h"

#include <glm/common.hpp>
#include <glm/geometric.hpp>
#include <glm/gtc/packing.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>

namespace korvane
{

namespace
{

// amplitude * exp(sharpness * (cos - 1))
struct lobe
{
    glm::vec3 direction; // to the light; the camera stands at -z and looks along +z
    glm::vec3 amplitude;
    float sharpness;
};

const lobe soft_boxes[] = {
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

// The energy of a lobe stays the same when it is blurred.
glm::vec3 blurred(const lobe& light, const glm::vec3& direction, float blur)
{
    const float sharpness = light.sharpness * blur / (light.sharpness + blur);
    const float cosine = glm::dot(direction, glm::normalize(light.direction));
    return light.amplitude * (sharpness / light.sharpness * std::exp(sharpness * (cosine - 1.0f)));
}

constexpr glm::vec3 room_below(0.13f, 0.12f, 0.11f), room_middle(0.30f, 0.31f, 0.33f), room_above(0.60f, 0.63f, 0.68f);

// Walls and floor: dark below, light above, flatter the wider the average.
glm::vec3 room(const glm::vec3& direction, float blur)
{
    const float contrast = blur / (blur + 1.5f);
    const float height = direction.y * contrast;
    return height > 0 ? glm::mix(room_middle, room_above, height) : glm::mix(room_middle, room_below, -height);
}

glm::vec3 radiance(const glm::vec3& direction, float blur)
{
    glm::vec3 sum = room(direction, blur);
    for (const lobe& light : soft_boxes)
        sum += blurred(light, direction, blur);
    return sum;
}

cube_level cubeLevel(std::uint32_t size, float blur)
{
    cube_level level;
    level.size = size;
    level.texels.reserve(std::size_t{6} * size * size * 4);
    for (std::uint32_t face = 0; face < 6; ++face)
        for (std::uint32_t y = 0; y < size; ++y)
            for (std::uint32_t x = 0; x < size; ++x)
            {
                const glm::vec3 color = radiance(cubeDirection(face, x, y, size), blur);
                for (const float channel : {color.r, color.g, color.b, 1.0f})
                    level.texels.push_back(glm::packHalf1x16(channel));
            }
    return level;
}

} // namespace

glm::vec3 cubeDirection(std::uint32_t face, std::uint32_t x, std::uint32_t y, std::uint32_t size)
{
    const float u = (static_cast<float>(x) + 0.5f) / static_cast<float>(size) * 2.0f - 1.0f;
    const float v = (static_cast<float>(y) + 0.5f) / static_cast<float>(size) * 2.0f - 1.0f;
    const glm::vec3 directions[] = {{1, -v, -u}, {-1, -v, u}, {u, 1, v}, {u, -1, -v}, {u, -v, 1}, {-u, -v, -1}};
    return glm::normalize(directions[face]);
}

glm::vec3 environmentRadiance(const glm::vec3& direction, float roughness)
{
    return radiance(direction, blurSharpness(roughness));
}

std::vector<cube_level> specularEnvironment()
{
    std::vector<cube_level> levels;
    for (std::uint32_t size = specular_cube_size; size > 0; size /= 2)
        levels.push_back(cubeLevel(size, blurSharpness(static_cast<float>(levels.size()) / 6.0f)));
    return levels;
}

cube_level diffuseEnvironment()
{
    return cubeLevel(diffuse_cube_size, cosine_sharpness);
}

// The irradiance is smooth enough for nine numbers a colour: it is projected on their functions, sum by sum over a
// cube.
void fillEnvironment(shading_buffer& buffer)
{
    constexpr std::uint32_t size = 32;
    std::array<glm::vec3, 9> sums{};
    std::array<float, 9> squares{};
    for (std::uint32_t face = 0; face < 6; ++face)
        for (std::uint32_t y = 0; y < size; ++y)
            for (std::uint32_t x = 0; x < size; ++x)
            {
                const glm::vec3 d = cubeDirection(face, x, y, size);
                const float nearest = std::max({std::abs(d.x), std::abs(d.y), std::abs(d.z)});
                const float angle = nearest * nearest * nearest; // the solid angle of a texel, up to a factor
                const glm::vec3 seen = radiance(d, cosine_sharpness);
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
        const lobe& one = soft_boxes[lobe_number];
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
