#include "Korvane/textures/pixel_decoder.h"

#include "EASY_GUI/services/byte_reader.h"
#include "Korvane/models/half_float.h"
#include "Korvane/textures/channel_bytes.h"

#include <bit>
#include <cmath>
#include <cstring>

namespace korvane
{

namespace
{

constexpr unsigned exponent_bits = 5;
constexpr unsigned mantissa_bits = 9; // of a channel with a shared exponent
constexpr unsigned most_table_bits = 16;

float floatOf(std::uint32_t value, unsigned bits)
{
    if (bits == 32)
        return std::bit_cast<float>(value);
    return halfToFloat(static_cast<std::uint16_t>(bits == 16 ? value : value << (15 - bits))); // short ones: no sign
}

} // namespace

pixel_decoder::pixel_decoder(const dds_layout& layout, std::uint64_t pixel_count)
    : m_layout(layout)
    , m_is_grey(layout.channels[0].bits > 0 && layout.channels[1].bits == 0 && layout.channels[2].bits == 0)
{
    const bool is_shared = layout.number == dds_number::shared_exponent;
    for (std::size_t i = 0; i < m_channels.size(); ++i)
    {
        const dds_channel& place = layout.channels[i];
        channel_reader& channel = m_channels[i];
        channel.word = place.first_bit / 32;
        channel.shift = place.first_bit % 32;
        channel.bits = place.bits;
        channel.mask = place.bits == 32 ? ~0u : (1u << place.bits) - 1;
        channel.is_light = i < 3 && (layout.number == dds_number::floating || is_shared);
        const unsigned value_bits = channel.bits + (is_shared ? exponent_bits : 0);
        if (channel.bits == 0 || value_bits > most_table_bits || pixel_count >> value_bits == 0)
            continue;
        channel.table.resize(std::size_t{1} << value_bits);
        for (std::uint32_t value = 0; value < channel.table.size(); ++value)
            channel.table[value] = convert(channel, value);
    }
}

std::uint8_t pixel_decoder::convert(const channel_reader& channel, std::uint32_t value) const
{
    switch (m_layout.number)
    {
    case dds_number::snorm:
    {
        const std::int64_t most = (std::int64_t{1} << (channel.bits - 1)) - 1;
        return byteOfSnorm(value > most ? std::int64_t{value} - 2 * (most + 1) : value, most);
    }
    case dds_number::floating:
    {
        const float number = floatOf(value, channel.bits);
        return channel.is_light ? byteOfLight(number) : byteOfUnit(number);
    }
    case dds_number::shared_exponent: // the mantissa has no hidden bit; 15 is the exponent's bias
        return byteOfLight(std::ldexp(value & channel.mask, static_cast<int>(value >> mantissa_bits) - 24));
    default:
        return byteOfUnorm(value, channel.mask);
    }
}

unsigned pixel_decoder::channelByte(const channel_reader& channel, std::uint32_t word) const
{
    std::uint32_t value = word >> channel.shift & channel.mask;
    if (m_layout.number == dds_number::shared_exponent)
        value |= word >> (32 - exponent_bits) << mantissa_bits;
    return channel.table.empty() ? convert(channel, value) : channel.table[value];
}

template <unsigned bytes>
void pixel_decoder::decodePixels(const std::byte* source, std::span<rgba_pixel> target) const
{
    const auto& [red, green, blue, alpha] = m_channels;
    for (rgba_pixel& pixel : target)
    {
        std::array<std::uint32_t, (bytes + 3) / 4> words{};
        std::memcpy(words.data(), source, bytes);
        source += bytes;
        const auto byteOf = [&](const channel_reader& channel, unsigned otherwise) {
            return channel.bits == 0 ? otherwise : channelByte(channel, words[channel.word]);
        };
        const unsigned first = byteOf(red, 0);
        pixel = m_is_grey ? rgba(first, first, first, byteOf(alpha, 255))
                          : rgba(first, byteOf(green, 0), byteOf(blue, 0), byteOf(alpha, 255));
    }
}

void pixel_decoder::decode(const std::byte* source, std::span<rgba_pixel> target) const
{
    switch (m_layout.bytes)
    {
    case 1:
        return decodePixels<1>(source, target);
    case 2:
        return decodePixels<2>(source, target);
    case 3:
        return decodePixels<3>(source, target);
    case 4:
        return decodePixels<4>(source, target);
    case 8:
        return decodePixels<8>(source, target);
    case 12:
        return decodePixels<12>(source, target);
    default:
        return decodePixels<16>(source, target);
    }
}

} // namespace korvane
