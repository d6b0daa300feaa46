#include "Korvane/textures/pixel_decoder.h"

#include "EASY_GUI/services/byte_reader.h"
#include "Korvane/models/half_float.h"
#include "Korvane/textures/channel_bytes.h"

#include <algorithm>
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

// The mantissa has no hidden bit; 15 is the exponent's bias.
float sharedOf(std::uint32_t mantissa, std::uint32_t exponent)
{
    return std::ldexp(static_cast<float>(mantissa), static_cast<int>(exponent) - 24);
}

// Brightness and differences as televisions have them (BT.601), to bytes of colours.
rgba_pixel colourOfVideo(int brightness, int to_blue, int to_red)
{
    const int light = 298 * (brightness - 16) + 128;
    const auto byteOf = [](int value) { return static_cast<unsigned>(std::clamp(value >> 8, 0, 255)); };
    return rgba(byteOf(light + 409 * (to_red - 128)), byteOf(light - 100 * (to_blue - 128) - 208 * (to_red - 128)),
                byteOf(light + 516 * (to_blue - 128)), 255);
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
    case dds_number::shared_exponent:
        return byteOfLight(sharedOf(value & channel.mask, value >> mantissa_bits));
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

std::array<float, 4> pixel_decoder::lightOf(const std::byte* source) const
{
    std::array<std::uint32_t, 4> words{};
    std::memcpy(words.data(), source, m_layout.bytes);
    std::array<float, 4> light{0, 0, 0, 1};
    for (std::size_t i = 0; i < light.size(); ++i)
        if (const channel_reader& channel = m_channels[i]; channel.bits > 0)
        {
            const std::uint32_t value = words[channel.word] >> channel.shift & channel.mask;
            light[i] = m_layout.number == dds_number::floating
                           ? floatOf(value, channel.bits)
                           : sharedOf(value, words[channel.word] >> (32 - exponent_bits));
        }
    return light;
}

void pixel_decoder::decodePairs(const std::byte* source, std::span<rgba_pixel> target) const
{
    for (std::size_t x = 0; x < target.size(); ++x)
    {
        const auto byteAt = [&](std::size_t channel) {
            return std::to_integer<unsigned>(source[x / 2 * 4 + m_layout.channels[channel].first_bit / 8]);
        };
        const unsigned first = byteAt(0), own = byteAt(x % 2 == 0 ? 1 : 3), second = byteAt(2);
        target[x] = m_layout.number == dds_number::pair_of_colours
                        ? rgba(first, own, second, 255)
                        : colourOfVideo(static_cast<int>(own), static_cast<int>(first), static_cast<int>(second));
    }
}

void pixel_decoder::decode(const std::byte* source, std::span<rgba_pixel> target) const
{
    if (isPaired(m_layout))
        return decodePairs(source, target);
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
