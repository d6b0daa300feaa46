// BC7: each block is tried in several modes, and the one with the smallest squared error counts. Modes 0 and 2, three
// subsets with few bits, gain too little for their time.

#include "Korvane/textures/bc7_estimates.h"
#include "Korvane/textures/bc7_line.h"
#include "Korvane/textures/bc7_modes.h"
#include "Korvane/textures/block_bits.h"
#include "Korvane/textures/block_encoder.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

namespace korvane
{

namespace
{

// The end points change places where an index that is stored short would have its highest bit.
void mirror(fitted_line& fitted, unsigned index_bits)
{
    std::swap(fitted.line.stored[0], fitted.line.stored[1]);
    std::swap(fitted.line.lowest[0], fitted.line.lowest[1]);
    for (std::uint8_t& index : fitted.indices)
        index = static_cast<std::uint8_t>((1u << index_bits) - 1 - index);
}

bool isHigh(unsigned index, unsigned index_bits)
{
    return index >> (index_bits - 1) != 0;
}

class bc7_block
{
public:
    explicit bc7_block(const block_pixels& pixels);

    void encode(std::byte* target);

private:
    void tryWhole();
    template <unsigned number>
    void trySeparate(unsigned rotation, bool is_swapped);
    template <unsigned number>
    void tryDivided(unsigned partition);
    void tryForm(const bc7_form& form);
    template <unsigned channels>
    void tryForms();
    // Three quarters of a step in each channel of each pixel: further modes cost more time than they gain.
    bool isGoodEnough() const { return m_error <= 48; }
    void subsetOf(unsigned partition, unsigned subset, subset_pixels& target) const;

