#include "DDSTextureLoader/dds_image.h"

#include "DDSTextureLoader/dds_formats.h"
#include "EASY_GUI/services/byte_reader.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <string>

namespace korvane
{

namespace
{

constexpr std::uint32_t flag_depth = 0x800000; // header flags
constexpr std::uint32_t caps2_cube = 0x200;
constexpr std::uint32_t caps2_all_faces = 0xfc00;
constexpr std::uint32_t caps2_volume = 0x200000;
constexpr std::uint32_t misc_cube = 0x4; // DX10 header
constexpr std::uint32_t dimension_texture2d = 3;

struct header
{
    std::uint32_t flags;
    std::uint32_t height;
    std::uint32_t width;
    std::uint32_t mip_count;
    dds_pixel_format pixels;
    std::uint32_t caps2;
};

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
    if (depth > 1 && (head.flags & flag_depth || head.caps2 & caps2_volume) && in.ok())
        in.failAt(24, failure_kind::unsupported, "volume textures are not supported", "depth");
    return head;
}

// The 20 bytes that follow the header of files whose code is "DX10".
void readExtension(byte_reader& in, dds_image& image)
{
    const std::uint32_t format = in.u32("DXGI format");
    if (const dds_format_traits* traits = ddsTraits(format))
    {
        image.format = traits->format;
        image.layout = traits->layout;
    }
    else if (in.ok())
        in.fail(failure_kind::unsupported, "DXGI format " + std::to_string(format) + " is not supported",
                "DXGI format");
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
    if (std::string reason; !readLegacyFormat(head.pixels, image.format, image.layout, reason) && in.ok())
        in.failAt(80, failure_kind::unsupported, std::move(reason), "pixel format");
    image.is_cube = (head.caps2 & caps2_cube) != 0;
    if (image.is_cube && (head.caps2 & caps2_all_faces) != caps2_all_faces && in.ok())
        in.failAt(112, failure_kind::unsupported, "cube maps without all six faces are not supported", "caps 2");
    image.array_size = image.is_cube ? 6 : 1;
}

bool checkSizes(byte_reader& in, const dds_image& image)
{
    const auto bad = [](std::uint32_t size) { return size == 0 || size > dds_max_size; };
    if (bad(image.width) || bad(image.height))
        return in.failAt(12, failure_kind::malformed,
                         "the size " + std::to_string(image.width) + " x " + std::to_string(image.height) +
                             " is not between 1 and " + std::to_string(dds_max_size),
                         "height");
    if (image.is_cube && image.width != image.height)
        return in.failAt(12, failure_kind::malformed, "the faces of a cube map must be square", "height");
    return true;
}

dds_subresource sizesOf(const dds_image& image, std::uint32_t mip)
{
    return levelSizes(image.layout, image.width, image.height, mip);
}

void readSurfaces(byte_reader& in, dds_image& image)
{
    for (std::uint32_t surface = 0; surface < image.array_size; ++surface)
        for (std::uint32_t mip = 0; mip < image.mip_count && in.ok(); ++mip)
        {
            if (mip > 0 && image.array_size == 1 && in.left() == 0) // fewer than the header counts, but whole ones
            {
                image.mip_count = mip;
                return;
            }
            dds_subresource part = sizesOf(image, mip);
            in.enter("surface " + std::to_string(surface) + ", mip map " + std::to_string(mip));
            part.bytes = in.bytes(std::uint64_t{part.row_pitch} * part.rows, "pixels");
            image.subresources.push_back(part);
        }
}

// All but the subresources.
bool readHeaders(byte_reader& in, dds_image& image)
{
    const header head = readHeader(in);
    image.width = head.width;
    image.height = head.height;
    if (head.pixels.flags & ddpf_four_cc && head.pixels.four_cc == fourCc('D', 'X', '1', '0'))
        readExtension(in, image);
    else
        readLegacyLayout(in, head, image);
    // Some writers count one too many: the smallest map has one pixel all the same.
    image.mip_count =
        std::clamp(head.mip_count, 1u,
                   std::max(static_cast<std::uint32_t>(std::bit_width(std::max(head.width, head.height))), 1u));
    return in.ok() && checkSizes(in, image);
}

} // namespace

const dds_subresource& dds_image::subresource(std::uint32_t surface, std::uint32_t mip) const
{
    const std::size_t index = std::size_t{surface} * mip_count + mip;
    assert(surface < array_size && mip < mip_count && index < subresources.size());
    return subresources[index];
}

bool readDds(std::span<const std::byte> file, dds_image& image, failure& why)
{
    byte_reader in(file);
    dds_image result;
    if (readHeaders(in, result))
        readSurfaces(in, result);
    if (!in.finish(why))
        return false;
    image = std::move(result);
    return true;
}

bool readDdsHead(std::span<const std::byte> start, dds_image& image, failure& why)
{
    byte_reader in(start);
    dds_image result;
    readHeaders(in, result);
    if (!in.finish(why))
        return false;
    image = std::move(result);
    return true;
}

bool ddsFileSize(std::span<const std::byte> start, std::uint64_t& size, failure& why)
{
    byte_reader in(start);
    dds_image image;
    readHeaders(in, image);
    if (!in.finish(why))
        return false;
    std::uint64_t surface_bytes = 0;
    for (std::uint32_t mip = 0; mip < image.mip_count; ++mip)
    {
        const dds_subresource part = sizesOf(image, mip);
        surface_bytes += std::uint64_t{part.row_pitch} * part.rows;
    }
    size = in.position() + surface_bytes * image.array_size;
    return true;
}

} // namespace korvane
