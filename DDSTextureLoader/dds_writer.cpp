#include "DDSTextureLoader/dds_writer.h"

#include "DDSTextureLoader/dds_formats.h"
#include "EASY_GUI/services/byte_writer.h"

#include <algorithm>
#include <bit>
#include <cassert>

namespace korvane
{

namespace
{

constexpr std::uint32_t head_flags = 0x1 | 0x2 | 0x4 | 0x1000; // caps, height, width, pixel format
constexpr std::uint32_t flag_pitch = 0x8, flag_mip_count = 0x20000, flag_linear_size = 0x80000;
constexpr std::uint32_t two_dimensional = 3;                         // DX10 header
constexpr std::uint32_t caps_texture = 0x1000, caps_mips = 0x400008; // with mip maps: complex, too
constexpr dds_pixel_format dx10 = {ddpf_four_cc, fourCc('D', 'X', '1', '0'), 0, 0, 0, 0, 0};

dds_pixel_format coded(std::uint32_t code)
{
    return {ddpf_four_cc, code, 0, 0, 0, 0, 0};
}

dds_pixel_format legacyFormat(dds_format format)
{
    constexpr std::uint32_t colours_with_alpha = 0x41;
    switch (format)
    {
    case dds_format::bc1:
        return coded(fourCc('D', 'X', 'T', '1'));
    case dds_format::bc3:
        return coded(fourCc('D', 'X', 'T', '5'));
    case dds_format::bc4:
        return coded(fourCc('A', 'T', 'I', '1'));
    case dds_format::bc5:
        return coded(fourCc('A', 'T', 'I', '2'));
    case dds_format::rgba8:
        return {colours_with_alpha, 0, 32, 0xff, 0xff00, 0xff0000, 0xff000000};
    case dds_format::bgra8:
        return {colours_with_alpha, 0, 32, 0xff0000, 0xff00, 0xff, 0xff000000};
    default:
        return dx10;
    }
}

} // namespace

bool canWriteDds(dds_format format)
{
    switch (format)
    {
    case dds_format::bc1_srgb:
    case dds_format::bc3_srgb:
    case dds_format::bc7:
    case dds_format::bc7_srgb:
    case dds_format::rgba8_srgb:
    case dds_format::bgra8_srgb:
        return true;
    default:
        return legacyFormat(format).four_cc != dx10.four_cc;
    }
}

std::uint32_t mostMipMaps(std::uint32_t width, std::uint32_t height)
{
    return static_cast<std::uint32_t>(std::bit_width(std::max(width, height)));
}

dds_subresource ddsLevel(const dds_description& image, std::uint32_t mip)
{
    return levelSizes(ddsTraits(static_cast<std::uint32_t>(image.format))->layout, image.width, image.height, mip);
}

std::vector<std::byte> ddsHead(const dds_description& image)
{
    assert(canWriteDds(image.format));
    const dds_subresource largest = ddsLevel(image, 0);
    const bool is_block = isBlockCompressed(image.format), has_mips = image.mip_count > 1;
    byte_writer out;
    out.text("DDS ");
    out.u32(124);
    out.u32(head_flags | (is_block ? flag_linear_size : flag_pitch) | (has_mips ? flag_mip_count : 0));
    out.u32(image.height);
    out.u32(image.width);
    out.u32(is_block ? largest.row_pitch * largest.rows : largest.row_pitch); // at most 256 MiB
    out.u32(0);                                                               // depth
    out.u32(image.mip_count);
    out.zeros(44);
    const dds_pixel_format pixels = legacyFormat(image.format);
    out.u32(32);
    for (const std::uint32_t value :
         {pixels.flags, pixels.four_cc, pixels.bits, pixels.red, pixels.green, pixels.blue, pixels.alpha})
        out.u32(value);
    out.u32(caps_texture | (has_mips ? caps_mips : 0));
    out.zeros(16);
    if (pixels.four_cc == dx10.four_cc)
        for (const std::uint32_t value : {static_cast<std::uint32_t>(image.format), two_dimensional, 0u, 1u, 0u})
            out.u32(value);
    return out.take();
}

} // namespace korvane
