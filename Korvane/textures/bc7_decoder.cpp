#include "Korvane/textures/block_decoder.h"

#include "Korvane/textures/bc7_modes.h"
#include "Korvane/textures/block_bits.h"

#include <bit>
#include <utility>

namespace korvane
{

namespace
{

// Red, green, blue, alpha in 16 bits each: all four are interpolated at once.
using wide_pixel = std::uint64_t;
constexpr wide_pixel every_byte = 0x00ff00ff00ff00ff;
constexpr wide_pixel alpha_of_wide = wide_pixel{0xffff} << 48;

wide_pixel between(wide_pixel first, wide_pixel second, unsigned weight)
{
    constexpr wide_pixel halves = 0x0020002000200020;
    return (first * (64 - weight) + second * weight + halves) >> 6 & every_byte;
}

rgba_pixel packed(wide_pixel wide)
{
    const std::uint64_t pairs = (wide | wide >> 8) & 0x0000ffff0000ffff;
    return static_cast<rgba_pixel>(pairs | pairs >> 16);
}

template <unsigned number>
std::array<wide_pixel, 2 * bc7_modes[number].subsets> takeEndPoints(block_bits& in)
{
    constexpr bc7_mode mode = bc7_modes[number];
    constexpr unsigned count = 2 * mode.subsets;
    constexpr unsigned low_bits = mode.own_low_bits + mode.shared_low_bits;
    std::array<std::array<unsigned, 4>, count> channels;
    for (std::size_t channel = 0; channel < 3; ++channel)
        for (auto& point : channels)
            point[channel] = static_cast<unsigned>(in.take(mode.colour_bits));
    for (auto& point : channels)
        point[3] = static_cast<unsigned>(in.take(mode.alpha_bits));
    unsigned lowest = 0;
    std::array<wide_pixel, count> points{};
    for (std::size_t i = 0; i < count; ++i)
    {
        if (mode.own_low_bits > 0 || (mode.shared_low_bits > 0 && i % 2 == 0))
            lowest = static_cast<unsigned>(in.take(1));
        for (std::size_t channel = 0; channel < 4; ++channel)
        {
            const unsigned bits = channel < 3 ? mode.colour_bits : mode.alpha_bits;
            const unsigned value =
                bits == 0 ? 255 : to8Bits(channels[i][channel] << low_bits | lowest, bits + low_bits);
            points[i] |= wide_pixel{value} << (channel * 16);
        }
    }
    return points;
}

// Alpha changes places with the channel of that number, 1 for red; 0: with none.
rgba_pixel rotated(rgba_pixel pixel, unsigned rotation)
{
    if (rotation == 0)
        return pixel;
    const unsigned shift = (rotation - 1) * 8;
    const rgba_pixel difference = (pixel >> 24 ^ pixel >> shift) & 0xff;
    return pixel ^ (difference << 24 | difference << shift);
}

// Modes 4 and 5: colours and alpha have indices of their own.
template <unsigned number>
void decodeSeparateAlpha(block_bits& in, block_pixels& pixels)
{
    constexpr bc7_mode mode = bc7_modes[number];
    constexpr std::array<unsigned, 1> anchor = {0};
    const auto rotation = static_cast<unsigned>(in.take(mode.rotation_bits));
    const bool is_swapped = in.take(mode.selection_bits) != 0;
    const auto points = takeEndPoints<number>(in);
    std::uint64_t colours = in.takeIndices(mode.index_bits, anchor);
    std::uint64_t alphas = in.takeIndices(mode.second_index_bits, anchor);
    unsigned colour_bits = mode.index_bits, alpha_bits = mode.second_index_bits;
    if (is_swapped)
    {
        std::swap(colours, alphas);
        std::swap(colour_bits, alpha_bits);
    }
    for (rgba_pixel& pixel : pixels)
    {
        const auto weightOf = [](std::uint64_t& indices, unsigned bits) {
            const unsigned weight = block_weights[bits][indices & ((1u << bits) - 1)];
            indices >>= bits;
            return weight;
        };
        const wide_pixel colour = between(points[0], points[1], weightOf(colours, colour_bits));
        const wide_pixel alpha = between(points[0], points[1], weightOf(alphas, alpha_bits));
        pixel = rotated(packed((colour & ~alpha_of_wide) | (alpha & alpha_of_wide)), rotation);
    }
}

template <unsigned number>
void decodeMode(block_bits& in, block_pixels& pixels)
{
    constexpr bc7_mode mode = bc7_modes[number];
    if constexpr (mode.second_index_bits > 0)
        return decodeSeparateAlpha<number>(in, pixels);
    else
    {
        const auto partition = static_cast<std::size_t>(in.take(mode.partition_bits));
        const auto points = takeEndPoints<number>(in);
        std::uint32_t subsets = 0;
        std::uint64_t indices;
        if constexpr (mode.subsets == 1)
            indices = in.takeIndices<1>(mode.index_bits, {0});
        else if constexpr (mode.subsets == 2)
        {
            subsets = two_subsets[partition];
            indices = in.takeIndices<2>(mode.index_bits, {0, anchors_of_two[partition]});
        }
        else
        {
            subsets = three_subsets[partition];
            unsigned second = second_anchors_of_three[partition], third = third_anchors_of_three[partition];
            if (third < second)
                std::swap(second, third);
            indices = in.takeIndices<3>(mode.index_bits, {0, second, third});
        }
        for (rgba_pixel& pixel : pixels)
        {
            const std::size_t first = 2 * (subsets & 3);
            pixel = packed(between(points[first], points[first + 1],
                                   block_weights[mode.index_bits][indices & ((1u << mode.index_bits) - 1)]));
            subsets >>= 2;
            indices >>= mode.index_bits;
        }
    }
}

} // namespace

void decodeBc7(const std::byte* block, block_pixels& pixels)
{
    const auto number = static_cast<unsigned>(std::countr_zero(std::to_integer<std::uint8_t>(*block)));
    block_bits in(block);
    static_cast<void>(in.take(number + 1));
    switch (number)
    {
    case 0:
        return decodeMode<0>(in, pixels);
    case 1:
        return decodeMode<1>(in, pixels);
    case 2:
        return decodeMode<2>(in, pixels);
    case 3:
        return decodeMode<3>(in, pixels);
    case 4:
        return decodeMode<4>(in, pixels);
    case 5:
        return decodeMode<5>(in, pixels);
    case 6:
        return decodeMode<6>(in, pixels);
    case 7:
        return decodeMode<7>(in, pixels);
    default:
        return pixels.fill(0); // reserved: transparent black
    }
}

} // namespace korvane
