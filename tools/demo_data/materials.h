#pragma once

// The painted materials of the demo models. A material is a function of the place in its texture; it repeats after one
// unit unless it is a picture.

#include "tools/demo_data/dds_file.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace korvane::demo
{

struct surface
{
    vec3 colour{0.5, 0.5, 0.5};   // as on screen (sRGB)
    vec3 specular{0.2, 0.2, 0.2}; // colour of the reflection at right angles
    double gloss = 0.3;
    double height = 0; // in parts of the texture's width
    vec3 mask;         // where a faction's three colours go
    double alpha = 1;
};

struct material
{
    std::string name; // files are name_diffuse.dds and so on
    std::size_t size; // pixels, both ways
    dds_format diffuse, normal, specular;
    std::function<surface(double u, double v, std::uint32_t seed)> paint;
};

[[nodiscard]] std::span<const material> materials();

struct painted_image
{
    std::string suffix; // "diffuse", "normal", "specular", "gloss", "mask"
    dds_format format;
    image pixels;
};

// The material at every texel, row by row from the top.
[[nodiscard]] std::vector<surface> paintSurface(const material& source, std::uint32_t seed);

// The five images of a painted material. Normal maps are stored as the games do: red full, green the y, blue none,
// alpha the x; as BC5, which has no alpha, x in red. x points along u, y along v (downwards in the image).
[[nodiscard]] std::vector<painted_image> imagesOf(const material& source, const std::vector<surface>& texels);
[[nodiscard]] std::vector<painted_image> paintMaterial(const material& source, std::uint32_t seed);

// The diffuse image with another colour where the mask puts a faction's first one. colour multiplies the brightness
// that is there and may exceed 1.
[[nodiscard]] painted_image recoloured(const material& source, const std::vector<surface>& texels, vec3 colour);

} // namespace korvane::demo
