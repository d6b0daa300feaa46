#pragma once

// Puts the pixels of a BC7 subset on a line between two end points: its principal axis, rounded to the mode's bits, and
// moved to where the least squares want it. One thread each.

#include "Korvane/textures/bc7_modes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <tuple>
#include <utility>

namespace korvane
{

using pixel_lanes = std::array<float, 16>; // a value for each pixel

// The loops over all sixteen become four operations of four; sums are made by halves for that reason.
inline float sumOf(pixel_lanes values)
{
    for (std::size_t half = 8; half > 0; half /= 2)
        for (std::size_t i = 0; i < half; ++i)
            values[i] += values[i + half];
    return values[0];
}

// The least and the largest.
inline std::pair<float, float> extremesOf(const pixel_lanes& values)
{
    pixel_lanes low = values, high = values;
    for (std::size_t half = 8; half > 0; half /= 2)
        for (std::size_t i = 0; i < half; ++i)
        {
            low[i] = low[i + half] < low[i] ? low[i + half] : low[i];
            high[i] = high[i + half] > high[i] ? high[i + half] : high[i];
        }
    return {low[0], high[0]};
}

struct subset_pixels
{
    std::array<pixel_lanes, 4>
        channels;        // red, green, blue, alpha, 0 to 255; in the first places, the rest repeats the first
    pixel_lanes weights; // 1 for those that count, 0 for the rest
    float count;
};

using colour_point = std::array<float, 4>;

struct rounded_line
{
    std::array<std::array<unsigned, 4>, 2> stored{}; // the bits of each channel, without the lowest one
    std::array<unsigned, 2> lowest{};                // where the mode has such bits
    std::array<colour_point, 2> ends{};              // what a decoder makes of them
};

struct fitted_line
{
    rounded_line line;
    std::array<std::uint8_t, 16> indices{};
    float error = std::numeric_limits<float>::max();
};

inline float weightStep(unsigned index_bits)
{
    return 64.0f / static_cast<float>((1u << index_bits) - 1);
}

// Channels first to first + count - 1 take part.
template <unsigned first, unsigned count>
class line_fitter
{
public:
    line_fitter(const subset_pixels& pixels, unsigned index_bits, unsigned colour_bits, unsigned alpha_bits,
                bool has_own_low_bits, bool has_shared_low_bit, bool is_opaque)
        : m_pixels(pixels)
        , m_index_bits(index_bits)
        , m_bits{colour_bits, colour_bits, colour_bits, alpha_bits}
        , m_has_own(has_own_low_bits)
        , m_has_shared(has_shared_low_bit)
        , m_is_opaque(is_opaque)
    {
    }

    // A line that is far from leaving an error below the bound is not improved.
    fitted_line fit(int rounds, float bound)
    {
        colour_point from{}, to{};
        principalLine(from, to);
        fitted_line best = tried(from, to);
        for (int round = 0;
             round < rounds && best.error > 0 && best.error < bound * 1.6f && leastSquares(best, from, to); ++round)
        {
            const fitted_line next = tried(from, to);
            if (next.error >= best.error)
                break;
            best = next;
        }
        return best;
    }

private:
    void principalLine(colour_point& from, colour_point& to) const;
    bool leastSquares(const fitted_line& fitted, colour_point& from, colour_point& to) const;
    fitted_line tried(const colour_point& from, const colour_point& to) const;
    void measure(fitted_line& fitted) const;
    rounded_line rounded(const colour_point& from, const colour_point& to) const;
    float roundEnd(const colour_point& wanted, unsigned lowest, std::array<unsigned, 4>& stored,
                   colour_point& end) const;

    static constexpr unsigned last = first + count;

