#include "Korvane/textures/dds_encoder.h"

#include "EASY_GUI/services/parallel.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <string>

namespace korvane
{

namespace
{

// Pixels of one level into the bytes of the file.
class level_encoder
{
public:
    level_encoder(const dds_encoding& encoding, const picture& source, std::byte* target, std::uint32_t row_pitch)
        : m_encoding(encoding)
        , m_source(source)
        , m_target(target)
        , m_row_pitch(row_pitch)
    {
    }

    void encodeRow(std::size_t row) const
    {
        std::byte* const target = m_target + row * m_row_pitch;
        if (isBlockCompressed(m_encoding.format))
            return encodeBlocks(static_cast<std::uint32_t>(row) * 4, target);
        const auto pixels = m_source.row(static_cast<std::uint32_t>(row));
        const bool is_blue_first =
            m_encoding.format == dds_format::bgra8 || m_encoding.format == dds_format::bgra8_srgb;
        for (std::size_t x = 0; x < pixels.size(); ++x)
        {
            const rgba_pixel pixel = pixels[x];
            const rgba_pixel stored =
                is_blue_first ? (pixel & 0xff00ff00) | (pixel & 0xff) << 16 | (pixel >> 16 & 0xff) : pixel;
            std::memcpy(target + x * sizeof stored, &stored, sizeof stored);
        }
    }

private:
    void encodeBlocks(std::uint32_t top, std::byte* target) const
    {
        const std::size_t block_bytes = m_row_pitch / ((m_source.width() + 3) / 4);
        for (std::uint32_t left = 0; left < m_source.width(); left += 4, target += block_bytes)
            encodeBlock(blockAt(left, top), target);
    }

    // Beyond the edge the last pixels are repeated: they cost nothing then.
    block_pixels blockAt(std::uint32_t left, std::uint32_t top) const
    {
        block_pixels block;
        for (std::uint32_t y = 0; y < 4; ++y)
        {
            const auto row = m_source.row(std::min(top + y, m_source.height() - 1));
            for (std::uint32_t x = 0; x < 4; ++x)
                block[y * 4 + x] = row[std::min(left + x, m_source.width() - 1)];
        }
        return block;
    }

    void encodeBlock(block_pixels block, std::byte* target) const
    {
        switch (m_encoding.format)
        {
        case dds_format::bc1:
        case dds_format::bc1_srgb:
            return encodeBc1(block, m_encoding.effort, target);
        case dds_format::bc3:
        case dds_format::bc3_srgb:
            return encodeBc3(block, m_encoding.effort, target);
        case dds_format::bc4:
            return encodeBc4(block, target);
        case dds_format::bc5:
            if (m_encoding.content == mip_content::orange_normals)
                for (rgba_pixel& pixel : block)
                    pixel = (pixel & 0xff00) | ((pixel & 0xff) * (pixel >> 24) + 127) / 255;
            return encodeBc5(block, target);
        default:
            return encodeBc7(block, target);
        }
    }

    const dds_encoding& m_encoding;
    const picture& m_source;
    std::byte* m_target;
    std::uint32_t m_row_pitch;
};

void encodeLevel(const dds_encoding& encoding, const picture& source, const dds_subresource& level, std::byte* target)
{
    constexpr std::uint64_t pixels_worth_a_thread = 1 << 12;
    const level_encoder encoder(encoding, source, target, level.row_pitch);
    const std::size_t threads = threadsFor(source.pixelCount() / pixels_worth_a_thread);
    parallelFor(
        level.rows, threads, [&encoder](std::size_t row) { encoder.encodeRow(row); }, 4);
}

} // namespace

bool encodeDds(const picture& source, const dds_encoding& encoding, memory_file& file, failure& why)
{
    assert(canWriteDds(encoding.format));
    if (source.pixelCount() == 0 || source.width() > dds_max_size || source.height() > dds_max_size)
        return fail(why, failure_kind::unsupported,
                    "a picture of " + std::to_string(source.width()) + " x " + std::to_string(source.height()) +
                        " pixels cannot be a DDS file: 1 to " + std::to_string(dds_max_size) +
                        " are possible in each direction");
    const std::uint32_t most = mostMipMaps(source.width(), source.height());
    const dds_description image{encoding.format, source.width(), source.height(),
                                encoding.mip_count == 0 ? most : std::min(encoding.mip_count, most)};
    const std::vector<std::byte> head = ddsHead(image);
    std::size_t size = head.size();
    for (std::uint32_t mip = 0; mip < image.mip_count; ++mip)
        size += std::size_t{ddsLevel(image, mip).row_pitch} * ddsLevel(image, mip).rows;
    memory_file result(size);
    std::byte* target = std::copy(head.begin(), head.end(), result.mutableBytes().data());
    const double coverage = encoding.keeps_coverage ? alphaCoverage(source) : 0;
    mip_maps smaller(source, encoding.content);
    for (std::uint32_t mip = 0; mip < image.mip_count; ++mip)
    {
        const dds_subresource level = ddsLevel(image, mip);
        picture pixels;
        if (mip > 0)
        {
            pixels = smaller.next();
            keepAlphaCoverage(pixels, coverage);
        }
        encodeLevel(encoding, mip == 0 ? source : pixels, level, target);
        target += std::size_t{level.row_pitch} * level.rows;
    }
    file = std::move(result);
    return true;
}

} // namespace korvane
