#include "tools/demo_data/block_encoder.h"

#include <array>
#include <cstring>
#include <utility>

namespace korvane::demo
{

namespace
{

using colour = std::array<double, 4>; // 0..255
using block = std::array<colour, 16>;

double squaredDistance(const colour& a, const colour& b, std::size_t channels)
{
    double sum = 0;
    for (std::size_t i = 0; i < channels; ++i)
        sum += (a[i] - b[i]) * (a[i] - b[i]);
    return sum;
}

struct colour_line
{
    colour first{}, second{};
};

// The ends of the block's colours along the direction in which they differ most.
colour_line principalLine(const block& pixels, std::size_t channels)
{
    colour mean{};
    for (const colour& pixel : pixels)
        for (std::size_t i = 0; i < channels; ++i)
            mean[i] += pixel[i] / 16;
    double covariance[4][4] = {};
    for (const colour& pixel : pixels)
        for (std::size_t i = 0; i < channels; ++i)
            for (std::size_t j = 0; j < channels; ++j)
                covariance[i][j] += (pixel[i] - mean[i]) * (pixel[j] - mean[j]);
    std::size_t widest = 0; // start from the row of the channel that varies most: never perpendicular to the answer
    for (std::size_t i = 1; i < channels; ++i)
        if (covariance[i][i] > covariance[widest][widest])
            widest = i;
    colour axis{};
    for (std::size_t i = 0; i < channels; ++i)
        axis[i] = covariance[widest][i];
    for (int step = 0; step < 6; ++step)
    {
        colour next{};
        double size = 0;
        for (std::size_t i = 0; i < channels; ++i)
        {
            for (std::size_t j = 0; j < channels; ++j)
                next[i] += covariance[i][j] * axis[j];
            size += next[i] * next[i];
        }
        if (size < 1e-9)
            return {mean, mean};
        const double scale = 1 / std::sqrt(size);
        for (std::size_t i = 0; i < channels; ++i)
            axis[i] = next[i] * scale;
    }
    double low = 0, high = 0;
    for (const colour& pixel : pixels)
    {
        double along = 0;
        for (std::size_t i = 0; i < channels; ++i)
            along += (pixel[i] - mean[i]) * axis[i];
        low = std::min(low, along);
        high = std::max(high, along);
    }
    colour_line line{mean, mean};
    for (std::size_t i = 0; i < channels; ++i)
    {
        line.first[i] = std::clamp(mean[i] + axis[i] * high, 0.0, 255.0);
        line.second[i] = std::clamp(mean[i] + axis[i] * low, 0.0, 255.0);
    }
    return line;
}

// The end points that fit best when pixel i is steps[i] of the way from first to second.
colour_line leastSquares(const block& pixels, const std::array<double, 16>& steps, const colour_line& otherwise,
                         std::size_t channels)
{
    double aa = 0, ab = 0, bb = 0;
    colour a{}, b{};
    for (std::size_t i = 0; i < 16; ++i)
    {
        const double s = 1 - steps[i], t = steps[i];
        aa += s * s;
        ab += s * t;
        bb += t * t;
        for (std::size_t c = 0; c < channels; ++c)
        {
            a[c] += s * pixels[i][c];
            b[c] += t * pixels[i][c];
        }
    }
    const double determinant = aa * bb - ab * ab;
    if (determinant < 1e-6)
        return otherwise;
    colour_line line = otherwise;
    for (std::size_t c = 0; c < channels; ++c)
    {
        line.first[c] = std::clamp((a[c] * bb - b[c] * ab) / determinant, 0.0, 255.0);
        line.second[c] = std::clamp((b[c] * aa - a[c] * ab) / determinant, 0.0, 255.0);
    }
    return line;
}

template <std::size_t count>
std::size_t nearest(const colour& pixel, const std::array<colour, count>& palette, std::size_t channels, double& error)
{
    std::size_t best = 0;
    double least = 1e30;
    for (std::size_t i = 0; i < count; ++i)
    {
        const double distance = squaredDistance(pixel, palette[i], channels);
        if (distance < least)
        {
            least = distance;
            best = i;
        }
    }
    error += least;
    return best;
}

class block_bits
{
public:
    void put(std::uint64_t value, int bits)
    {
        for (int i = 0; i < bits; ++i, ++m_position)
            m_bytes[m_position / 8] |= std::byte(((value >> i) & 1) << (m_position % 8));
    }
    void appendTo(std::vector<std::byte>& out, std::size_t size) const
    {
        out.insert(out.end(), m_bytes.begin(), m_bytes.begin() + static_cast<std::ptrdiff_t>(size));
    }

private:
    std::array<std::byte, 16> m_bytes{};
    std::size_t m_position = 0;
};

std::uint32_t to565(const colour& value)
{
    const auto scaled = [](double channel, int top) { return static_cast<std::uint32_t>(channel / 255 * top + 0.5); };
    return scaled(value[0], 31) << 11 | scaled(value[1], 63) << 5 | scaled(value[2], 31);
}

colour from565(std::uint32_t value)
{
    const std::uint32_t r = value >> 11, g = (value >> 5) & 63, b = value & 31;
    return {static_cast<double>(r << 3 | r >> 2), static_cast<double>(g << 2 | g >> 4),
            static_cast<double>(b << 3 | b >> 2), 255};
}

struct bc1_choice
{
    std::uint32_t first = 0, second = 0;
    std::array<std::size_t, 16> codes{}; // 0 first, 1 second, 2 and 3 between
    double error = 1e30;
};

bc1_choice tryBc1(const block& pixels, const colour_line& line)
{
    bc1_choice choice;
    choice.first = to565(line.first);
    choice.second = to565(line.second);
    if (choice.first < choice.second) // the larger one first: four colours, none transparent
        std::swap(choice.first, choice.second);
    std::array<colour, 4> palette{from565(choice.first), from565(choice.second), {}, {}};
    for (std::size_t i = 0; i < 3; ++i)
    {
        palette[2][i] = (2 * palette[0][i] + palette[1][i]) / 3;
        palette[3][i] = (palette[0][i] + 2 * palette[1][i]) / 3;
    }
    if (choice.first == choice.second)
        palette[1] = palette[2] = palette[3] = palette[0]; // then code 3 would be black
    choice.error = 0;
    for (std::size_t i = 0; i < 16; ++i)
        choice.codes[i] = nearest(pixels[i], palette, 3, choice.error);
    return choice;
}

void encodeBc1(const block& pixels, std::vector<std::byte>& out)
{
    constexpr double way[] = {0, 1, 1.0 / 3, 2.0 / 3};
    bc1_choice best = tryBc1(pixels, principalLine(pixels, 3));
    for (int round = 0; round < 3; ++round)
    {
        std::array<double, 16> steps{};
        for (std::size_t i = 0; i < 16; ++i)
            steps[i] = way[best.codes[i]];
        const bc1_choice next =
            tryBc1(pixels, leastSquares(pixels, steps, {from565(best.first), from565(best.second)}, 3));
        if (next.error >= best.error)
            break;
        best = next;
    }
    block_bits bits;
    bits.put(best.first, 16);
    bits.put(best.second, 16);
    for (const std::size_t code : best.codes)
        bits.put(code, 2);
    bits.appendTo(out, 8);
}

// One channel between its extremes, six steps between.
void encodeChannel(const block& pixels, std::size_t channel, std::vector<std::byte>& out)
{
    double low = 255, high = 0;
    for (const colour& pixel : pixels)
    {
        low = std::min(low, pixel[channel]);
        high = std::max(high, pixel[channel]);
    }
    block_bits bits;
    bits.put(static_cast<std::uint64_t>(high), 8);
    bits.put(static_cast<std::uint64_t>(low), 8);
    for (const colour& pixel : pixels)
    {
        // Codes: 0 high, 1 low, 2..7 from high to low; equal ends leave code 0.
        const int step = high > low ? static_cast<int>((high - pixel[channel]) / (high - low) * 7 + 0.5) : 0;
        bits.put(static_cast<std::uint64_t>(step == 0 ? 0 : step == 7 ? 1 : step + 1), 3);
    }
    bits.appendTo(out, 8);
}

constexpr int bc7_weights[] = {0, 4, 9, 13, 17, 21, 26, 30, 34, 38, 43, 47, 51, 55, 60, 64};

struct bc7_choice
{
    std::array<int, 4> ends[2] = {}; // 7 bits a channel
    int low_bits[2] = {};            // the eighth, shared by an end's channels
    std::array<std::size_t, 16> codes{};
    double error = 1e30;
};

bc7_choice tryBc7(const block& pixels, const colour_line& line)
{
    bc7_choice choice;
    const colour* const wanted[] = {&line.first, &line.second};
    for (std::size_t end = 0; end < 2; ++end)
    {
        double least = 1e30;
        for (int low_bit = 0; low_bit < 2; ++low_bit)
        {
            std::array<int, 4> values{};
            double error = 0;
            for (std::size_t c = 0; c < 4; ++c)
            {
                values[c] = std::clamp(static_cast<int>(((*wanted[end])[c] - low_bit) / 2 + 0.5), 0, 127);
                const double off = values[c] * 2 + low_bit - (*wanted[end])[c];
                error += off * off;
            }
            if (error < least)
            {
                least = error;
                choice.ends[end] = values;
                choice.low_bits[end] = low_bit;
            }
        }
    }
    std::array<colour, 16> palette{};
    for (std::size_t i = 0; i < 16; ++i)
        for (std::size_t c = 0; c < 4; ++c)
        {
            const int a = choice.ends[0][c] * 2 + choice.low_bits[0], b = choice.ends[1][c] * 2 + choice.low_bits[1];
            palette[i][c] = (a * (64 - bc7_weights[i]) + b * bc7_weights[i] + 32) >> 6;
        }
    choice.error = 0;
    for (std::size_t i = 0; i < 16; ++i)
        choice.codes[i] = nearest(pixels[i], palette, 4, choice.error);
    return choice;
}

void encodeBc7(const block& pixels, std::vector<std::byte>& out)
{
    const colour_line line = principalLine(pixels, 4);
    bc7_choice best = tryBc7(pixels, line);
    std::array<double, 16> steps{};
    for (std::size_t i = 0; i < 16; ++i)
        steps[i] = bc7_weights[best.codes[i]] / 64.0;
    const bc7_choice refined = tryBc7(pixels, leastSquares(pixels, steps, line, 4));
    if (refined.error < best.error)
        best = refined;
    if (best.codes[0] >= 8) // the first code is stored without its highest bit
    {
        std::swap(best.ends[0], best.ends[1]);
        std::swap(best.low_bits[0], best.low_bits[1]);
        for (std::size_t& code : best.codes)
            code = 15 - code;
    }
    block_bits bits;
    bits.put(0x40, 7); // mode 6
    for (std::size_t c = 0; c < 4; ++c)
        for (const auto& end : best.ends)
            bits.put(static_cast<std::uint64_t>(end[c]), 7);
    for (const int low_bit : best.low_bits)
        bits.put(static_cast<std::uint64_t>(low_bit), 1);
    for (std::size_t i = 0; i < 16; ++i)
        bits.put(best.codes[i], i == 0 ? 3 : 4);
    bits.appendTo(out, 16);
}

block blockAt(const image& source, std::size_t left, std::size_t top)
{
    block pixels{};
    for (std::size_t i = 0; i < 16; ++i)
    {
        const std::uint8_t* pixel =
            source.at(std::min(left + i % 4, source.width - 1), std::min(top + i / 4, source.height - 1));
        for (std::size_t c = 0; c < 4; ++c)
            pixels[i][c] = pixel[c];
    }
    return pixels;
}

} // namespace

std::vector<std::byte> encodeBlocks(const image& source, block_format format)
{
    std::vector<std::byte> out;
    out.reserve((source.width + 3) / 4 * ((source.height + 3) / 4) * 16);
    for (std::size_t y = 0; y < source.height; y += 4)
        for (std::size_t x = 0; x < source.width; x += 4)
        {
            const block pixels = blockAt(source, x, y);
            switch (format)
            {
            case block_format::bc3:
                encodeChannel(pixels, 3, out);
                [[fallthrough]];
            case block_format::bc1:
                encodeBc1(pixels, out);
                break;
            case block_format::bc5:
                encodeChannel(pixels, 0, out);
                encodeChannel(pixels, 1, out);
                break;
            case block_format::bc7:
                encodeBc7(pixels, out);
                break;
            }
        }
    return out;
}

} // namespace korvane::demo
