#pragma once

// Smaller and smaller copies of a picture, each of half the size (rounded down, at least 1), each averaged from the one
// before in 16 bits a channel. Every pixel covers its part of the larger level exactly, also of odd sizes.

#include "Korvane/textures/picture.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace korvane
{

// What the numbers of a picture are, and so how they are averaged.
enum class mip_content
{
    light,         // sRGB colours, as light, each as much as its alpha counts: what cannot be seen does not bleed
    numbers,       // each channel by itself
    blue_normals,  // vectors (normal_map.h), made as long as 1 again; alpha by itself
    orange_normals // the same; X may be in red and alpha 255
};

// One thread; next() uses others.
class mip_maps
{
public:
    // The picture stays where it is until the first next() has returned.
    mip_maps(const picture& largest, mip_content content);

    // The next smaller level; of one pixel comes one again.
    [[nodiscard]] picture next();

private:
    using deep_pixel = std::array<std::uint16_t, 4>;

    struct deep_level
    {
        std::uint32_t width = 0, height = 0;
        std::vector<deep_pixel> pixels;
    };

    void makeRow(std::uint32_t y, std::span<deep_pixel> target) const;

    const picture& m_largest;
    mip_content m_content;
    deep_level m_level; // empty before the first one
};

// The part of the pixels whose alpha passes a test for 128 or more, 0 to 1.
[[nodiscard]] double alphaCoverage(const picture& source);
// Scales alpha so that about this part of the pixels passes; nothing happens where none or all did.
void keepAlphaCoverage(picture& level, double coverage);

} // namespace korvane
