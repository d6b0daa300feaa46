#pragma once

// The light around the model: a photo studio with soft boxes, described by a few smooth lobes. A smooth lobe stays one
// when it is blurred, so that every level of roughness, and the irradiance, is computed exactly where other programs
// filter pictures, and nothing is stored. The maps here are made at start-up in a few milliseconds; uncompressed and
// small on purpose: software adapters decode compressed cubes per sample, which costs more than everything else in a
// frame. Graphics cards get larger ones a second later (environment_images.h).

#include "D3D11_RENDER_LIB/gpu_layouts.h"

#include <glm/vec3.hpp>

#include <array>
#include <cstdint>
#include <vector>

namespace korvane
{

struct cube_level
{
    std::uint32_t size = 0;            // pixels in each direction
    std::vector<std::uint16_t> texels; // faces +x -x +y -y +z -z, rows from the top, four binary16 each (RGBA)
};

// The light as a surface sees it that blurs it: from a direction d comes middle, above * d.y or below * -d.y, and of
// each lobe amplitude * exp(sharpness * (cosine to it - 1)).
struct environment_light
{
    struct lobe
    {
        glm::vec3 direction; // to the light, unit length; the camera stands at -z and looks along +z
        glm::vec3 amplitude;
        float sharpness;
    };
    std::array<lobe, 4> lobes;
    glm::vec3 middle, above, below;
};
[[nodiscard]] environment_light specularLight(float roughness); // 0..1
[[nodiscard]] environment_light diffuseLight();                 // irradiance / pi

inline constexpr std::uint32_t specular_cube_size = 64; // 7 levels; level / 6 = roughness
inline constexpr std::uint32_t diffuse_cube_size = 16;  // 1 level: irradiance / pi

[[nodiscard]] std::vector<cube_level> specularEnvironment();
[[nodiscard]] cube_level diffuseEnvironment();

// The environment as a formula: all of the buffer that belongs to it.
void fillEnvironment(shading_buffer& buffer);

// Radiance from a direction (unit length), seen by a surface of that roughness (0..1); linear.
[[nodiscard]] glm::vec3 environmentRadiance(const glm::vec3& direction, float roughness);
// The direction that the centre of a texel looks in, by Direct3D's layout of cube faces, and where it meets the cube
// from -1 to 1.
[[nodiscard]] glm::vec3 cubeDirection(std::uint32_t face, std::uint32_t x, std::uint32_t y, std::uint32_t size);
[[nodiscard]] glm::vec3 cubePoint(std::uint32_t face, std::uint32_t x, std::uint32_t y, std::uint32_t size);

} // namespace korvane
