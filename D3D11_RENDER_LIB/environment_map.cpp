#include "D3D11_RENDER_LIB/environment_map.h"

#include <glm/common.hpp>
#include <glm/geometric.hpp>
#include <glm/gtc/packing.hpp>

#include <cmath>

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

// Walls and floor: dark below, light above, flatter the wider the average.
glm::vec3 room(const glm::vec3& direction, float blur)
{
    const float contrast = blur / (blur + 1.5f);
    const float height = direction.y * contrast;
    const glm::vec3 middle(0.30f, 0.31f, 0.33f);
    return height > 0 ? glm::mix(middle, glm::vec3(0.60f, 0.63f, 0.68f), height)
                      : glm::mix(middle, glm::vec3(0.13f, 0.12f, 0.11f), -height);
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

} // namespace korvane
