// BC6H without a sign, in the modes with one subset: 16 indices of 4 bits along one line of colours.

#include "Korvane/textures/block_bits.h"
#include "Korvane/textures/block_encoder.h"

#include <algorithm>

namespace korvane
{

namespace
{

struct line_mode
{
    unsigned number;
    unsigned point_bits; // of an end point
    unsigned delta_bits; // of what is stored of the second one: the difference, or all of it
};

constexpr line_mode line_modes[] = {{0x0f, 16, 4}, {0x0b, 12, 8}, {0x07, 11, 9}, {0x03, 10, 10}}; // finest first
constexpr int highest_index = 15;

// A decoder makes codes of 16 bits of the end points, and halves of these by * 31 >> 6; one code lies in the middle of
// what becomes the same half.
constexpr float code_of_half = 64.0f / 31.0f;
constexpr float largest_code = 65535;

struct colour_line
{
    std::array<float, 3> ends[2]; // codes
    std::array<float, 16> places; // of the pixels, 0..1
};

using channel_points = std::array<int, 3>;

float sumOf(const std::array<float, 16>& values)
{
    std::array<float, 4> sums{}; // four at a time, in the same order on every machine
    for (std::size_t i = 0; i < 16; ++i)
        sums[i % 4] += values[i];
    return (sums[0] + sums[1]) + (sums[2] + sums[3]);
}

float product(const std::array<float, 16>& left, const std::array<float, 16>& right)
{
    std::array<float, 16> products;
    for (std::size_t i = 0; i < 16; ++i)
        products[i] = left[i] * right[i];
    return sumOf(products);
}

// Through the middle of the colours, along what the channel that changes most says of the others.
void fitLine(const light_block& pixels, colour_line& line)
{
    light_block from_middle;
    std::array<float, 3> middle, axis;
    for (std::size_t channel = 0; channel < 3; ++channel)
    {
        middle[channel] = sumOf(pixels[channel]) / 16;
        for (std::size_t i = 0; i < 16; ++i)
            from_middle[channel][i] = pixels[channel][i] - middle[channel];
        axis[channel] = product(from_middle[channel], from_middle[channel]);
    }
    const auto widest = static_cast<std::size_t>(std::max_element(axis.begin(), axis.end()) - axis.begin());
    const float spread = axis[widest];
    line.places.fill(0);
    if (!(spread > 0))
    {
        line.ends[0] = line.ends[1] = middle;
        return;
    }
    float length = 0;
    for (std::size_t channel = 0; channel < 3; ++channel)
    {
        axis[channel] = product(from_middle[channel], from_middle[widest]) / spread;
        length += axis[channel] * axis[channel];
    }
    for (std::size_t i = 0; i < 16; ++i)
        line.places[i] =
            (from_middle[0][i] * axis[0] + from_middle[1][i] * axis[1] + from_middle[2][i] * axis[2]) / length;
    float first = *std::min_element(line.places.begin(), line.places.end());
    float last = *std::max_element(line.places.begin(), line.places.end());
    if (line.places[0] - first > last - line.places[0]) // the first pixel's index has no highest bit
        std::swap(first, last);
    const float scale = 1 / (last - first);
    for (float& place : line.places)
        place = (place - first) * scale;
    for (std::size_t channel = 0; channel < 3; ++channel)
    {
        line.ends[0][channel] = middle[channel] + axis[channel] * first;
        line.ends[1][channel] = middle[channel] + axis[channel] * last;
    }
}

int pointOf(float code, unsigned bits)
{
    // Steps of 2^(16 - bits), each shown as its middle; with 16 bits as it is.
    const float shown = bits == 16 ? code + 0.5f : code;
    return static_cast<int>(std::clamp(shown, 0.0f, largest_code)) >> (16 - bits);
}

bool quantise(const colour_line& line, const line_mode& mode, channel_points& first, channel_points& delta)
{
    const int reach = 1 << (mode.delta_bits - 1);
    for (std::size_t channel = 0; channel < 3; ++channel)
    {
        first[channel] = pointOf(line.ends[0][channel], mode.point_bits);
        delta[channel] = pointOf(line.ends[1][channel], mode.point_bits);
        if (mode.delta_bits == mode.point_bits)
            continue;
        delta[channel] -= first[channel];
        if (delta[channel] < -reach || delta[channel] >= reach)
            return false;
    }
    return true;
}

void store(const line_mode& mode, const channel_points& first, const channel_points& delta,
           const std::array<float, 16>& places, std::byte* block)
{
    block_bit_writer out;
    out.put(mode.number, 5);
    for (const int point : first)
        out.put(static_cast<unsigned>(point) & 1023, 10);
    for (std::size_t channel = 0; channel < 3; ++channel)
    {
        out.put(static_cast<unsigned>(delta[channel]) & ((1u << mode.delta_bits) - 1), mode.delta_bits);
        for (unsigned bit = mode.point_bits; bit-- > 10;) // what ten bits do not hold, the highest first
            out.put(static_cast<unsigned>(first[channel]) >> bit & 1, 1);
    }
    for (std::size_t i = 0; i < 16; ++i)
    {
        const int index = static_cast<int>(places[i] * highest_index + 0.5f);
        out.put(static_cast<unsigned>(std::min(index, i == 0 ? 7 : highest_index)), i == 0 ? 3 : 4);
    }
    out.store(block);
}

} // namespace

void encodeBc6hUnsigned(const light_block& pixels, std::byte* block)
{
    light_block codes;
    for (std::size_t channel = 0; channel < 3; ++channel)
        for (std::size_t i = 0; i < 16; ++i)
        {
            const float half = pixels[channel][i];
            codes[channel][i] = (half > 0 ? half < largest_half ? half : largest_half : 0) * code_of_half + 1; // NaN: 0
        }
    colour_line line;
    fitLine(codes, line);
    channel_points first, delta;
    for (const line_mode& mode : line_modes)
        if (quantise(line, mode, first, delta))
            return store(mode, first, delta, line.places, block);
}

} // namespace korvane
