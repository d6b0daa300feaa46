#include "Korvane/textures/normal_map.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <optional>
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

TEST(normal_map, isKnownByItsPixels)
{
    using enum normal_form;
    const struct
    {
        const char* what;
        rgba_pixel one, other; // half of the pixels each
        std::optional<normal_form> form;
    } rows[] = {
        {"flat blue", rgba(128, 128, 255, 255), rgba(128, 128, 254, 255), blue},
        {"tilted blue", rgba(218, 128, 218, 255), rgba(128, 37, 218, 0), blue},
        {"flat orange", rgba(255, 128, 0, 128), rgba(255, 127, 0, 128), orange},
        {"steep orange", rgba(255, 255, 0, 128), rgba(255, 128, 0, 0), orange},
        {"X in red", rgba(128, 128, 0, 255), rgba(218, 128, 0, 255), orange},
        {"wood", rgba(120, 80, 50, 255), rgba(90, 60, 40, 255), std::nullopt},
        {"grey", rgba(128, 128, 128, 255), rgba(100, 100, 100, 255), std::nullopt},
        {"half of it", rgba(128, 128, 255, 255), rgba(90, 60, 40, 255), std::nullopt},
    };
    for (const auto& row : rows)
    {
        std::vector<rgba_pixel> pixels(normal_judged_pixels, row.one);
        std::fill(pixels.begin() + normal_judged_pixels / 2, pixels.end(), row.other);
        EXPECT_EQ(normalFormOf(pixels), row.form) << row.what;
        for (const normal_form target : {blue, orange})
        {
            bool is_there = false;
            failure why;
            EXPECT_EQ(isConvertible(pixels, target, is_there, why), row.form && row.form != target) << row.what;
            EXPECT_EQ(is_there, row.form == target) << row.what;
        }
        pixels.pop_back(); // too few to say anything
        bool is_there = true;
        failure why;
        EXPECT_TRUE(isConvertible(pixels, blue, is_there, why)) << row.what;
        EXPECT_FALSE(is_there);
    }
    EXPECT_FALSE(surelyNormalForm(std::vector(64, rgba(200, 200, 200, 255)))) << "light grey is as long as 1, too";
    EXPECT_EQ(surelyNormalForm(std::vector(64, rgba(128, 128, 255, 255))), blue);
}

} // namespace

} // namespace korvane
