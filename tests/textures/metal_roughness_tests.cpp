#include "Korvane/textures/metal_roughness.h"

#include <gtest/gtest.h>

namespace korvane
{

namespace
{

picture onePixel(rgba_pixel pixel)
{
    picture made(1, 1);
    made.pixels()[0] = pixel;
    return made;
}

int channel(const picture& of, int shift)
{
    return static_cast<int>(of.pixels()[0] >> shift & 0xff);
}

TEST(metal_roughness, theEndsOfTheScaleAreMetalAndNone)
{
    const struct
    {
        const char* what;
        rgba_pixel diffuse, specular, gloss, base;
        int metal, roughness;
    } rows[] = {
        // Gold is all in the specular colour; what is painted has a reflectance of 0.04, which is stored as 57.
        {"gold", rgba(0, 0, 0, 255), rgba(255, 226, 155, 255), rgba(204, 0, 0, 255), rgba(255, 226, 155, 255), 255, 51},
        {"paint", rgba(200, 40, 120, 7), rgba(56, 56, 56, 255), rgba(0, 255, 0, 255), rgba(200, 40, 120, 255), 0, 255},
        {"coal", rgba(0, 0, 0, 255), rgba(0, 0, 0, 255), rgba(255, 0, 0, 255), rgba(0, 0, 0, 255), 0, 0},
    };
    for (const auto& row : rows)
    {
        const picture diffuse = onePixel(row.diffuse), specular = onePixel(row.specular), gloss = onePixel(row.gloss);
        const metal_material made = metalMaterial({&diffuse, &specular, &gloss, false});
        for (const int shift : {0, 8, 16, 24})
            EXPECT_NEAR(channel(made.base_colour, shift), static_cast<int>(row.base >> shift & 0xff), 1) << row.what;
        EXPECT_NEAR(channel(made.metal_roughness, 16), row.metal, 1) << row.what;
        EXPECT_NEAR(channel(made.metal_roughness, 8), row.roughness, 1) << row.what;
    }
}

TEST(metal_roughness, mapsOfOtherSizesAndMissingOnesAreFine)
{
    picture diffuse(4, 2), gloss(2, 1);
    for (rgba_pixel& pixel : diffuse.pixels())
        pixel = rgba(10, 20, 30, 99);
    gloss.pixels()[0] = rgba(255, 0, 0, 0);
    gloss.pixels()[1] = rgba(0, 0, 0, 0);
    const metal_material made = metalMaterial({&diffuse, nullptr, &gloss, true});
    EXPECT_EQ(made.base_colour.row(1)[3], rgba(10, 20, 30, 99));
    EXPECT_EQ(made.metal_roughness.row(1)[1], rgba(255, 0, 0, 255));
    EXPECT_EQ(made.metal_roughness.row(0)[2], rgba(255, 255, 0, 255));
    EXPECT_EQ(metalMaterial({&diffuse, nullptr, nullptr, true}).metal_roughness.pixelCount(), 0u);
}

} // namespace

} // namespace korvane
