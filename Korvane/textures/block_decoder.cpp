#include "Korvane/textures/block_decoder.h"

#include "EASY_GUI/services/byte_reader.h"
#include "Korvane/models/half_float.h"
#include "Korvane/textures/channel_bytes.h"

#include <algorithm>

namespace korvane
{

namespace
{

rgba_pixel from565(unsigned colour)
{
    const unsigned red = colour >> 11, green = colour >> 5 & 63, blue = colour & 31;
    return rgba(red << 3 | red >> 2, green << 2 | green >> 4, blue << 3 | blue >> 2, 255);
}

// (a x first + b x second) / (a + b) for each colour, to nearest; alpha 255.
rgba_pixel mixed(rgba_pixel first, unsigned a, rgba_pixel second, unsigned b)
{
    const auto channel = [=](int shift) {
        return ((first >> shift & 0xff) * a + (second >> shift & 0xff) * b + (a + b) / 2) / (a + b);
    };
    return rgba(channel(0), channel(8), channel(16), 255);
}

// In blocks that have an alpha of their own the order of the end points says nothing.
void decodeColours(const std::byte* block, bool has_own_alpha, block_pixels& pixels)
{
    const unsigned first = littleEndian<std::uint16_t>(block), second = littleEndian<std::uint16_t>(block + 2);
    std::array<rgba_pixel, 4> palette = {from565(first), from565(second), 0, 0};
    if (has_own_alpha || first > second)
    {
        palette[2] = mixed(palette[0], 2, palette[1], 1);
        palette[3] = mixed(palette[0], 1, palette[1], 2);
    }
    else
        palette[2] = mixed(palette[0], 1, palette[1], 1); // and the last one is transparent black
    std::uint32_t indices = littleEndian<std::uint32_t>(block + 4);
    for (rgba_pixel& pixel : pixels)
    {
        pixel = palette[indices & 3];
        indices >>= 2;
    }
}

// One channel of 8 bytes: two end points, and sixteen indices of three bits.
std::array<std::uint8_t, 16> decodeChannel(const std::byte* block, bool is_signed)
{
    const std::uint64_t bits = littleEndian<std::uint64_t>(block);
    const auto endPoint = [is_signed](std::uint64_t byte) {
        return is_signed ? static_cast<std::int8_t>(byte) : static_cast<int>(byte & 255);
    };
    const int steps = endPoint(bits) > endPoint(bits >> 8) ? 7 : 5; // -128 differs from -127 here only
    const int first = std::max(endPoint(bits), -127), second = std::max(endPoint(bits >> 8), -127);
    const auto toByte = [is_signed](int value) {
        return is_signed ? byteOfSnorm(value, 127) : static_cast<std::uint8_t>(value);
    };
    std::array<std::uint8_t, 8> palette = {toByte(first), toByte(second)};
    for (int i = 1; i < steps; ++i)
    {
        const int sum = first * (steps - i) + second * i; // may be negative
        palette[static_cast<std::size_t>(i) + 1] = toByte((sum + (sum < 0 ? -steps : steps) / 2) / steps);
    }
    if (steps == 5)
    {
        palette[6] = toByte(is_signed ? -127 : 0);
        palette[7] = toByte(is_signed ? 127 : 255);
    }
    std::uint64_t indices = bits >> 16;
    std::array<std::uint8_t, 16> values;
    for (std::uint8_t& value : values)
    {
        value = palette[indices & 7];
        indices >>= 3;
    }
    return values;
}

void decodeGrey(const std::byte* block, bool is_signed, block_pixels& pixels)
{
    const std::array<std::uint8_t, 16> values = decodeChannel(block, is_signed);
    for (std::size_t i = 0; i < 16; ++i)
        pixels[i] = rgba(values[i], values[i], values[i], 255);
}

void decodePair(const std::byte* block, bool is_signed, block_pixels& pixels)
{
    const std::array<std::uint8_t, 16> red = decodeChannel(block, is_signed),
                                       green = decodeChannel(block + 8, is_signed);
    for (std::size_t i = 0; i < 16; ++i)
        pixels[i] = rgba(red[i], green[i], 0, 255);
}

// By the bits of a half: an array is faster than a search for each pixel.
const std::array<std::uint8_t, 65536>& lightOfHalves()
{
    static const auto table = [] {
        std::array<std::uint8_t, 65536> bytes;
        for (std::uint32_t bits = 0; bits < bytes.size(); ++bits)
            bytes[bits] = byteOfLight(halfToFloat(static_cast<std::uint16_t>(bits)));
        return bytes;
    }();
    return table;
}

void decodeLight(const std::byte* block, bool is_signed, block_pixels& pixels)
{
    block_halves halves;
    decodeBc6hHalves(block, is_signed, halves);
    const auto& curved = lightOfHalves();
    for (std::size_t i = 0; i < 16; ++i)
        pixels[i] = rgba(curved[halves[i][0]], curved[halves[i][1]], curved[halves[i][2]], 255);
}

} // namespace

void decodeBc1(const std::byte* block, block_pixels& pixels)
{
    decodeColours(block, false, pixels);
}

void decodeBc2(const std::byte* block, block_pixels& pixels)
{
    decodeColours(block + 8, true, pixels);
    std::uint64_t alphas = littleEndian<std::uint64_t>(block);
    for (rgba_pixel& pixel : pixels)
    {
        pixel = (pixel & 0xffffff) | static_cast<rgba_pixel>(alphas & 15) * 17 << 24;
        alphas >>= 4;
    }
}

void decodeBc3(const std::byte* block, block_pixels& pixels)
{
    decodeColours(block + 8, true, pixels);
    const std::array<std::uint8_t, 16> alphas = decodeChannel(block, false);
    for (std::size_t i = 0; i < 16; ++i)
        pixels[i] = (pixels[i] & 0xffffff) | rgba_pixel{alphas[i]} << 24;
}

void decodeBc4(const std::byte* block, block_pixels& pixels)
{
    decodeGrey(block, false, pixels);
}

void decodeBc4Signed(const std::byte* block, block_pixels& pixels)
{
    decodeGrey(block, true, pixels);
}

void decodeBc5(const std::byte* block, block_pixels& pixels)
{
    decodePair(block, false, pixels);
}

void decodeBc5Signed(const std::byte* block, block_pixels& pixels)
{
    decodePair(block, true, pixels);
}

void decodeBc6hUnsigned(const std::byte* block, block_pixels& pixels)
{
    decodeLight(block, false, pixels);
}

void decodeBc6hSigned(const std::byte* block, block_pixels& pixels)
{
    decodeLight(block, true, pixels);
}

} // namespace korvane
