// Decodes the generated textures with a decoder of its own, written from the public description of the formats.

#include "tests/demo_data/made_files.h"
#include "tools/demo_data/block_encoder.h"
#include "tools/demo_data/materials.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <set>

namespace korvane::demo
{

namespace
{

using pixel = std::array<int, 4>;
using pixels16 = std::array<pixel, 16>;

std::uint64_t bitsAt(std::span<const std::byte> block, std::size_t from, std::size_t count)
{
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < count; ++i)
        value |= ((std::to_integer<std::uint64_t>(block[(from + i) / 8]) >> ((from + i) % 8)) & 1) << i;
    return value;
}

pixels16 decodeBc1(std::span<const std::byte> block)
{
    const int ends[] = {static_cast<int>(bitsAt(block, 0, 16)), static_cast<int>(bitsAt(block, 16, 16))};
    std::array<pixel, 4> palette{};
    for (std::size_t i = 0; i < 2; ++i)
        palette[i] = {(ends[i] >> 11) * 255 / 31, ((ends[i] >> 5) & 63) * 255 / 63, (ends[i] & 31) * 255 / 31, 255};
    for (std::size_t c = 0; c < 3; ++c)
    {
        const int a = palette[0][c], b = palette[1][c];
        palette[2][c] = ends[0] > ends[1] ? (2 * a + b) / 3 : (a + b) / 2;
        palette[3][c] = ends[0] > ends[1] ? (a + 2 * b) / 3 : 0;
    }
    palette[2][3] = 255;
    palette[3][3] = ends[0] > ends[1] ? 255 : 0;
    pixels16 result{};
    for (std::size_t i = 0; i < 16; ++i)
        result[i] = palette[bitsAt(block, 32 + i * 2, 2)];
    return result;
}

void decodeChannel(std::span<const std::byte> block, std::size_t channel, pixels16& result)
{
    const int a = static_cast<int>(bitsAt(block, 0, 8)), b = static_cast<int>(bitsAt(block, 8, 8));
    for (std::size_t i = 0; i < 16; ++i)
    {
        const int code = static_cast<int>(bitsAt(block, 16 + i * 3, 3));
        int value = code == 0 ? a : b;
        if (code > 1 && a > b)
            value = ((8 - code) * a + (code - 1) * b) / 7;
        else if (code > 1)
            value = code == 6 ? 0 : code == 7 ? 255 : ((6 - code) * a + (code - 1) * b) / 5;
        result[i][channel] = value;
    }
}

pixels16 decodeBc7(std::span<const std::byte> block) // mode 6 only
{
    EXPECT_EQ(bitsAt(block, 0, 7), 64u) << "not mode 6";
    constexpr int weights[] = {0, 4, 9, 13, 17, 21, 26, 30, 34, 38, 43, 47, 51, 55, 60, 64};
    pixel ends[2];
    for (std::size_t c = 0; c < 4; ++c)
        for (std::size_t end = 0; end < 2; ++end)
            ends[end][c] = static_cast<int>(bitsAt(block, 7 + c * 14 + end * 7, 7) * 2 + bitsAt(block, 63 + end, 1));
    pixels16 result{};
    for (std::size_t i = 0; i < 16; ++i)
    {
        const int weight = weights[i == 0 ? bitsAt(block, 65, 3) : bitsAt(block, 68 + (i - 1) * 4, 4)];
        for (std::size_t c = 0; c < 4; ++c)
            result[i][c] = ((64 - weight) * ends[0][c] + weight * ends[1][c] + 32) >> 6;
    }
    return result;
}

pixels16 decode(std::span<const std::byte> block, block_format format)
{
    pixels16 result{};
    switch (format)
    {
    case block_format::bc1:
        return decodeBc1(block);
    case block_format::bc3:
        result = decodeBc1(block.subspan(8));
        decodeChannel(block.first(8), 3, result);
        return result;
    case block_format::bc5:
        decodeChannel(block.first(8), 0, result);
        decodeChannel(block.last(8), 1, result);
        return result;
    default:
        return decodeBc7(block);
    }
}

// Peak signal to noise in decibels over the channels that the format keeps.
double signalToNoise(const image& source, block_format format)
{
    const auto bytes = encodeBlocks(source, format);
    const std::size_t size = format == block_format::bc1 ? 8 : 16;
    const std::size_t channels = format == block_format::bc1 ? 3 : format == block_format::bc5 ? 2 : 4;
    const std::size_t across = (source.width + 3) / 4;
    if (bytes.size() != across * ((source.height + 3) / 4) * size)
        return 0;
    double error = 0;
    for (std::size_t y = 0; y < source.height; ++y)
        for (std::size_t x = 0; x < source.width; ++x)
        {
            const std::size_t at = (y / 4 * across + x / 4) * size;
            const pixels16 block = decode(std::span(bytes).subspan(at, size), format);
            for (std::size_t c = 0; c < channels; ++c)
            {
                const double off = block[(y % 4) * 4 + x % 4][c] - static_cast<int>(source.at(x, y)[c]);
                error += off * off;
            }
        }
    const double mean = error / static_cast<double>(source.width * source.height * channels);
    return mean == 0 ? 99 : 10 * std::log10(255.0 * 255.0 / mean);
}

// Slopes in all four channels, with an odd size, so that there are partial blocks.
image slopes()
{
    image result(37, 29);
    for (std::size_t y = 0; y < result.height; ++y)
        for (std::size_t x = 0; x < result.width; ++x)
        {
            const std::size_t values[] = {x * 6, y * 8, 255 - x * 5, 40 + (x + y) * 3};
            for (std::size_t c = 0; c < 4; ++c)
                result.at(x, y)[c] = static_cast<std::uint8_t>(values[c]);
        }
    return result;
}

} // namespace

