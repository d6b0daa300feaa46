#include "tools/demo_data/dds_file.h"

#include "EASY_GUI/services/byte_writer.h"
#include "tools/demo_data/block_encoder.h"

#include <optional>
#include <string_view>

namespace korvane::demo
{

namespace
{

struct format_row
{
    std::string_view four_characters; // "DX10": the extended header follows; "": uncompressed, by masks
    std::uint32_t dxgi;               // with "DX10"
    std::optional<block_format> blocks;
    std::uint32_t block_bytes; // of 4 x 4 pixels
    bool srgb;
};

format_row rowOf(dds_format format)
{
    switch (format)
    {
    case dds_format::bgra8:
        return {"", 0, {}, 64, false};
    case dds_format::rgba8_srgb:
        return {"DX10", 29, {}, 64, true};
    case dds_format::bc1:
        return {"DXT1", 0, block_format::bc1, 8, false};
    case dds_format::bc1_srgb:
        return {"DX10", 72, block_format::bc1, 8, true};
    case dds_format::bc3:
        return {"DXT5", 0, block_format::bc3, 16, false};
    case dds_format::bc3_srgb:
        return {"DX10", 78, block_format::bc3, 16, true};
    case dds_format::bc5:
        return {"ATI2", 0, block_format::bc5, 16, false};
    case dds_format::bc7:
        return {"DX10", 98, block_format::bc7, 16, false};
    default:
        return {"DX10", 99, block_format::bc7, 16, true};
    }
}

void writeHeader(byte_writer& out, const image& source, const format_row& row, std::uint32_t mip_count)
{
    constexpr std::uint32_t caps_height_width_pixelformat_mipmaps = 0x1 | 0x2 | 0x4 | 0x1000 | 0x20000;
    constexpr std::uint32_t pitch_given = 0x8, linear_size_given = 0x80000;
    const auto width = static_cast<std::uint32_t>(source.width), height = static_cast<std::uint32_t>(source.height);
    out.text("DDS ");
    out.u32(124);
    out.u32(caps_height_width_pixelformat_mipmaps | (row.blocks ? linear_size_given : pitch_given));
    out.u32(height);
    out.u32(width);
    out.u32(row.blocks ? (width + 3) / 4 * ((height + 3) / 4) * row.block_bytes : width * 4);
    out.u32(0);
    out.u32(mip_count);
    out.zeros(11 * 4);
    out.u32(32);
    if (row.four_characters.empty())
    {
        out.u32(0x41); // RGB with alpha
        out.u32(0);
        for (const std::uint32_t value : {32u, 0x00FF0000u, 0x0000FF00u, 0x000000FFu, 0xFF000000u})
            out.u32(value);
    }
    else
    {
        out.u32(0x4);
        out.text(row.four_characters);
        out.zeros(5 * 4);
    }
    out.u32(0x401008); // texture, mip maps, complex
    out.zeros(4 * 4);
    if (row.four_characters == "DX10")
        for (const std::uint32_t value : {row.dxgi, 3u, 0u, 1u, 0u}) // a 2D texture, one of them
            out.u32(value);
}

void writePixels(byte_writer& out, const image& level, bool blue_first)
{
    std::vector<std::byte> bytes(level.pixels.size());
    for (std::size_t i = 0; i < bytes.size(); ++i)
    {
        const std::size_t channel = i % 4;
        const std::size_t from = blue_first && channel < 3 ? i - channel + (2 - channel) : i;
        bytes[i] = std::byte(level.pixels[from]);
    }
    out.bytes(bytes);
}

} // namespace

std::vector<std::byte> ddsBytes(const image& source, dds_format format)
{
    const format_row row = rowOf(format);
    std::uint32_t mip_count = 1;
    for (std::size_t size = std::max(source.width, source.height); size > 1; size /= 2)
        ++mip_count;
    byte_writer out;
    writeHeader(out, source, row, mip_count);
    image level = source;
    for (std::uint32_t i = 0; i < mip_count; ++i)
    {
        if (row.blocks)
            out.bytes(encodeBlocks(level, *row.blocks));
        else
            writePixels(out, level, format == dds_format::bgra8);
        if (i + 1 < mip_count)
            level = halved(level, row.srgb);
    }
    return out.take();
}

} // namespace korvane::demo
