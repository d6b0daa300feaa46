#include "Korvane/models/catalogue.h"

#include <gtest/gtest.h>

namespace korvane
{

TEST(catalogue, numbersOutsideTheTablesHaveTheirOwnTexts)
{
    EXPECT_EQ(versionLabel(5), "<error or unknown>"); // readable all the same
    EXPECT_EQ(versionLabel(6), "Rome2/Atilla/Thrones");
    EXPECT_EQ(materialName(0), "<UNKNOWN>");
    EXPECT_EQ(materialName(100), "<UNKNOWN>");
    EXPECT_EQ(textureTypeName(2), "[unknown type]");
    EXPECT_FALSE(vertexFormatShortLabel(5));
    EXPECT_EQ(vertexFormatLongLabel(5), "\"Grass\" (internal)");
    EXPECT_EQ(vertexFormatLongLabel(3), "\"Weighted\" (2 weights/verrtx))");
    EXPECT_FALSE(vertexFormatLongLabel(2));
}

TEST(catalogue, theMaterialTableIsSortedAndHolds48Names)
{
    // Bisection in an unsorted table would lose some of these.
    std::size_t named = 0;
    for (std::uint32_t number = 0; number < 200; ++number)
        named += materialName(number) != "<UNKNOWN>" ? 1u : 0u;
    EXPECT_EQ(named, 48u);
    EXPECT_EQ(materialName(1), "alpha_blend");
    EXPECT_EQ(materialName(68), "default");
    EXPECT_EQ(materialName(99), "decal_overlay");
}

TEST(catalogue, anUnlistedAlphaModeSelectsUnknown)
{
    EXPECT_EQ(alphaModes()[alphaModeIndex(2)].label, "UNKNOWN!");
    EXPECT_EQ(alphaModes()[alphaModeIndex(0xffffffff)].label, "Metal/Reflections");
    EXPECT_EQ(alphaModes()[alphaModeIndex(0x40000000)].label, "0x40000000");
}

} // namespace korvane
