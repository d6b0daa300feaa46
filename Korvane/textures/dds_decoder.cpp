#include "Korvane/textures/dds_decoder.h"

#include "EASY_GUI/services/parallel.h"
#include "Korvane/textures/block_decoder.h"
#include "Korvane/textures/pixel_decoder.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace korvane
{

namespace
{

block_decoder decoderOf(dds_format format)
{
    switch (format)
    {
    case dds_format::bc1:
    case dds_format::bc1_srgb:
        return decodeBc1;
    case dds_format::bc2:
    case dds_format::bc2_srgb:
        return decodeBc2;
    case dds_format::bc3:
    case dds_format::bc3_srgb:
        return decodeBc3;
    case dds_format::bc4:
        return decodeBc4;
    case dds_format::bc4_signed:
        return decodeBc4Signed;
    case dds_format::bc5:
        return decodeBc5;
    case dds_format::bc5_signed:
        return decodeBc5Signed;
    case dds_format::bc6h_unsigned:
        return decodeBc6hUnsigned;
    case dds_format::bc6h_signed:
        return decodeBc6hSigned;
    case dds_format::bc7:
    case dds_format::bc7_srgb:
        return decodeBc7;
    default:
        return nullptr;
    }
}

// Decodes the rows of one subresource, of pixels or of blocks; target begins with its first row.
class row_decoder
{
public:
    // plain is used for formats without blocks.
    row_decoder(block_decoder blocks, const pixel_decoder& plain, const dds_subresource& part,
                std::span<rgba_pixel> target)
        : m_decoder(blocks)
        , m_plain(plain)
        , m_part(part)
        , m_target(target)
    {
    }

    void decode(std::uint32_t row) const
    {
        const std::byte* const source = m_part.bytes.data() + std::size_t{row} * m_part.row_pitch;
        if (m_decoder)
            decodeBlocks(row, source);
        else
            m_plain.decode(source, m_target.subspan(std::size_t{row} * m_part.width, m_part.width));
    }

private:
    void decodeBlocks(std::uint32_t row, const std::byte* source) const
    {
        const std::size_t block_bytes = m_part.row_pitch / ((m_part.width + 3) / 4);
        const std::uint32_t height = std::min(m_part.height - row * 4, 4u);
        for (std::uint32_t x = 0; x < m_part.width; x += 4, source += block_bytes)
        {
            block_pixels pixels;
            m_decoder(source, pixels);
            const std::size_t width = std::min(m_part.width - x, 4u);
            rgba_pixel* target = m_target.data() + std::size_t{row} * 4 * m_part.width + x;
            for (std::size_t y = 0; y < height; ++y, target += m_part.width)
                std::memcpy(target, pixels.data() + y * 4, width * sizeof(rgba_pixel));
        }
    }

    block_decoder m_decoder;
    const pixel_decoder& m_plain;
    const dds_subresource& m_part;
    std::span<rgba_pixel> m_target;
};

void decodePart(const row_decoder& decoder, const dds_subresource& part)
{
    constexpr std::size_t rows_at_once = 8;
    constexpr std::uint64_t pixels_worth_a_thread = 1 << 16;
    const std::size_t threads = threadsFor(std::uint64_t{part.width} * part.height / pixels_worth_a_thread);
    parallelFor(
        part.rows, threads, [&decoder](std::size_t row) { decoder.decode(static_cast<std::uint32_t>(row)); },
        rows_at_once);
}

} // namespace

void decodeSubresource(const dds_image& image, const dds_subresource& part, std::span<rgba_pixel> target)
{
    const block_decoder blocks = decoderOf(image.format);
    const pixel_decoder plain(blocks ? dds_layout{} : image.layout, target.size());
    decodePart(row_decoder(blocks, plain, part, target), part);
}

bool decodeDds(const dds_image& image, picture& target, failure& why)
{
    const std::uint64_t surface_pixels = std::uint64_t{image.width} * image.height;
    if (surface_pixels * image.array_size > max_picture_pixels)
        return fail(why, failure_kind::unsupported,
                    std::to_string(image.array_size) + " surfaces of " + std::to_string(image.width) + " x " +
                        std::to_string(image.height) + " pixels are more than the " +
                        std::to_string(max_picture_pixels) + " pixels of a picture");
    picture result(image.width, image.height * image.array_size);
    for (std::uint32_t surface = 0; surface < image.array_size; ++surface)
        decodeSubresource(image, image.subresource(surface, 0),
                          result.pixels().subspan(surface * surface_pixels, surface_pixels));
    target = std::move(result);
    return true;
}

} // namespace korvane
