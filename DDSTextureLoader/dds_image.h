#pragma once

// Describes a DDS file that lies in memory: format, sizes, and where each subresource's bytes are. Portable; creating
// a Direct3D texture of it is in dds_texture.h.
//
// Read are two-dimensional textures, arrays and whole cubes in the formats of docs/formats/dds.md, with the DX10 header
// or with a legacy pixel format (four-character codes; bit masks of 8, 16, 24 or 32 bits). Volume textures,
// one-dimensional textures and incomplete cubes are refused.

#include "EASY_GUI/services/failure.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace korvane
{

// What a graphics device calls the format: the values are those of DXGI_FORMAT. Named here are those that the program
// asks for by name; dds_formats.cpp has all.
enum class dds_format : std::uint32_t
{
    unknown = 0, // readable, but no device has it: 24 bits a pixel, masks in an odd order, pairs, integers of 32 bits
    rgba16_float = 10,
    rgba8 = 28,
    rgba8_srgb = 29,
    rgba8_signed = 31,
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
    bc6h_unsigned = 95,
    bc6h_signed = 96,
    bc7 = 98,
    bc7_srgb = 99
};

// What the bits of a channel mean.
enum class dds_number : std::uint8_t
{
    blocks,          // block-compressed: the format says how
    unorm,           // 0 to the largest value of its bits: 0..1
    snorm,           // two's complement: -1..1, the lowest value counts as the next one
    floating,        // of 32, 16 (IEEE), 11 or 10 bits (5 of exponent, no sign)
    shared_exponent, // 9 bits, scaled by the 5 highest bits of the pixel
    // Two pixels in four bytes: the channels are what both have, the first one's own, again what both have, the second
    // one's own. A row ends with a whole pair.
    pair_of_colours, // red, green, blue, green: 0..1
    pair_of_video    // colour difference to blue, brightness, difference to red, brightness: 16 is black, 235 white
};

// A channel never reaches over a multiple of 32 bits.
struct dds_channel
{
    std::uint8_t first_bit = 0; // in a pixel, whose bytes stand lowest first
    std::uint8_t bits = 0;      // 0: not there

    bool operator==(const dds_channel&) const = default;
};

struct dds_layout
{
    dds_number number = dds_number::blocks;
    std::uint32_t bytes = 0;               // a pixel, a pair, or a block of 4 x 4: at most 16
    std::array<dds_channel, 4> channels{}; // red, green, blue, alpha; red alone is grey

    bool operator==(const dds_layout&) const = default;
};

[[nodiscard]] bool isSrgb(dds_format format);
[[nodiscard]] bool isBlockCompressed(dds_format format);
[[nodiscard]] constexpr bool isPaired(const dds_layout& layout)
{
    return layout.number == dds_number::pair_of_colours || layout.number == dds_number::pair_of_video;
}
// "BC3_UNORM_SRGB"; null for unknown.
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
    std::vector<dds_subresource> subresources = {}; // array_size x mip_count, the mip levels of a surface together
    dds_layout layout = {};

    const dds_subresource& subresource(std::uint32_t surface, std::uint32_t mip) const;
};

inline constexpr std::uint32_t dds_max_size = 16384; // pixels in each direction
inline constexpr std::uint32_t dds_max_surfaces = 2048;

// Reads the headers and finds the subresources; every one lies inside the bytes. Bytes after the last one are ignored.
// Of too many mip maps in the header those count that the size allows and, without an array, that the file holds whole.
[[nodiscard]] bool readDds(std::span<const std::byte> file, dds_image& image, failure& why);

// What the headers say, without the subresources (148 bytes are enough).
[[nodiscard]] bool readDdsHead(std::span<const std::byte> start, dds_image& image, failure& why);

// The bytes that readDds() looks at, by the headers alone (148 bytes are enough of them): what follows is ignored.
[[nodiscard]] bool ddsFileSize(std::span<const std::byte> start, std::uint64_t& size, failure& why);

} // namespace korvane
