#pragma once

// The formats of DDS files as a table: how a pixel's channels lie in its bytes, by the number of the DXGI format, by a
// four-character code, or by the bit masks of the legacy header.

#include "DDSTextureLoader/dds_image.h"

#include <cstdint>
#include <string>

namespace korvane
{

constexpr std::uint32_t fourCc(char a, char b, char c, char d)
{
    const auto byte = [](char value) { return static_cast<std::uint32_t>(static_cast<unsigned char>(value)); };
    return byte(a) | byte(b) << 8 | byte(c) << 16 | byte(d) << 24;
}

inline constexpr std::uint32_t ddpf_four_cc = 0x4; // dds_pixel_format::flags: the code says it all

struct dds_pixel_format // of the legacy header
{
    std::uint32_t flags;
    std::uint32_t four_cc;
    std::uint32_t bits;
    std::uint32_t red, green, blue, alpha; // masks
};

struct dds_format_traits
{
    std::uint32_t dxgi;
    dds_format format; // another one for formats without a type: the one that is meant
    const char* name;
    dds_layout layout;
    bool is_srgb = false;
};

// By the number in the file; null for one that is not read.
[[nodiscard]] const dds_format_traits* ddsTraits(std::uint32_t dxgi);
// A level's sizes without its bytes, for pictures of at most dds_max_size.
[[nodiscard]] dds_subresource levelSizes(const dds_layout& layout, std::uint32_t width, std::uint32_t height,
                                         std::uint32_t mip);
// False, and the reason, for one that is not read.
[[nodiscard]] bool readLegacyFormat(const dds_pixel_format& pixels, dds_format& format, dds_layout& layout,
                                    std::string& reason);

} // namespace korvane
