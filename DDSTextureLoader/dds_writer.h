#pragma once

// The head of DDS files, and the sizes of what follows it. Written with the legacy header, which older programs read,
// where that can say it: BC1, BC3, BC4, BC5 (codes DXT1, DXT5, ATI1, ATI2), RGBA8 and BGRA8 (masks); BC7 and everything
// sRGB with the DX10 header.

#include "DDSTextureLoader/dds_image.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace korvane
{

struct dds_description // of a single two-dimensional texture
{
    dds_format format = dds_format::bc7;
    std::uint32_t width = 0; // 1 to dds_max_size
    std::uint32_t height = 0;
    std::uint32_t mip_count = 1; // 1 to mostMipMaps()
};

// Whether it is one of those above.
[[nodiscard]] bool canWriteDds(dds_format format);
// Down to a single pixel.
[[nodiscard]] std::uint32_t mostMipMaps(std::uint32_t width, std::uint32_t height);
// The sizes of one level; bytes is empty.
[[nodiscard]] dds_subresource ddsLevel(const dds_description& image, std::uint32_t mip);
// Magic and headers: 128 or 148 bytes. The levels follow without gaps, the largest first.
[[nodiscard]] std::vector<std::byte> ddsHead(const dds_description& image);

} // namespace korvane
