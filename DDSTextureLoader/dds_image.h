#pragma once

// Describes a DDS file that lies in memory: format, sizes, and where each subresource's bytes are. Portable; creating
// a Direct3D texture of it is in dds_texture.h.
//
// Read are files with the legacy pixel formats (DXT1 to DXT5, ATI1/ATI2, BC4/BC5, 32-bit masks, 8-bit luminance,
// 16-bit floats) and with the DX10 header: two-dimensional textures, arrays and whole cubes of the formats in
// dds_format. Volume textures, one-dimensional textures and incomplete cubes are refused.

#include "EASY_GUI/services/failure.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace korvane
{

// The formats that are supported; the values are those of DXGI_FORMAT.
enum class dds_format : std::uint32_t
{
    unknown = 0,
    rgba16_float = 10,
    rgba8 = 28,
    rgba8_srgb = 29,
    rg8 = 49,
    r8 = 61,
    bc1 = 71,
    bc1_srgb = 72,
    bc2 = 74,
    bc2_srgb = 75,
    bc3 = 77,
    bc3_srgb = 78,
    bc4 = 80,
    bc4_signed = 81,
    bc5 = 83,
    bc5_signed = 84,
    bgra8 = 87,
    bgrx8 = 88,
    bgra8_srgb = 91,
    bgrx8_srgb = 93,
    bc6h_unsigned = 95,
    bc6h_signed = 96,
    bc7 = 98,
    bc7_srgb = 99
};

[[nodiscard]] bool isSrgb(dds_format format);
[[nodiscard]] bool isBlockCompressed(dds_format format);
// "BC3_UNORM_SRGB"; null for a format that is not supported.
[[nodiscard]] const char* formatName(dds_format format);

struct dds_subresource
{
    std::span<const std::byte> bytes; // into the file
    std::uint32_t width = 0;          // pixels
    std::uint32_t height = 0;
    std::uint32_t row_pitch = 0; // bytes from one row to the next; a row of blocks in block-compressed formats
    std::uint32_t rows = 0;      // of pixels or of blocks
};

// A view of the file's bytes: valid as long as they are.
struct dds_image
{
    dds_format format = dds_format::unknown;
    std::uint32_t width = 0; // of mip level 0
    std::uint32_t height = 0;
    std::uint32_t mip_count = 0;
    std::uint32_t array_size = 0; // in surfaces: six for each cube
    bool is_cube = false;
    std::vector<dds_subresource> subresources; // array_size x mip_count, the mip levels of a surface together

    const dds_subresource& subresource(std::uint32_t surface, std::uint32_t mip) const;
};

inline constexpr std::uint32_t dds_max_size = 16384; // pixels in each direction
inline constexpr std::uint32_t dds_max_surfaces = 2048;

// Reads the headers and finds the subresources; every one lies inside the bytes. Bytes after the last one are ignored.
[[nodiscard]] bool readDds(std::span<const std::byte> file, dds_image& image, failure& why);

} // namespace korvane