TEST(block_encoder, a_block_of_one_colour_comes_back)
{
    for (const int shade : {0, 1, 127, 128, 254, 255})
    {
        image flat(4, 4);
        for (std::uint8_t& each : flat.pixels)
            each = static_cast<std::uint8_t>(shade);
        for (const block_format format : {block_format::bc1, block_format::bc3, block_format::bc5, block_format::bc7})
        {
            const pixels16 block = decode(encodeBlocks(flat, format), format);
            const int tolerance = format == block_format::bc7 || format == block_format::bc5 ? 1 : 5;
            for (const pixel& each : block)
                EXPECT_NEAR(each[0], shade, tolerance) << static_cast<int>(format);
        }
    }
}

TEST(block_encoder, pictures_keep_their_quality)
{
    const image gradient = slopes();
    EXPECT_GT(signalToNoise(gradient, block_format::bc1), 30);
    EXPECT_GT(signalToNoise(gradient, block_format::bc3), 31);
    EXPECT_GT(signalToNoise(gradient, block_format::bc5), 45);
    EXPECT_GT(signalToNoise(gradient, block_format::bc7), 33);
    for (const material& each : materials())
    {
        if (each.name != "guard_shield" && each.name != "guard_steel")
            continue;
        const auto images = paintMaterial(each, 1);
        EXPECT_GT(signalToNoise(images[0].pixels, block_format::bc1), 32) << each.name;
        EXPECT_GT(signalToNoise(images[0].pixels, block_format::bc7), 36) << each.name;
        EXPECT_GT(signalToNoise(images[1].pixels, block_format::bc3), 32) << each.name;
    }
}

TEST(demo_textures, every_file_is_as_long_as_its_header_says)
{
    std::set<std::string> seen;
    for (const file& each : allFiles())
    {
        if (!each.path.ends_with(".dds"))
            continue;
        SCOPED_TRACE(each.path);
        const std::span<const std::byte> bytes(each.bytes);
        ASSERT_EQ(valueAt<std::uint32_t>(bytes, 0), 0x20534444u);
        ASSERT_EQ(valueAt<std::uint32_t>(bytes, 4), 124u);
        std::string code(reinterpret_cast<const char*>(bytes.data()) + 84, 4);
        std::size_t expected = 128;
        if (code == "DX10")
        {
            code = std::to_string(valueAt<std::uint32_t>(bytes, 128));
            expected += 20;
        }
        seen.insert(code);
        const bool plain = code == "29" || code[0] == '\0';
        const std::size_t block = code == "DXT1" || code == "72" ? 8 : 16;
        std::size_t height = valueAt<std::uint32_t>(bytes, 12), width = valueAt<std::uint32_t>(bytes, 16);
        const auto mips = valueAt<std::uint32_t>(bytes, 28);
        for (std::uint32_t i = 0; i < mips; ++i)
        {
            expected += plain ? width * height * 4 : (width + 3) / 4 * ((height + 3) / 4) * block;
            width = std::max<std::size_t>(1, width / 2);
            height = std::max<std::size_t>(1, height / 2);
        }
        EXPECT_EQ(width * height, 1u) << "mip maps down to one pixel";
        EXPECT_EQ(bytes.size(), expected);
    }
    const std::set<std::string> all = {std::string(4, '\0'), "29", "DXT1", "72", "DXT5", "78", "ATI2", "98", "99"};
    EXPECT_EQ(seen, all);
}

TEST(demo_textures, normal_maps_follow_the_games_channels)
{
    for (const material& each : materials())
    {
        const painted_image normal = paintMaterial(each, 1)[1];
        const bool two_channels = normal.format == dds_format::bc5;
        double steepest = 0;
        for (std::size_t i = 0; i < normal.pixels.pixels.size(); i += 4)
        {
            const std::uint8_t* texel = normal.pixels.pixels.data() + i;
            ASSERT_EQ(texel[2], 0) << each.name;
            ASSERT_EQ(two_channels ? texel[3] : texel[0], 255) << each.name;
            const double x = (two_channels ? texel[0] : texel[3]) / 127.5 - 1, y = texel[1] / 127.5 - 1;
            steepest = std::max(steepest, x * x + y * y);
        }
        EXPECT_LE(steepest, 1.01) << each.name;
        EXPECT_GT(steepest, 0.01) << each.name << " is flat";
    }
}

TEST(images, halving_averages_light_for_colours_and_numbers_for_data)
{
    image checks(2, 2);
    checks.pixels = {255, 255, 255, 255, 0, 0, 0, 0, 0, 0, 0, 0, 255, 255, 255, 255};
    EXPECT_EQ(halved(checks, true).pixels, (std::vector<std::uint8_t>{188, 188, 188, 128})); // half the light is 188
    EXPECT_EQ(halved(checks, false).pixels, (std::vector<std::uint8_t>{128, 128, 128, 128}));
}

} // namespace korvane::demo
