#include "Korvane/textures/block_encoder.h"
#include "Korvane/textures/dds_decoder.h"
#include "Korvane/textures/dds_encoder.h"
#include "tools/demo_data/materials.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <vector>

namespace korvane
{

namespace
{

picture pictureOf(std::uint32_t width, std::uint32_t height, const std::vector<rgba_pixel>& pixels)
{
    picture result(width, height);
    for (std::size_t i = 0; i < result.pixelCount(); ++i)
        result.pixels()[i] = pixels[i % pixels.size()];
    return result;
}

picture painted(std::string_view name)
{
    picture result;
    for (const demo::material& each : demo::materials())
        if (each.name == name)
        {
            const demo::image source = demo::paintMaterial(each, 1).front().pixels;
            result = picture(static_cast<std::uint32_t>(source.width), static_cast<std::uint32_t>(source.height));
            std::memcpy(result.pixels().data(), source.pixels.data(), source.pixels.size());
        }
    return result;
}

struct written_dds
{
    memory_file file;
    dds_image image;
    picture largest;

    written_dds(const picture& source, const dds_encoding& encoding)
    {
        failure why;
        EXPECT_TRUE(encodeDds(source, encoding, file, why) && readDds(file.bytes(), image, why) &&
                    decodeDds(image, largest, why))
            << describe(why);
    }
    std::string code() const { return std::string(file.text().substr(84, 4)); }
};

// In decibels, of the channels of the mask.
double signalToNoise(const picture& source, const picture& decoded, rgba_pixel mask)
{
    double sum = 0, count = 0;
    for (std::size_t i = 0; i < source.pixelCount(); ++i)
        for (unsigned shift = 0; shift < 32; shift += 8)
            if ((mask >> shift & 255) != 0)
            {
                const double off = static_cast<double>(source.pixels()[i] >> shift & 255) -
                                   static_cast<double>(decoded.pixels()[i] >> shift & 255);
                sum += off * off;
                ++count;
            }
    return sum == 0 ? 99 : 10 * std::log10(255.0 * 255.0 / (sum / count));
}

TEST(dds_encoder, everyFormatIsReadBackAndLooksLikeWhatWasPainted)
{
    const struct
    {
        dds_format format;
        const char* code; // of the header; none: masks
        rgba_pixel channels;
        double least;
    } rows[] = {
        {dds_format::bc1, "DXT1", 0xffffff, 34},   {dds_format::bc1_srgb, "DX10", 0xffffff, 34},
        {dds_format::bc3, "DXT5", 0xffffffff, 34}, {dds_format::bc3_srgb, "DX10", 0xffffffff, 34},
        {dds_format::bc4, "ATI1", 0xff, 40},       {dds_format::bc5, "ATI2", 0xffff, 40},
        {dds_format::bc7, "DX10", 0xffffffff, 44}, {dds_format::bc7_srgb, "DX10", 0xffffffff, 44},
        {dds_format::rgba8, "", 0xffffffff, 99},   {dds_format::rgba8_srgb, "DX10", 0xffffffff, 99},
        {dds_format::bgra8, "", 0xffffffff, 99},   {dds_format::bgra8_srgb, "DX10", 0xffffffff, 99},
    };
    const picture shield = painted("guard_shield"), plume = painted("guard_plume");
    for (const auto& row : rows)
        for (const picture* source : {&shield, &plume})
        {
            const written_dds made(*source, {.format = row.format});
            EXPECT_EQ(made.image.format, row.format);
            EXPECT_STREQ(made.code().c_str(), row.code);
            EXPECT_EQ(made.image.mip_count, source == &shield ? 10u : 9u);
            if (row.channels == 0xffffff && source == &plume) // BC1 has no colours where alpha is small
                continue;
            EXPECT_GE(signalToNoise(*source, made.largest, row.channels), row.least) << formatName(row.format);
        }
    const dds_encoding best{.format = dds_format::bc1, .effort = encoding_effort::best};
    EXPECT_GT(signalToNoise(shield, written_dds(shield, best).largest, 0xffffff),
              signalToNoise(shield, written_dds(shield, {.format = dds_format::bc1}).largest, 0xffffff) + 1);
}

TEST(dds_encoder, anySizeHasItsMipMapsAndNotAByteMore)
{
    const struct
    {
        std::uint32_t width, height, mips, bytes; // of BC7: blocks of 16 bytes
    } rows[] = {{1, 1, 1, 16}, {5, 3, 3, 32 + 16 + 16}, {1, 9, 4, 48 + 16 + 16 + 16}, {8, 4, 4, 32 + 3 * 16}};
    for (const auto& row : rows)
    {
        const picture source = pictureOf(row.width, row.height, {rgba(200, 100, 50, 255)});
        const written_dds made(source, {.format = dds_format::bc7_srgb});
        EXPECT_EQ(made.image.mip_count, row.mips);
        EXPECT_EQ(made.file.size(), 148 + row.bytes);
        EXPECT_GE(signalToNoise(source, made.largest, 0xffffffff), 48);
        EXPECT_EQ(written_dds(source, {.format = dds_format::bgra8, .mip_count = 2}).image.mip_count,
                  std::min(row.mips, 2u));
    }
    memory_file file;
    failure why;
    EXPECT_FALSE(encodeDds(picture(dds_max_size + 1, 1), {}, file, why));
    EXPECT_NE(why.what.find("16385 x 1"), std::string::npos) << why.what;
}

TEST(dds_encoder, whatIsOpaqueStaysSoInBc7)
{
    picture noise(64, 64);
    std::uint32_t state = 1;
    for (rgba_pixel& pixel : noise.pixels())
        pixel = (state = state * 1664525u + 1013904223u) >> 8 | 0xff000000;
    const written_dds made(noise, {.format = dds_format::bc7});
    for (const rgba_pixel pixel : made.largest.pixels())
        ASSERT_EQ(pixel >> 24, 255u);
}

// Light of black and white in equal parts is 0.5, whose sRGB byte is 188. Two vectors 45 degrees to the left and to the
// right have a mean that points straight out; of the numbers of their Z it would be 218.
TEST(mip_maps, areAveragedAsWhatTheNumbersMean)
{
    constexpr rgba_pixel black = rgba(0, 0, 0, 255), white = rgba(255, 255, 255, 255);
    const struct
    {
        const char* what;
        mip_content content;
        std::uint32_t width, height;
        std::vector<rgba_pixel> pixels;
        rgba_pixel mean;
    } rows[] = {
        {"light", mip_content::light, 2, 2, {black, white, white, black}, rgba(188, 188, 188, 255)},
        {"numbers", mip_content::numbers, 2, 2, {black, white, white, black}, rgba(128, 128, 128, 255)},
        {"a third each", mip_content::numbers, 3, 1, {black, black, white}, rgba(85, 85, 85, 255)},
        {"no bleeding", mip_content::light, 2, 1, {rgba(255, 0, 0, 255), rgba(0, 255, 0, 0)}, rgba(255, 0, 0, 128)},
        {"nothing to see", mip_content::light, 2, 1, {rgba(255, 0, 0, 0), rgba(255, 0, 0, 0)}, rgba(255, 0, 0, 0)},
        {"blue",
         mip_content::blue_normals,
         2,
         1,
         {rgba(218, 128, 218, 255), rgba(37, 128, 218, 255)},
         rgba(128, 128, 255, 255)},
        {"orange",
         mip_content::orange_normals,
         1,
         2,
         {rgba(255, 218, 0, 128), rgba(255, 37, 0, 128)},
         rgba(255, 128, 0, 128)},
    };
    for (const auto& row : rows)
    {
        const picture source = pictureOf(row.width, row.height, row.pixels);
        rgba_pixel found = mip_maps(source, row.content).next().pixels()[0];
        if (std::string_view(row.what) == "no bleeding") // green is there with less than a thousandth
            found &= ~rgba_pixel{0xff00};
        EXPECT_EQ(found, row.mean) << row.what;
    }
}

TEST(mip_maps, keepThePartThatPassesTheAlphaTest)
{
    picture level = pictureOf(4, 1, {40u << 24, 80u << 24, 120u << 24, 160u << 24});
    EXPECT_EQ(alphaCoverage(level), 0.25);
    keepAlphaCoverage(level, 0.5); // so that 120 passes, everything times 128 / 120
    EXPECT_EQ(level.pixels()[0] >> 24, 42u);
    EXPECT_EQ(level.pixels()[1] >> 24, 85u);
    EXPECT_EQ(level.pixels()[2] >> 24, 128u);
    EXPECT_EQ(level.pixels()[3] >> 24, 170u);
}

// Half floats hold 1,024 steps from one power of two to the next.
TEST(block_encoder, lightStaysWithinAFewStepsOfItsHalves)
{
    const struct
    {
        const char* name;
        std::array<float, 3> first, across, down; // by channel: the first pixel, and what is added for each further one
        float most;                               // steps
    } rows[] = {
        {"even", {14000, 13001, 12345}, {}, {}, 1},
        {"almost even", {14000, 13001, 12345}, {0.7f, 0.4f, 0.7f}, {}, 1.5f},
        {"down a slope", {15000, 14000, 13000}, {}, {-30, -20, -10}, 10},
        {"slope of the environment", {14000, 14100, 14050}, {6, 5, 4}, {3, 2, 2}, 8},
        {"channels against each other", {15000, 9000, 12000}, {-40, 40, 0}, {}, 12},
        {"two powers of two", {12288, 12288, 12288}, {512, 512, 512}, {128, 128, 128}, 120},
        {"from dark to the largest", {0, 0, 0}, {6000, 6000, 6000}, {4581, 4581, 4581}, 1200},
        {"beyond both ends", {-500, 40000, 100}, {}, {}, 1},
    };
    for (const auto& row : rows)
    {
        light_block pixels;
        for (std::size_t channel = 0; channel < 3; ++channel)
            for (std::size_t i = 0; i < 16; ++i)
                pixels[channel][i] = row.first[channel] + row.across[channel] * static_cast<float>(i % 4) +
                                     row.down[channel] * static_cast<float>(i / 4);
        std::array<std::byte, 16> block;
        encodeBc6hUnsigned(pixels, block.data());
        block_halves decoded;
        decodeBc6hHalves(block.data(), false, decoded);
        for (std::size_t channel = 0; channel < 3; ++channel)
            for (std::size_t i = 0; i < 16; ++i)
                EXPECT_NEAR(decoded[i][channel], std::clamp(pixels[channel][i], 0.0f, largest_half), row.most)
                    << row.name << ", channel " << channel << ", pixel " << i;
    }
}

} // namespace

} // namespace korvane
