#include "Korvane/textures/normal_map.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace korvane
{

namespace
{

TEST(normal_map, toOrangeKeepsXAndYOnly)
{
    std::vector<rgba_pixel> pixels = {rgba(200, 100, 255, 255), rgba(0, 0, 0, 7), rgba(255, 254, 1, 0)};
    toOrange(pixels);
    EXPECT_EQ(pixels, (std::vector<rgba_pixel>{rgba(255, 100, 0, 200), rgba(255, 0, 0, 0), rgba(255, 254, 0, 255)}));
}

TEST(normal_map, toBlueComputesZ)
{
    std::vector<rgba_pixel> pixels = {
        rgba(255, 128, 0, 128), // z is 0.99997, its byte 254.996
        rgba(255, 0, 99, 0),    // X and Y are -1: no root, z is 0
        rgba(128, 128, 0, 128), // X is scaled by red: 64.25; nx is -0.496, z 0.868
        rgba(64, 128, 0, 255),  // X in red, as BC5 stores it
    };
    toBlue(pixels);
    EXPECT_EQ(pixels, (std::vector<rgba_pixel>{rgba(128, 128, 254, 255), rgba(0, 0, 127, 255), rgba(64, 128, 238, 255),
                                               rgba(64, 128, 238, 255)}));
}

// The formulas one operation after the other, each stored as a float: what the processor does four at a time must be
// the same bits for every X, Y and red.
rgba_pixel blueStepByStep(unsigned red, unsigned green, unsigned alpha)
{
    const volatile float unit_alpha = static_cast<float>(alpha) / 255.0f;
    const volatile float unit_red = static_cast<float>(red) / 255.0f;
    const volatile float x = unit_alpha * unit_red;
    const volatile float y = static_cast<float>(green) / 255.0f;
    const volatile float new_red = x * 255.0f, new_green = y * 255.0f;
    const volatile float twice_x = 2.0f * x, twice_y = 2.0f * y;
    const volatile float nx = twice_x - 1.0f, ny = twice_y - 1.0f;
    const volatile float nx2 = nx * nx, ny2 = ny * ny;
    const volatile float rest = 1.0f - nx2;
    const volatile float z2 = rest - ny2;
    if (z2 < 0.0f)
        return rgba(static_cast<unsigned>(new_red), static_cast<unsigned>(new_green), 127, 255);
    const volatile float z = std::sqrt(z2);
    const volatile float moved = z + 1.0f;
    const volatile float half = moved * 0.5f;
    const volatile float blue = half * 255.0f;
    return rgba(static_cast<unsigned>(new_red), static_cast<unsigned>(new_green), static_cast<unsigned>(blue), 255);
}

TEST(normal_map, toBlueIsTheFormulasToTheBit)
{
    std::vector<rgba_pixel> pixels(65536);
    std::size_t wrong = 0;
    for (unsigned red = 0; red < 256; red += red < 250 ? 7 : 1) // every X and Y for many reds
    {
        for (unsigned i = 0; i < pixels.size(); ++i)
            pixels[i] = rgba(red, i & 255, i * 31 & 255, i >> 8);
        toBlue(pixels);
        for (unsigned i = 0; i < pixels.size(); ++i)
            wrong += pixels[i] != blueStepByStep(red, i & 255, i >> 8);
    }
    EXPECT_EQ(wrong, 0u);
}

} // namespace

} // namespace korvane
