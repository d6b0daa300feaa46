#include "Korvane/textures/block_decoder.h"

#include "Korvane/textures/block_bits.h"

#include <stdexcept>
#include <string_view>

namespace korvane
{

namespace
{

// A run of bits of a block: they become the bits from first_bit on of one channel of one end point.
struct bit_run
{
    std::uint8_t channel; // end point x 3 + channel
    std::uint8_t first_bit;
    std::uint8_t count;
};

struct bc6h_layout
{
    std::array<bit_run, 32> runs{};
    std::size_t run_count = 0;
};

struct bc6h_mode
{
    unsigned number;                      // the block's first 2 or 5 bits
    unsigned point_bits;                  // of the first end point
    std::array<unsigned, 3> delta_bits;   // of the others, by channel
    bool has_two_subsets, has_difference; // difference: the others are relative to the first one
    bc6h_layout layout;
};

// "gy4 rw0-9 rw15-10": the channel (r, g, b), the end point (w, x, y, z), and its bits in the order of the block.
constexpr bc6h_layout layoutOf(std::string_view text)
{
    bc6h_layout layout;
    const auto number = [&text] {
        unsigned value = 0;
        while (!text.empty() && text.front() >= '0' && text.front() <= '9')
        {
            value = value * 10 + static_cast<unsigned>(text.front() - '0');
            text.remove_prefix(1);
        }
        return value;
    };
    while (!text.empty())
    {
        const std::size_t channel = std::string_view("rgb").find(text[0]),
                          point = std::string_view("wxyz").find(text[1]);
        if (channel > 2 || point > 3)
            throw std::logic_error("no channel"); // while compiling
        text.remove_prefix(2);
        const unsigned from = number();
        unsigned to = from;
        if (text.starts_with('-'))
        {
            text.remove_prefix(1);
            to = number();
        }
        if (text.starts_with(' '))
            text.remove_prefix(1);
        const auto index = static_cast<std::uint8_t>(point * 3 + channel);
        if (to >= from)
            layout.runs[layout.run_count++] = {index, static_cast<std::uint8_t>(from),
                                               static_cast<std::uint8_t>(to - from + 1)};
        else
            for (unsigned bit = from + 1; bit-- > to;)
                layout.runs[layout.run_count++] = {index, static_cast<std::uint8_t>(bit), 1};
    }
    return layout;
}

constexpr bc6h_mode bc6h_modes[] = {
    {0x00,
     10,
     {5, 5, 5},
     true,
     true,
     layoutOf("gy4 by4 bz4 rw0-9 gw0-9 bw0-9 rx0-4 gz4 gy0-3 gx0-4 bz0 gz0-3 bx0-4 bz1 by0-3 ry0-4 bz2 rz0-4 bz3")},
    {0x01,
     7,
     {6, 6, 6},
     true,
     true,
     layoutOf("gy5 gz4 gz5 rw0-6 bz0 bz1 by4 gw0-6 by5 bz2 gy4 bw0-6 bz3 bz5 bz4 rx0-5 gy0-3 gx0-5 gz0-3 bx0-5 by0-3 "
              "ry0-5 rz0-5")},
    {0x02,
     11,
     {5, 4, 4},
     true,
     true,
     layoutOf("rw0-9 gw0-9 bw0-9 rx0-4 rw10 gy0-3 gx0-3 gw10 bz0 gz0-3 bx0-3 bw10 bz1 by0-3 ry0-4 bz2 rz0-4 bz3")},
    {0x06,
     11,
     {4, 5, 4},
     true,
     true,
     layoutOf("rw0-9 gw0-9 bw0-9 rx0-3 rw10 gz4 gy0-3 gx0-4 gw10 gz0-3 bx0-3 bw10 bz1 by0-3 ry0-3 bz0 bz2 rz0-3 gy4 "
              "bz3")},
    {0x0a,
     11,
     {4, 4, 5},
     true,
     true,
     layoutOf("rw0-9 gw0-9 bw0-9 rx0-3 rw10 by4 gy0-3 gx0-3 gw10 bz0 gz0-3 bx0-4 bw10 by0-3 ry0-3 bz1 bz2 rz0-3 bz4 "
              "bz3")},
    {0x0e,
     9,
     {5, 5, 5},
     true,
     true,
     layoutOf("rw0-8 by4 gw0-8 gy4 bw0-8 bz4 rx0-4 gz4 gy0-3 gx0-4 bz0 gz0-3 bx0-4 bz1 by0-3 ry0-4 bz2 rz0-4 bz3")},
    {0x12,
     8,
     {6, 5, 5},
     true,
     true,
     layoutOf("rw0-7 gz4 by4 gw0-7 bz2 gy4 bw0-7 bz3 bz4 rx0-5 gy0-3 gx0-4 bz0 gz0-3 bx0-4 bz1 by0-3 ry0-5 rz0-5")},
    {0x16,
     8,
     {5, 6, 5},
     true,
     true,
     layoutOf("rw0-7 bz0 by4 gw0-7 gy5 gy4 bw0-7 gz5 bz4 rx0-4 gz4 gy0-3 gx0-5 gz0-3 bx0-4 bz1 by0-3 ry0-4 bz2 rz0-4 "
              "bz3")},
    {0x1a,
     8,
     {5, 5, 6},
     true,
     true,
     layoutOf("rw0-7 bz1 by4 gw0-7 by5 gy4 bw0-7 bz5 bz4 rx0-4 gz4 gy0-3 gx0-4 bz0 gz0-3 bx0-5 by0-3 ry0-4 bz2 rz0-4 "
              "bz3")},
    {0x1e,
     6,
     {6, 6, 6},
     true,
     false,
     layoutOf("rw0-5 gz4 bz0 bz1 by4 gw0-5 gy5 by5 bz2 gy4 bw0-5 gz5 bz3 bz5 bz4 rx0-5 gy0-3 gx0-5 gz0-3 bx0-5 by0-3 "
              "ry0-5 rz0-5")},
    {0x03, 10, {10, 10, 10}, false, false, layoutOf("rw0-9 gw0-9 bw0-9 rx0-9 gx0-9 bx0-9")},
    {0x07, 11, {9, 9, 9}, false, true, layoutOf("rw0-9 gw0-9 bw0-9 rx0-8 rw10 gx0-8 gw10 bx0-8 bw10")},
    {0x0b, 12, {8, 8, 8}, false, true, layoutOf("rw0-9 gw0-9 bw0-9 rx0-7 rw11-10 gx0-7 gw11-10 bx0-7 bw11-10")},
    {0x0f, 16, {4, 4, 4}, false, true, layoutOf("rw0-9 gw0-9 bw0-9 rx0-3 rw15-10 gx0-3 gw15-10 bx0-3 bw15-10")},
};

const bc6h_mode* modeOf(unsigned first_bits)
{
    for (const bc6h_mode& mode : bc6h_modes)
        if (mode.number == first_bits)
            return &mode;
    return nullptr; // reserved
}

using end_points = std::array<int, 12>; // end point x 3 + channel

constexpr int signExtended(int value, unsigned bits)
{
    const int sign = 1 << (bits - 1);
    return ((value & ((sign << 1) - 1)) ^ sign) - sign;
}

// To the whole range of 16 bits, 17 with the sign.
int unquantised(int value, unsigned bits, bool is_signed)
{
    if (!is_signed)
    {
        if (bits >= 15 || value == 0)
            return value;
        return value == (1 << bits) - 1 ? 0xffff : ((value << 16) + 0x8000) >> bits;
    }
    const int size = value < 0 ? -value : value;
    if (bits >= 16 || size == 0)
        return value;
    const int whole = size >= (1 << (bits - 1)) - 1 ? 0x7fff : ((size << 15) + 0x4000) >> (bits - 1);
    return value < 0 ? -whole : whole;
}

std::uint16_t halfOf(int value, bool is_signed)
{
    if (!is_signed)
        return static_cast<std::uint16_t>(value * 31 >> 6);
    return static_cast<std::uint16_t>(value < 0 ? 0x8000 | (-value * 31 >> 5) : value * 31 >> 5);
}

end_points takeEndPoints(block_bits& in, const bc6h_mode& mode, bool is_signed)
{
    end_points points{};
    for (std::size_t i = 0; i < mode.layout.run_count; ++i)
    {
        const bit_run& run = mode.layout.runs[i];
        points[run.channel] |= static_cast<int>(in.take(run.count)) << run.first_bit;
    }
    const std::size_t count = mode.has_two_subsets ? 12 : 6;
    for (std::size_t i = 0; i < count; ++i)
    {
        if (i < 3)
        {
            points[i] = is_signed ? signExtended(points[i], mode.point_bits) : points[i];
            continue;
        }
        const unsigned bits = mode.delta_bits[i % 3];
        if (mode.has_difference)
            points[i] = (points[i % 3] + signExtended(points[i], bits)) & ((1 << mode.point_bits) - 1);
        if (is_signed)
            points[i] = signExtended(points[i], mode.point_bits);
    }
    for (std::size_t i = 0; i < count; ++i)
        points[i] = unquantised(points[i], mode.point_bits, is_signed);
    return points;
}

} // namespace

void decodeBc6hHalves(const std::byte* block, bool is_signed, block_halves& pixels)
{
    block_bits in(block);
    auto first_bits = static_cast<unsigned>(in.take(2));
    if (first_bits > 1)
        first_bits |= static_cast<unsigned>(in.take(3)) << 2;
    const bc6h_mode* const mode = modeOf(first_bits);
    if (!mode)
        return pixels.fill({}); // black
    const end_points points = takeEndPoints(in, *mode, is_signed);
    const std::size_t partition = mode->has_two_subsets ? static_cast<std::size_t>(in.take(5)) : 0;
    std::uint32_t subsets = mode->has_two_subsets ? two_subsets[partition] : 0;
    const unsigned index_bits = mode->has_two_subsets ? 3 : 4;
    std::uint64_t indices =
        mode->has_two_subsets ? in.takeIndices<2>(3, {0, anchors_of_two[partition]}) : in.takeIndices<1>(4, {0});
    for (auto& pixel : pixels)
    {
        const std::size_t first = 6 * (subsets & 3);
        const int weight = block_weights[index_bits][indices & ((1u << index_bits) - 1)];
        for (std::size_t channel = 0; channel < 3; ++channel)
            pixel[channel] = halfOf(
                (points[first + channel] * (64 - weight) + points[first + 3 + channel] * weight + 32) >> 6, is_signed);
        subsets >>= 2;
        indices >>= index_bits;
    }
}

} // namespace korvane
