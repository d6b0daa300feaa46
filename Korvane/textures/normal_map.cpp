#include "Korvane/textures/normal_map.h"

#include <algorithm>
#include <cmath>

namespace korvane
{

namespace
{

rgba_pixel orangeFromBlue(rgba_pixel pixel)
{
    return 0xff | (pixel & 0xff00) | pixel << 24;
}

// Signed integers: baseline x86-64 converts those, four at a time, to and from floats.
rgba_pixel blueFromOrange(rgba_pixel pixel)
{
    const auto channel = [pixel](int shift) {
        return static_cast<float>(static_cast<std::int32_t>(pixel >> shift & 0xff)) / 255.0f;
    };
    const float x = channel(24) * channel(0);
    const float y = channel(8);
    const float nx = 2 * x - 1;
    const float ny = 2 * y - 1;
    const float rest = 1 - nx * nx - ny * ny;
    const float z = std::sqrt(rest > 0 ? rest : 0.0f); // 0 gives the byte 127
    const auto byte = [](float value) { return static_cast<rgba_pixel>(static_cast<std::int32_t>(value)); };
    return byte(x * 255) | byte(y * 255) << 8 | byte((z + 1) * 0.5f * 255) << 16 | 0xff000000;
}

} // namespace

void toOrange(std::span<rgba_pixel> pixels)
{
    std::transform(pixels.begin(), pixels.end(), pixels.begin(), orangeFromBlue);
}

void toBlue(std::span<rgba_pixel> pixels)
{
    std::transform(pixels.begin(), pixels.end(), pixels.begin(), blueFromOrange);
}

} // namespace korvane
