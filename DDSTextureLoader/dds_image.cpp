#include "DDSTextureLoader/dds_image.h"

#include "EASY_GUI/services/byte_reader.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <string>

namespace korvane
{

namespace
{

constexpr std::uint32_t fourCc(char a, char b, char c, char d)
{
    const auto byte = [](char value)
    {
        return static_cast<std::uint32_t>(static_cast<unsigned char>(value));
    };
    return byte(a) | byte(b) << 8 | byte(c) << 16 | byte(d) << 24;
}

constexpr std::uint32_t flag_depth = 0x800000; // header flags
constexpr std::uint32_t pixels_alpha = 0x1;    // pixel format flags
constexpr std::uint32_t pixels_four_cc = 0x4;
constexpr std::uint32_t pixels_rgb = 0x40;
constexpr std::uint32_t pixels_luminance = 0x20000;
constexpr std::uint32_t caps2_cube = 0x200;
constexpr std::uint32_t caps2_all_faces = 0xfc00;
constexpr std::uint32_t caps2_volume = 0x200000;
constexpr std::uint32_t misc_cube = 0x4; // DX10 header
constexpr std::uint32_t dimension_texture2d = 3;

struct pixel_format
{
    std::uint32_t flags;
    std::uint32_t four_cc;
    std::uint32_t bits;
    std::uint32_t red, green, blue, alpha;
};

struct header
{
    std::uint32_t flags;
    std::uint32_t height;
    std::uint32_t width;
    std::uint32_t mip_count;
    pixel_format pixels;
    std::uint32_t caps2;
};

struct format_traits
{
    dds_format format;
    const char* name;
    std::uint32_t bytes; // per pixel, or per block of 4 x 4
    bool is_block;
    bool is_srgb;
};

constexpr format_traits known_formats[] = {
    {dds_format::rgba16_float, "R16G16B16A16_FLOAT", 8, false, false},
    {dds_format::rgba8, "R8G8B8A8_UNORM", 4, false, false},
    {dds_format::rgba8_srgb, "R8G8B8A8_UNORM_SRGB", 4, false, true},
    {dds_format::rg8, "R8G8_UNORM", 2, false, false},
    {dds_format::r8, "R8_UNORM", 1, false, false},
    {dds_format::bc1, "BC1_UNORM", 8, true, false},
    {dds_format::bc1_srgb, "BC1_UNORM_SRGB", 8, true, true},
    {dds_format::bc2, "BC2_UNORM", 16, true, false},
    {dds_format::bc2_srgb, "BC2_UNORM_SRGB", 16, true, true},
    {dds_format::bc3, "BC3_UNORM", 16, true, false},
    {dds_format::bc3_srgb, "BC3_UNORM_SRGB", 16, true, true},
    {dds_format::bc4, "BC4_UNORM", 8, true, false},
    {dds_format::bc4_signed, "BC4_SNORM", 8, true, false},
    {dds_format::bc5, "BC5_UNORM", 16, true, false},
    {dds_format::bc5_signed, "BC5_SNORM", 16, true, false},
    {dds_format::bgra8, "B8G8R8A8_UNORM", 4, false, false},
    {dds_format::bgrx8, "B8G8R8X8_UNORM", 4, false, false},
    {dds_format::bgra8_srgb, "B8G8R8A8_UNORM_SRGB", 4, false, true},
    {dds_format::bgrx8_srgb, "B8G8R8X8_UNORM_SRGB", 4, false, true},
    {dds_format::bc6h_unsigned, "BC6H_UF16", 16, true, false},
    {dds_format::bc6h_signed, "BC6H_SF16", 16, true, false},
    {dds_format::bc7, "BC7_UNORM", 16, true, false},
    {dds_format::bc7_srgb, "BC7_UNORM_SRGB", 16, true, true},
};

const format_traits* traitsOf(dds_format format)
{
    const auto* found = std::find_if(std::begin(known_formats), std::end(known_formats),
                                     [format](const format_traits& known)
                                     {
                                         return known.format == format;
                                     });
    return found == std::end(known_formats) ? nullptr : found;
}

dds_format fromFourCc(std::uint32_t code)
{
    static constexpr struct
    {
        std::uint32_t code;
        dds_format format;
    } codes[] = {
        {fourCc('D', 'X', 'T', '1'), dds_format::bc1},        {fourCc('D', 'X', 'T', '2'), dds_format::bc2},
        {fourCc('D', 'X', 'T', '3'), dds_format::bc2},        {fourCc('D', 'X', 'T', '4'), dds_format::bc3},
        {fourCc('D', 'X', 'T', '5'), dds_format::bc3},        {fourCc('A', 'T', 'I', '1'), dds_format::bc4},
        {fourCc('B', 'C', '4', 'U'), dds_format::bc4},        {fourCc('B', 'C', '4', 'S'), dds_format::bc4_signed},
        {fourCc('A', 'T', 'I', '2'), dds_format::bc5},        {fourCc('B', 'C', '5', 'U'), dds_format::bc5},
        {fourCc('B', 'C', '5', 'S'), dds_format::bc5_signed}, {113, dds_format::rgba16_float},
    };
    for (const auto& known : codes)
        if (known.code == code)
            return known.format;
    return dds_format::unknown;
}

dds_format fromLegacy(const pixel_format& pixels)
{
    if (pixels.flags & pixels_four_cc)
        return fromFourCc(pixels.four_cc);
    if (pixels.flags & pixels_rgb && pixels.bits == 32)
    {
        const bool has_alpha = pixels.flags & pixels_alpha && pixels.alpha == 0xff000000;
        if (pixels.green != 0xff00)
            return dds_format::unknown;
        if (pixels.red == 0xff && pixels.blue == 0xff0000)
            return dds_format::rgba8;
        if (pixels.red == 0xff0000 && pixels.blue == 0xff)
            return has_alpha ? dds_format::bgra8 : dds_format::bgrx8;
    }
    if (pixels.flags & pixels_luminance && pixels.bits == 8 && pixels.red == 0xff)
        return dds_format::r8;
    return dds_format::unknown;
}

header readHeader(byte_reader& in)
{
    header head{};
    if (in.u32("magic") != fourCc('D', 'D', 'S', ' ') && in.ok())
        in.fail(failure_kind::malformed, "this is not a DDS file", "magic");
    if (const std::uint32_t size = in.u32("header size"); size != 124 && in.ok())
        in.fail(failure_kind::malformed, "expected a header of 124 bytes but got " + std::to_string(size),
                "header size");
    head.flags = in.u32("flags");
    head.height = in.u32("height");
    head.width = in.u32("width");
    in.skip(4, "pitch"); // computed instead: writers disagree about it
    const std::uint32_t depth = in.u32("depth");
    head.mip_count = in.u32("mip map count");
    in.skip(44, "reserved");
    if (const std::uint32_t size = in.u32("pixel format size"); size != 32 && in.ok())
        in.fail(failure_kind::malformed, "expected a pixel format of 32 bytes but got " + std::to_string(size),
                "pixel format size");
    head.pixels.flags = in.u32("pixel format flags");
    head.pixels.four_cc = in.u32("four-character code");
    head.pixels.bits = in.u32("bits per pixel");
    head.pixels.red = in.u32("red mask");
    head.pixels.green = in.u32("green mask");
    head.pixels.blue = in.u32("blue mask");
    head.pixels.alpha = in.u32("alpha mask");
    in.skip(4, "caps");
    head.caps2 = in.u32("caps 2");
    in.skip(12, "caps 3, caps 4, reserved");
    if (head.flags & flag_depth && depth > 1 && head.caps2 & caps2_volume && in.ok())
        in.fail(failure_kind::unsupported, "volume textures are not supported", "depth");
    return head;
}

// The 20 bytes that follow the header of files whose code is "DX10".
void readExtension(byte_reader& in, dds_image& image)
{
    const std::uint32_t format = in.u32("DXGI format");
    if (in.ok() && !traitsOf(static_cast<dds_format>(format)))
        in.fail(failure_kind::unsupported, "DXGI format " + std::to_string(format) + " is not supported",
                "DXGI format");
    image.format = static_cast<dds_format>(format);
    if (const std::uint32_t dimension = in.u32("dimension"); dimension != dimension_texture2d && in.ok())
        in.fail(failure_kind::unsupported, "only two-dimensional textures are supported", "dimension");
    image.is_cube = (in.u32("misc flags") & misc_cube) != 0;
    const std::uint32_t elements = in.u32("array size");
    if (in.ok() && (elements == 0 || elements > dds_max_surfaces / 6))
        in.fail(failure_kind::malformed,
                "array size " + std::to_string(elements) + " is not between 1 and " +
                    std::to_string(dds_max_surfaces / 6),
                "array size");
    image.array_size = image.is_cube ? elements * 6 : elements;
    in.skip(4, "alpha mode");
}

void readLegacyLayout(byte_reader& in, const header& head, dds_image& image)
{
    image.format = fromLegacy(head.pixels);
    if (image.format == dds_format::unknown && in.ok())
        in.failAt(80, failure_kind::unsupported, "this pixel format is not supported", "pixel format");
    image.is_cube = (head.caps2 & caps2_cube) != 0;
    if (image.is_cube && (head.caps2 & caps2_all_faces) != caps2_all_faces && in.ok())
        in.failAt(112, failure_kind::unsupported, "cube maps without all six faces are not supported", "caps 2");
    image.array_size = image.is_cube ? 6 : 1;
}

bool checkSizes(byte_reader& in, const dds_image& image)
{
    const auto bad = [](std::uint32_t size)
    {
        return size == 0 || size > dds_max_size;
    };
    if (bad(image.width) || bad(image.height))
        return in.failAt(12, failure_kind::malformed,
                         "the size " + std::to_string(image.width) + " x " + std::to_string(image.height) +
                             " is not between 1 and " + std::to_string(dds_max_size),
                         "height");
    if (image.is_cube && image.width != image.height)
        return in.failAt(12, failure_kind::malformed, "the faces of a cube map must be square", "height");
    const auto most = static_cast<std::uint32_t>(std::bit_width(std::max(image.width, image.height)));
    if (image.mip_count > most)
        return in.failAt(28, failure_kind::malformed,
                         std::to_string(image.mip_count) + " mip maps, but the size allows no more than " +
                             std::to_string(most),
                         "mip map count");
    return true;
}

void readSurfaces(byte_reader& in, const format_traits& traits, dds_image& image)
{
    for (std::uint32_t surface = 0; surface < image.array_size; ++surface)
        for (std::uint32_t mip = 0; mip < image.mip_count && in.ok(); ++mip)
        {
            dds_subresource part;
            part.width = std::max(image.width >> mip, 1u);
            part.height = std::max(image.height >> mip, 1u);
            // At most 16,384 pixels of 8 bytes in a row: 32 bits are enough for a row, not for a surface.
            part.row_pitch = (traits.is_block ? (part.width + 3) / 4 : part.width) * traits.bytes;
            part.rows = traits.is_block ? (part.height + 3) / 4 : part.height;
            in.enter("surface " + std::to_string(surface) + ", mip map " + std::to_string(mip));
            part.bytes = in.bytes(std::uint64_t{part.row_pitch} * part.rows, "pixels");
            image.subresources.push_back(part);
        }
}

} // namespace

bool isSrgb(dds_format format)
{
    const format_traits* traits = traitsOf(format);
    return traits && traits->is_srgb;
}

bool isBlockCompressed(dds_format format)
{
    const format_traits* traits = traitsOf(format);
    return traits && traits->is_block;
}

const char* formatName(dds_format format)
{
    const format_traits* traits = traitsOf(format);
    return traits ? traits->name : nullptr;
}

const dds_subresource& dds_image::subresource(std::uint32_t surface, std::uint32_t mip) const
{
    const std::size_t index = std::size_t{surface} * mip_count + mip;
    assert(surface < array_size && mip < mip_count && index < subresources.size());
    return subresources[index];
}

bool readDds(std::span<const std::byte> file, dds_image& image, failure& why)
{
    byte_reader in(file);
    const header head = readHeader(in);
    dds_image result;
    result.width = head.width;
    result.height = head.height;
    result.mip_count = std::max(head.mip_count, 1u);
    if (head.pixels.flags & pixels_four_cc && head.pixels.four_cc == fourCc('D', 'X', '1', '0'))
        readExtension(in, result);
    else
        readLegacyLayout(in, head, result);
    if (in.ok() && checkSizes(in, result))
        readSurfaces(in, *traitsOf(result.format), result);
    if (!in.finish(why))
        return false;
    image = std::move(result);
    return true;
}

} // namespace korvane
