#include "Korvane/textures/dds_unpacker.h"

#include "DDSTextureLoader/dds_formats.h"
#include "EASY_GUI/services/parallel.h"
#include "Korvane/textures/block_decoder.h"
#include "Korvane/textures/dds_decoder.h"
#include "Korvane/textures/pixel_decoder.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>

namespace korvane
{

namespace
{

constexpr std::uint64_t most_unpacked_bytes = std::uint64_t{1} << 31;
constexpr std::uint16_t one_as_half = 0x3c00;

bool isBlockLight(const dds_image& image)
{
    return image.format == dds_format::bc6h_unsigned || image.format == dds_format::bc6h_signed;
}

bool isLight(const dds_image& image)
{
    return isBlockLight(image) || image.layout.number == dds_number::floating ||
           image.layout.number == dds_number::shared_exponent;
}

bool isSigned(const dds_image& image)
{
    return image.format == dds_format::bc4_signed || image.format == dds_format::bc5_signed ||
           image.layout.number == dds_number::snorm;
}

dds_format unpackedFormat(const dds_image& image)
{
    return isLight(image)         ? dds_format::rgba16_float
           : isSigned(image)      ? dds_format::rgba8_signed
           : isSrgb(image.format) ? dds_format::rgba8_srgb
                                  : dds_format::rgba8;
}

using half_pixel = std::array<std::uint16_t, 4>;

void unpackBlockLight(const dds_image& image, const dds_subresource& part, half_pixel* target)
{
    const bool is_signed = image.format == dds_format::bc6h_signed;
    parallelFor(part.rows, threadsFor(part.rows / 64), [&](std::size_t row) {
        const std::byte* source = part.bytes.data() + row * part.row_pitch;
        for (std::uint32_t left = 0; left < part.width; left += 4, source += 16)
        {
            block_halves block;
            decodeBc6hHalves(source, is_signed, block);
            for (std::uint32_t i = 0; i < 16; ++i)
            {
                const std::uint32_t x = left + i % 4, y = static_cast<std::uint32_t>(row) * 4 + i / 4;
                if (x < part.width && y < part.height)
                    target[std::size_t{y} * part.width + x] = {block[i][0], block[i][1], block[i][2], one_as_half};
            }
        }
    });
}

// To the nearest one, even between two; what is larger than all of them is the largest, and NaN is 0.
std::uint16_t nearestHalf(float value)
{
    const std::uint16_t sign = std::signbit(value) ? 0x8000 : 0;
    const float size = std::min(std::abs(value), 65504.0f);
    if (!(size > 0))
        return sign;
    const int exponent = std::max(std::ilogb(size), -14); // steps of 2^-10 of that; below 2^-14 they stay
    const float steps = std::nearbyint(std::ldexp(size, 10 - exponent));
    return static_cast<std::uint16_t>(sign + ((exponent + 14) << 10) + static_cast<int>(steps));
}

void unpackFloats(const dds_image& image, const dds_subresource& part, half_pixel* target)
{
    const pixel_decoder decoder(image.layout, 0);
    parallelFor(part.rows, threadsFor(std::uint64_t{part.rows} * part.width >> 16), [&](std::size_t row) {
        const std::byte* source = part.bytes.data() + row * part.row_pitch;
        for (std::size_t x = 0; x < part.width; ++x, source += image.layout.bytes)
        {
            const std::array<float, 4> light = decoder.lightOf(source);
            std::transform(light.begin(), light.end(), target[row * part.width + x].begin(), nearestHalf);
        }
    });
}

// The decoder shows pictures to people: what it makes of one channel and of signs is taken back.
void asTheShaderReads(const dds_image& image, std::span<rgba_pixel> pixels)
{
    const bool is_one_channel = image.format == dds_format::bc4 || image.format == dds_format::bc4_signed ||
                                (image.format != dds_format::unknown && image.layout.channels[0].bits > 0 &&
                                 image.layout.channels[1].bits + image.layout.channels[2].bits == 0);
    const rgba_pixel kept = is_one_channel ? 0xff0000ff : 0xffffffff;
    if (!isSigned(image))
    {
        if (is_one_channel)
            for (rgba_pixel& pixel : pixels)
                pixel &= kept;
        return;
    }
    const bool is_block = isBlockCompressed(image.format), blue = image.layout.channels[2].bits > 0;
    std::array<std::uint8_t, 256> signed_byte{};
    for (int value = 0; value < 256; ++value) // -127..127 had become 0..255
        signed_byte[static_cast<std::size_t>(value)] = static_cast<std::uint8_t>((value * 254 + 127) / 255 - 127);
    for (rgba_pixel& pixel : pixels)
    {
        const auto converted = [&](unsigned shift) { return unsigned{signed_byte[pixel >> shift & 0xff]}; };
        const unsigned green = is_one_channel ? 0 : converted(8);
        pixel = is_block ? rgba(converted(0), green, 0, 127)
                         : rgba(converted(0), green, blue ? converted(16) : 0, converted(24));
    }
}

} // namespace

bool unpackDds(const dds_image& image, unpacked_dds& target, failure& why)
{
    const bool is_light = isLight(image);
    unpacked_dds result;
    result.image = image;
    result.image.format = unpackedFormat(image);
    result.image.layout = ddsTraits(static_cast<std::uint32_t>(result.image.format))->layout;
    std::uint64_t size = 0;
    for (dds_subresource& part : result.image.subresources)
    {
        part.row_pitch = part.width * result.image.layout.bytes;
        part.rows = part.height;
        size += std::uint64_t{part.row_pitch} * part.rows;
    }
    if (size > most_unpacked_bytes)
        return fail(why, failure_kind::unsupported,
                    "unpacked the texture takes " + std::to_string(size >> 20) + " MiB: more than the " +
                        std::to_string(most_unpacked_bytes >> 20) + " MiB that are given to one");
    result.bytes = allocateLarge(static_cast<std::size_t>(size));
    std::byte* next = result.bytes.get();
    for (std::size_t i = 0; i < image.subresources.size(); ++i)
    {
        const dds_subresource& source = image.subresources[i];
        dds_subresource& part = result.image.subresources[i];
        if (isBlockLight(image))
            unpackBlockLight(image, source, reinterpret_cast<half_pixel*>(next));
        else if (is_light)
            unpackFloats(image, source, reinterpret_cast<half_pixel*>(next));
        else
        {
            const std::span pixels(reinterpret_cast<rgba_pixel*>(next), std::size_t{part.width} * part.height);
            decodeSubresource(image, source, pixels);
            asTheShaderReads(image, pixels);
        }
        part.bytes = {next, std::size_t{part.row_pitch} * part.rows};
        next += part.bytes.size();
    }
    target = std::move(result);
    return true;
}

} // namespace korvane