    subset_pixels m_all;
    bool m_is_opaque = true;
    float m_error = std::numeric_limits<float>::max();
    block_bit_writer m_best;
};

bc7_block::bc7_block(const block_pixels& pixels)
{
    for (std::size_t i = 0; i < 16; ++i)
        for (unsigned c = 0; c < 4; ++c)
            m_all.channels[c][i] = static_cast<float>(static_cast<int>(pixels[i] >> (8 * c) & 255));
    for (const rgba_pixel pixel : pixels)
        m_is_opaque = m_is_opaque && pixel >> 24 == 255;
    m_all.weights.fill(1);
    m_all.count = 16;
}

// Mode 6: one line of four channels with 16 steps.
void bc7_block::tryWhole()
{
    constexpr bc7_mode mode = bc7_modes[6];
    fitted_line fitted =
        line_fitter<0, 4>(m_all, mode.index_bits, mode.colour_bits, mode.alpha_bits, true, false, m_is_opaque)
            .fit(2, m_error);
    m_error = fitted.error;
    if (isHigh(fitted.indices[0], mode.index_bits))
        mirror(fitted, mode.index_bits);
    block_bit_writer out;
    out.put(1u << 6, 7);
    for (unsigned c = 0; c < 4; ++c)
        for (const auto& end : fitted.line.stored)
            out.put(end[c], 7);
    for (const unsigned lowest : fitted.line.lowest)
        out.put(lowest, 1);
    for (std::size_t i = 0; i < 16; ++i)
        out.put(fitted.indices[i], i == 0 ? 3 : 4);
    m_best = out;
}

void putIndices(block_bit_writer& out, const fitted_line& fitted, unsigned bits)
{
    for (std::size_t i = 0; i < 16; ++i)
        out.put(fitted.indices[i], i == 0 ? bits - 1 : bits);
}

// Modes 4 and 5: colours on one line, alpha, or the channel that changes places with it, on its own.
template <unsigned number>
void bc7_block::trySeparate(unsigned rotation, bool is_swapped)
{
    constexpr bc7_mode mode = bc7_modes[number];
    subset_pixels pixels = m_all;
    if (rotation > 0)
        std::swap(pixels.channels[3], pixels.channels[rotation - 1]);
    unsigned colour_index_bits = mode.index_bits, alpha_index_bits = mode.second_index_bits;
    if (is_swapped)
        std::swap(colour_index_bits, alpha_index_bits);
    fitted_line alpha =
        line_fitter<3, 1>(pixels, alpha_index_bits, mode.colour_bits, mode.alpha_bits, false, false, false)
            .fit(1, m_error);
    if (alpha.error >= m_error)
        return;
    fitted_line colour =
        line_fitter<0, 3>(pixels, colour_index_bits, mode.colour_bits, mode.alpha_bits, false, false, false)
            .fit(2, m_error - alpha.error);
    if (alpha.error + colour.error >= m_error)
        return;
    m_error = alpha.error + colour.error;
    if (isHigh(colour.indices[0], colour_index_bits))
        mirror(colour, colour_index_bits);
    if (isHigh(alpha.indices[0], alpha_index_bits))
        mirror(alpha, alpha_index_bits);
    block_bit_writer out;
    out.put(1u << number, number + 1);
    out.put(rotation, mode.rotation_bits);
    out.put(is_swapped ? 1 : 0, mode.selection_bits);
    for (unsigned c = 0; c < 3; ++c)
        for (const auto& end : colour.line.stored)
            out.put(end[c], mode.colour_bits);
    for (const auto& end : alpha.line.stored)
        out.put(end[3], mode.alpha_bits);
    putIndices(out, is_swapped ? alpha : colour, mode.index_bits);
    putIndices(out, is_swapped ? colour : alpha, mode.second_index_bits);
    m_best = out;
}

void bc7_block::subsetOf(unsigned partition, unsigned subset, subset_pixels& target) const
{
    target.weights.fill(0);
    std::size_t count = 0;
    for (std::size_t i = 0; i < 16; ++i)
        if ((two_subsets[partition] >> (2 * i) & 3) == subset)
        {
            for (unsigned c = 0; c < 4; ++c)
                target.channels[c][count] = m_all.channels[c][i];
            target.weights[count++] = 1;
        }
    target.count = static_cast<float>(static_cast<int>(count));
    for (unsigned c = 0; c < 4; ++c)
        std::fill(target.channels[c].begin() + static_cast<std::ptrdiff_t>(count), target.channels[c].end(),
                  target.channels[c][0]);
}

// Modes 1, 3 and 7: two lines for the two subsets of a partition.
template <unsigned number>
void bc7_block::tryDivided(unsigned partition)
{
    constexpr bc7_mode mode = bc7_modes[number];
    constexpr unsigned channels = mode.alpha_bits > 0 ? 4 : 3;
    std::array<fitted_line, 2> lines;
    float error = 0;
    for (unsigned subset = 0; subset < 2; ++subset)
    {
        subset_pixels pixels;
        subsetOf(partition, subset, pixels);
        lines[subset] = line_fitter<0, channels>(pixels, mode.index_bits, mode.colour_bits, mode.alpha_bits,
                                                 mode.own_low_bits > 0, mode.shared_low_bits > 0, false)
                            .fit(2, m_error - error);
        error += lines[subset].error;
        if (error >= m_error)
            return;
    }
    m_error = error;
    std::array<std::uint8_t, 16> indices;
    const std::array<std::size_t, 2> anchors = {0, anchors_of_two[partition]};
    for (unsigned subset = 0; subset < 2; ++subset)
    {
        const auto isInside = [&](std::size_t i) { return (two_subsets[partition] >> (2 * i) & 3) == subset; };
        std::size_t place = 0;
        for (std::size_t i = 0; i < anchors[subset]; ++i)
            place += isInside(i);
        if (isHigh(lines[subset].indices[place], mode.index_bits))
            mirror(lines[subset], mode.index_bits);
        place = 0;
        for (std::size_t i = 0; i < 16; ++i)
            if (isInside(i))
                indices[i] = lines[subset].indices[place++];
    }
    block_bit_writer out;
    out.put(1u << number, number + 1);
    out.put(partition, mode.partition_bits);
    for (unsigned c = 0; c < channels; ++c)
        for (const fitted_line& line : lines)
            for (const auto& end : line.line.stored)
                out.put(end[c], c < 3 ? mode.colour_bits : mode.alpha_bits);
    for (const fitted_line& line : lines)
        for (unsigned i = 0; i < (mode.own_low_bits > 0 ? 2 : 1); ++i)
            out.put(line.line.lowest[i], 1);
    for (std::size_t i = 0; i < 16; ++i)
        out.put(indices[i], i == anchors[0] || i == anchors[1] ? mode.index_bits - 1 : mode.index_bits);
    m_best = out;
}

void bc7_block::tryForm(const bc7_form& form)
{
    switch (form.mode)
    {
    case 1:
        return tryDivided<1>(form.choice);
    case 3:
        return tryDivided<3>(form.choice);
    case 4:
        return trySeparate<4>(form.choice, form.is_swapped);
    case 5:
        return trySeparate<5>(form.choice, false);
    default:
        return tryDivided<7>(form.choice);
    }
}

// Forms are tried in the order of their estimates. Two suffice among grains, where no form keeps much more than it
// promises. An error far below the estimate means that the colours lie on few points: there others may surprise as
// well. Normal maps with alpha have two channels; their few forms are all tried, and partitions gain nothing.
template <unsigned channels>
void bc7_block::tryForms()
{
    const bc7_estimates<channels> estimates(m_all);
    const bool is_narrow = estimates.varyingChannels() <= 2;
    best_forms<12> forms;
    estimates.offerSeparate(forms);
    if (channels == 3 || !is_narrow)
        estimates.offerDivided(forms);
    const float surprising = is_narrow ? std::numeric_limits<float>::max() : forms.begin()->estimate * 0.8f;
    bc7_form winner;
    int tried = 0;
    for (const bc7_form& form : forms)
    {
        if (form.mode == 0 || isGoodEnough() || (tried >= 2 && m_error >= surprising))
            break;
        const float before = m_error;
        tryForm(form);
        if (m_error < before)
            winner = form;
        ++tried;
    }
    if ((winner.mode == 1 || winner.mode == 3) && m_error < surprising && !isGoodEnough())
    {
        winner.mode = 4 - winner.mode; // of finer steps and finer end points the other one
        tryForm(winner);
    }
}

void bc7_block::encode(std::byte* target)
{
    tryWhole();
    if (!isGoodEnough())
    {
        if (m_is_opaque)
            tryForms<3>();
        else
            tryForms<4>();
    }
    m_best.store(target);
}

} // namespace

void encodeBc7(const block_pixels& pixels, std::byte* block)
{
    bc7_block(pixels).encode(block);
}

} // namespace korvane
