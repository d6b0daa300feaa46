#pragma once

// Turns rows of uncompressed DDS pixels into RGBA bytes, whatever their layout (dds_decoder.h says what becomes of the
// channels). Once made, it may be used by several threads.

#include "DDSTextureLoader/dds_image.h"
#include "Korvane/textures/picture.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace korvane
{

class pixel_decoder
{
public:
    // pixel_count: how many are to come, which decides whether tables are worth their making.
    pixel_decoder(const dds_layout& layout, std::uint64_t pixel_count);

    // source holds layout.bytes for each pixel of target, or for each begun pair.
    void decode(const std::byte* source, std::span<rgba_pixel> target) const;
    // Of formats of floats, one pixel as it is: channels that are not there are 0, alpha 1.
    [[nodiscard]] std::array<float, 4> lightOf(const std::byte* source) const;

private:
    struct channel_reader
    {
        unsigned word = 0; // of 32 bits
        unsigned shift = 0;
        unsigned bits = 0;
        std::uint32_t mask = 0;
        bool is_light = false;
        std::vector<std::uint8_t> table; // empty: each value is computed
    };

    template <unsigned bytes>
    void decodePixels(const std::byte* source, std::span<rgba_pixel> target) const;
    void decodePairs(const std::byte* source, std::span<rgba_pixel> target) const;
    unsigned channelByte(const channel_reader& channel, std::uint32_t word) const;
    std::uint8_t convert(const channel_reader& channel, std::uint32_t value) const;

    dds_layout m_layout;
    bool m_is_grey;
    std::array<channel_reader, 4> m_channels;
};

} // namespace korvane
