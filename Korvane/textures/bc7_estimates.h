#pragma once

// What a BC7 block would cost in each of its forms, guessed from the covariances of its pixels, so that only the most
// promising forms are worked out. Squared errors of the whole block. One thread each.

#include "Korvane/textures/bc7_line.h"
#include "Korvane/textures/block_bits.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>

namespace korvane
{

// What rounding the end points leaves, about; in modes 4 and 5 for each channel of the colours that varies.
inline constexpr float rounding_of_1 = 35, rounding_of_3 = 8, rounding_of_4 = 40, rounding_of_5 = 3.5f,
                       rounding_of_7 = 180;

// A bit for each pixel of the second subset.
inline constexpr auto second_subsets = [] {
    std::array<std::uint16_t, 64> result{};
    for (std::size_t partition = 0; partition < 64; ++partition)
        for (std::size_t i = 0; i < 16; ++i)
            result[partition] =
                static_cast<std::uint16_t>(result[partition] | (two_subsets[partition] >> (2 * i) & 1) << i);
    return result;
}();

// 1 / the number of pixels in each subset.
inline constexpr auto subset_scales = [] {
    std::array<std::array<float, 64>, 2> result{};
    for (std::size_t partition = 0; partition < 64; ++partition)
    {
        const int second = std::popcount(second_subsets[partition]);
        result[0][partition] = 1 / static_cast<float>(16 - second);
        result[1][partition] = 1 / static_cast<float>(second);
    }
    return result;
}();

struct bc7_form
{
    unsigned mode = 0;
    unsigned choice = 0; // the partition, or the rotation
    bool is_swapped = false;
    float estimate = std::numeric_limits<float>::max();
};

// The few forms with the least estimates, best first.
template <std::size_t count>
class best_forms
{
public:
    void offer(bc7_form form)
    {
        if (form.estimate >= m_forms[count - 1].estimate)
            return;
        for (bc7_form& place : m_forms)
            if (form.estimate < place.estimate)
                std::swap(form, place);
    }
    auto begin() const { return m_forms.begin(); }
    auto end() const { return m_forms.end(); }

private:
    std::array<bc7_form, count> m_forms;
};

// Of the squared distances to the mean (trace) a line leaves those beside it, of which the estimate below is a little
// short; along it a part of a step is left, less than of pixels that lie evenly between the ends. Factors as measured.
inline float lineEstimate(float trace, float beside, unsigned index_bits)
{
    const auto steps = static_cast<float>((1 << index_bits) - 1);
    return beside * 1.2f + 0.35f * (trace - beside) / (steps * steps);
}

// A channel on its own: two values are met exactly, such as those of an alpha that cuts out.
inline float channelEstimate(const pixel_lanes& values, float trace, unsigned index_bits)
{
    const auto [low, high] = extremesOf(values);
    const float step = (high - low) / static_cast<float>((1 << index_bits) - 1);
    pixel_lanes errors;
    for (std::size_t i = 0; i < 16; ++i)
    {
        const auto index = static_cast<float>(static_cast<int>((values[i] - low) / step + 0.5f));
        const float off = values[i] - low - index * step;
        errors[i] = off * off;
    }
    return std::min(sumOf(errors), lineEstimate(trace, 0, index_bits));
}

// Of pixels in the first channels, opaque ones have three. Sums run around the block's mean, so they keep their digits.
template <unsigned channels>
class bc7_estimates
{
public:
    explicit bc7_estimates(const subset_pixels& all);

    unsigned varyingChannels() const;
    template <std::size_t count>
    void offerSeparate(best_forms<count>& best) const;
    template <std::size_t count>
    void offerDivided(best_forms<count>& best) const;

private:
    static constexpr std::size_t products = channels * (channels + 1) / 2;
    static constexpr std::size_t sums = (channels + products + 3) / 4 * 4; // whole vectors
    using features = std::array<float, sums>;                   // channels, then products of two: 00 01 11 02
    using covariance_lanes = std::array<pixel_lanes, products>; // of sixteen partitions

    static constexpr std::size_t placeOf(std::size_t a, std::size_t b)
    {
        return a < b ? b * (b + 1) / 2 + a : a * (a + 1) / 2 + b;
    }

    void sumSubsets(unsigned first_partition, std::array<pixel_lanes, sums>& second) const;
    static void addCosts(const covariance_lanes& covariance, pixel_lanes& traces, pixel_lanes& beside);

