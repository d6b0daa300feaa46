#pragma once

// The eight modes of BC7 blocks, for decoder and encoder.

namespace korvane
{

struct bc7_mode
{
    unsigned subsets, partition_bits, rotation_bits, selection_bits;
    unsigned colour_bits, alpha_bits;
    unsigned own_low_bits, shared_low_bits; // 1: each end point, each subset has a lowest bit of its own
    unsigned index_bits, second_index_bits;
};

inline constexpr bc7_mode bc7_modes[] = {
    {3, 4, 0, 0, 4, 0, 1, 0, 3, 0}, {2, 6, 0, 0, 6, 0, 0, 1, 3, 0}, {3, 6, 0, 0, 5, 0, 0, 0, 2, 0},
    {2, 6, 0, 0, 7, 0, 1, 0, 2, 0}, {1, 0, 2, 1, 5, 6, 0, 0, 2, 3}, {1, 0, 2, 0, 7, 8, 0, 0, 2, 2},
    {1, 0, 0, 0, 7, 7, 1, 0, 4, 0}, {2, 6, 0, 0, 5, 5, 1, 0, 2, 0},
};

// A channel of 4 to 8 bits; its upper bits are repeated below.
constexpr unsigned to8Bits(unsigned value, unsigned bits)
{
    return value << (8 - bits) | value >> (2 * bits - 8);
}

} // namespace korvane