    const subset_pixels& m_pixels;
    unsigned m_index_bits;
    std::array<unsigned, 4> m_bits; // of each channel, without the lowest one
    bool m_has_own, m_has_shared;
    bool m_is_opaque; // alpha is to stay 255
};

template <unsigned first, unsigned count>
void line_fitter<first, count>::principalLine(colour_point& from, colour_point& to) const
{
    if constexpr (count == 1)
    {
        std::tie(from[first], to[first]) = extremesOf(m_pixels.channels[first]);
        return;
    }
    colour_point mean{};
    std::array<pixel_lanes, 4> off;
    for (unsigned c = first; c < last; ++c)
    {
        pixel_lanes weighted;
        for (std::size_t i = 0; i < 16; ++i)
            weighted[i] = m_pixels.channels[c][i] * m_pixels.weights[i];
        mean[c] = sumOf(weighted) / m_pixels.count;
        for (std::size_t i = 0; i < 16; ++i)
            off[c][i] = m_pixels.channels[c][i] - mean[c]; // what does not count repeats the first: no new extreme
    }
    float covariance[4][4] = {};
    unsigned widest = first;
    for (unsigned a = first; a < last; ++a)
    {
        for (unsigned b = first; b <= a; ++b)
        {
            pixel_lanes products;
            for (std::size_t i = 0; i < 16; ++i)
                products[i] = off[a][i] * off[b][i] * m_pixels.weights[i];
            covariance[a][b] = covariance[b][a] = sumOf(products);
        }
        if (covariance[a][a] > covariance[widest][widest])
            widest = a;
    }
    colour_point axis{};
    for (unsigned c = first; c < last; ++c)
        axis[c] = covariance[widest][c];
    for (int step = 0; step < 4; ++step)
    {
        colour_point next{};
        float length = 0;
        for (unsigned a = first; a < last; ++a)
        {
            for (unsigned b = first; b < last; ++b)
                next[a] += covariance[a][b] * axis[b];
            length += next[a] * next[a];
        }
        if (length < 1e-12f)
        {
            from = to = mean;
            return;
        }
        const float scale = 1 / std::sqrt(length);
        for (unsigned c = first; c < last; ++c)
            axis[c] = next[c] * scale;
    }
    pixel_lanes along{};
    for (unsigned c = first; c < last; ++c)
        for (std::size_t i = 0; i < 16; ++i)
            along[i] += off[c][i] * axis[c];
    const auto [low, high] = extremesOf(along);
    for (unsigned c = first; c < last; ++c)
    {
        from[c] = std::clamp(mean[c] + axis[c] * low, 0.0f, 255.0f);
        to[c] = std::clamp(mean[c] + axis[c] * high, 0.0f, 255.0f);
    }
}

// The end points that suit the indices best; false where these say nothing about them.
template <unsigned first, unsigned count>
bool line_fitter<first, count>::leastSquares(const fitted_line& fitted, colour_point& from, colour_point& to) const
{
    const float step = weightStep(m_index_bits) / 64;
    pixel_lanes a, b, aa, ab, bb;
    for (std::size_t i = 0; i < 16; ++i)
    {
        b[i] = static_cast<float>(static_cast<int>(fitted.indices[i])) * step;
        a[i] = 1 - b[i];
        aa[i] = a[i] * a[i] * m_pixels.weights[i];
        ab[i] = a[i] * b[i] * m_pixels.weights[i];
        bb[i] = b[i] * b[i] * m_pixels.weights[i];
        a[i] *= m_pixels.weights[i];
        b[i] *= m_pixels.weights[i];
    }
    const float saa = sumOf(aa), sab = sumOf(ab), sbb = sumOf(bb), determinant = saa * sbb - sab * sab;
    if (determinant < 1e-3f)
        return false;
    for (unsigned c = first; c < last; ++c)
    {
        pixel_lanes av, bv;
        for (std::size_t i = 0; i < 16; ++i)
        {
            av[i] = a[i] * m_pixels.channels[c][i];
            bv[i] = b[i] * m_pixels.channels[c][i];
        }
        const float sav = sumOf(av), sbv = sumOf(bv);
        from[c] = std::clamp((sav * sbb - sbv * sab) / determinant, 0.0f, 255.0f);
        to[c] = std::clamp((sbv * saa - sav * sab) / determinant, 0.0f, 255.0f);
    }
    return true;
}

// The squared distance to what was wanted.
template <unsigned first, unsigned count>
float line_fitter<first, count>::roundEnd(const colour_point& wanted, unsigned lowest, std::array<unsigned, 4>& stored,
                                          colour_point& end) const
{
    float off = 0;
    const unsigned low_bits = m_has_own || m_has_shared ? 1 : 0;
    for (unsigned c = first; c < last; ++c)
    {
        const unsigned bits = m_bits[c] + low_bits;
        const float scaled = wanted[c] * static_cast<float>((1 << bits) - 1) * (1 / 255.0f);
        const float steps =
            low_bits == 0 ? scaled : std::max((scaled - static_cast<float>(static_cast<int>(lowest))) * 0.5f, 0.0f);
        stored[c] = static_cast<unsigned>(std::min(static_cast<int>(steps + 0.5f), (1 << m_bits[c]) - 1));
        end[c] = static_cast<float>(static_cast<int>(to8Bits(stored[c] << low_bits | lowest, bits)));
        off += (end[c] - wanted[c]) * (end[c] - wanted[c]);
    }
    return off;
}

template <unsigned first, unsigned count>
rounded_line line_fitter<first, count>::rounded(const colour_point& from, const colour_point& to) const
{
    rounded_line best;
    if (!m_has_own && !m_has_shared)
    {
        roundEnd(from, 0, best.stored[0], best.ends[0]);
        roundEnd(to, 0, best.stored[1], best.ends[1]);
        return best;
    }
    float errors[2][2];
    rounded_line lines[2];
    for (unsigned lowest = 0; lowest < 2; ++lowest)
    {
        errors[0][lowest] = roundEnd(from, lowest, lines[lowest].stored[0], lines[lowest].ends[0]);
        errors[1][lowest] = roundEnd(to, lowest, lines[lowest].stored[1], lines[lowest].ends[1]);
    }
    for (std::size_t end = 0; end < 2; ++end)
    {
        const bool is_one =
            m_has_shared ? errors[0][1] + errors[1][1] < errors[0][0] + errors[1][0] : errors[end][1] < errors[end][0];
        const unsigned lowest = is_one || (m_is_opaque && last == 4) ? 1 : 0;
        best.stored[end] = lines[lowest].stored[end];
        best.ends[end] = lines[lowest].ends[end];
        best.lowest[end] = lowest;
    }
    return best;
}

// Indices and error of a rounded line, exactly as a decoder computes them.
template <unsigned first, unsigned count>
void line_fitter<first, count>::measure(fitted_line& fitted) const
{
    const colour_point& from = fitted.line.ends[0];
    const colour_point& to = fitted.line.ends[1];
    colour_point direction{};
    float length = 0;
    for (unsigned c = first; c < last; ++c)
    {
        direction[c] = to[c] - from[c];
        length += direction[c] * direction[c];
    }
    const auto top = static_cast<float>((1 << m_index_bits) - 1);
    const float scale = length > 0 ? top / length : 0;
    pixel_lanes along{}, error{};
    for (unsigned c = first; c < last; ++c)
        for (std::size_t i = 0; i < 16; ++i)
            along[i] += (m_pixels.channels[c][i] - from[c]) * (direction[c] * scale);
    std::array<int, 16> indices;
    pixel_lanes weights;
    const float step = weightStep(m_index_bits);
    for (std::size_t i = 0; i < 16; ++i)
    {
        const float bounded = along[i] < 0 ? 0 : along[i] > top ? top : along[i];
        indices[i] = static_cast<int>(bounded + 0.5f);
        weights[i] = static_cast<float>(static_cast<int>(static_cast<float>(indices[i]) * step + 0.5f));
    }
    for (unsigned c = first; c < last; ++c)
        for (std::size_t i = 0; i < 16; ++i)
        {
            const float sum = (from[c] * 64 + direction[c] * weights[i] + 32) * (1 / 64.0f);
            const float off = static_cast<float>(static_cast<int>(sum)) - m_pixels.channels[c][i];
            error[i] += off * off;
        }
    for (std::size_t i = 0; i < 16; ++i)
    {
        error[i] *= m_pixels.weights[i];
        fitted.indices[i] = static_cast<std::uint8_t>(indices[i]);
    }
    fitted.error = sumOf(error);
}

template <unsigned first, unsigned count>
fitted_line line_fitter<first, count>::tried(const colour_point& from, const colour_point& to) const
{
    fitted_line fitted;
    fitted.line = rounded(from, to);
    measure(fitted);
    return fitted;
}

} // namespace korvane