    std::array<std::array<features, 16>, 4> m_rows; // of each row of pixels, all sixteen subsets
    features m_total{};
    const subset_pixels& m_all;
};

template <unsigned channels>
bc7_estimates<channels>::bc7_estimates(const subset_pixels& all) : m_all(all)
{
    std::array<float, channels> mean;
    for (unsigned c = 0; c < channels; ++c)
        mean[c] = sumOf(all.channels[c]) / 16;
    for (std::size_t row = 0; row < 4; ++row)
    {
        std::array<features, 16>& subsets = m_rows[row];
        subsets[0] = {};
        for (std::size_t x = 0; x < 4; ++x)
        {
            features pixel{};
            for (std::size_t a = 0; a < channels; ++a)
            {
                pixel[a] = all.channels[a][4 * row + x] - mean[a];
                for (std::size_t b = 0; b <= a; ++b)
                    pixel[channels + placeOf(a, b)] = pixel[a] * pixel[b];
            }
            for (std::size_t without = 0; without < 1u << x; ++without)
                for (std::size_t k = 0; k < sums; ++k)
                    subsets[without | 1u << x][k] = subsets[without][k] + pixel[k];
        }
        for (std::size_t k = 0; k < sums; ++k)
            m_total[k] += subsets[15][k];
    }
}

template <unsigned channels>
unsigned bc7_estimates<channels>::varyingChannels() const
{
    unsigned result = 0;
    for (std::size_t c = 0; c < channels; ++c)
        result += m_total[channels + placeOf(c, c)] > 0;
    return result;
}

// Modes 4 and 5. A channel that is the same everywhere gains nothing from a line of its own.
template <unsigned channels>
template <std::size_t count>
void bc7_estimates<channels>::offerSeparate(best_forms<count>& best) const
{
    const auto covariance = [&](std::size_t a, std::size_t b) { return m_total[channels + placeOf(a, b)]; };
    for (unsigned alone = 0; alone < channels; ++alone)
    {
        const float own = covariance(alone, alone);
        if (own <= 0)
            continue;
        float trace = 0, squares = 0, varying = 0;
        for (unsigned a = 0; a < channels; ++a)
            if (a != alone)
            {
                trace += covariance(a, a);
                varying += covariance(a, a) > 0 ? 1.0f : 0.0f;
                for (unsigned b = 0; b < channels; ++b)
                    if (b != alone)
                        squares += covariance(a, b) * covariance(a, b);
            }
        const float beside = trace - std::sqrt(squares);
        const float short_own = channelEstimate(m_all.channels[alone], own, 2);
        const float long_own = channelEstimate(m_all.channels[alone], own, 3);
        const unsigned rotation = (alone + 1) % 4;
        best.offer({5, rotation, false, rounding_of_5 * varying + lineEstimate(trace, beside, 2) + short_own});
        best.offer({4, rotation, false, rounding_of_4 * varying + lineEstimate(trace, beside, 2) + long_own});
        best.offer({4, rotation, true, rounding_of_4 * varying + lineEstimate(trace, beside, 3) + short_own});
    }
}

template <unsigned channels>
void bc7_estimates<channels>::sumSubsets(unsigned first_partition, std::array<pixel_lanes, sums>& second) const
{
    for (std::size_t lane = 0; lane < 16; ++lane)
    {
        const std::uint16_t pixels = second_subsets[first_partition + lane];
        features sum;
        for (std::size_t k = 0; k < sums; ++k)
            sum[k] = m_rows[0][pixels & 15][k] + m_rows[1][pixels >> 4 & 15][k] + m_rows[2][pixels >> 8 & 15][k] +
                     m_rows[3][pixels >> 12][k];
        for (std::size_t k = 0; k < sums; ++k)
            second[k][lane] = sum[k];
    }
}

// The trace of each covariance less its largest eigenvalue, for which the root of its squares' sum stands.
template <unsigned channels>
void bc7_estimates<channels>::addCosts(const covariance_lanes& covariance, pixel_lanes& traces, pixel_lanes& beside)
{
    pixel_lanes squares{};
    for (std::size_t a = 0; a < channels; ++a)
    {
        const pixel_lanes& own = covariance[placeOf(a, a)];
        for (std::size_t i = 0; i < 16; ++i)
        {
            traces[i] += own[i];
            beside[i] += own[i];
            squares[i] += own[i] * own[i];
        }
        for (std::size_t b = 0; b < a; ++b)
        {
            const pixel_lanes& mixed = covariance[placeOf(a, b)];
            for (std::size_t i = 0; i < 16; ++i)
                squares[i] += 2 * mixed[i] * mixed[i];
        }
    }
    for (std::size_t i = 0; i < 16; ++i)
        beside[i] -= std::sqrt(squares[i]);
}

// Modes 1 and 3, or 7.
template <unsigned channels>
template <std::size_t count>
void bc7_estimates<channels>::offerDivided(best_forms<count>& best) const
{
    for (unsigned partition = 0; partition < 64; partition += 16)
    {
        std::array<pixel_lanes, sums> second;
        sumSubsets(partition, second);
        covariance_lanes first_covariance, second_covariance;
        for (std::size_t a = 0; a < channels; ++a)
            for (std::size_t b = 0; b <= a; ++b)
            {
                const std::size_t place = placeOf(a, b);
                for (std::size_t i = 0; i < 16; ++i)
                {
                    // The first subset's sums of channels are the second's, negative: around the mean all are nothing.
                    const float mixed = second[a][i] * second[b][i], products_of = second[channels + place][i];
                    second_covariance[place][i] = products_of - mixed * subset_scales[1][partition + i];
                    first_covariance[place][i] =
                        m_total[channels + place] - products_of - mixed * subset_scales[0][partition + i];
                }
            }
        pixel_lanes traces{}, beside{};
        addCosts(first_covariance, traces, beside);
        addCosts(second_covariance, traces, beside);
        for (unsigned i = 0; i < 16; ++i)
            if constexpr (channels == 3)
            {
                best.offer({1, partition + i, false, rounding_of_1 + lineEstimate(traces[i], beside[i], 3)});
                best.offer({3, partition + i, false, rounding_of_3 + lineEstimate(traces[i], beside[i], 2)});
            }
            else
                best.offer({7, partition + i, false, rounding_of_7 + lineEstimate(traces[i], beside[i], 2)});
    }
}

} // namespace korvane
