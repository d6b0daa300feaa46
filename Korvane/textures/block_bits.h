#pragma once

// What BC6H and BC7 share: bits taken from the low end of 16 bytes, the patterns that divide a block into subsets, and
// the weights between end points. The tables are those of the format's definition ("BPTC" in the Khronos data format
// specification).

#include "EASY_GUI/services/byte_reader.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace korvane
{

class block_bits
{
public:
    explicit block_bits(const std::byte* block)
        : m_low(littleEndian<std::uint64_t>(block))
        , m_high(littleEndian<std::uint64_t>(block + 8))
    {
    }

    // The next 0 to 63 bits, the first one lowest.
    std::uint64_t take(unsigned count)
    {
        const std::uint64_t value = m_low & ((std::uint64_t{1} << count) - 1);
        if (count > 0)
        {
            m_low = m_low >> count | m_high << (64 - count);
            m_high >>= count;
        }
        return value;
    }

    // Sixteen indices of that many bits. The highest bit of an anchor's index is not stored, it is 0; the anchors stand
    // in ascending order.
    template <std::size_t anchor_count>
    std::uint64_t takeIndices(unsigned bits, const std::array<unsigned, anchor_count>& anchors)
    {
        std::uint64_t indices = take(16 * bits - static_cast<unsigned>(anchor_count));
        for (const unsigned anchor : anchors)
        {
            const std::uint64_t below = (std::uint64_t{1} << (anchor * bits + bits - 1)) - 1;
            indices = (indices & below) | (indices & ~below) << 1;
        }
        return indices;
    }

private:
    std::uint64_t m_low;
    std::uint64_t m_high;
};

// The same the other way round: bits put one after the other, the lowest first.
class block_bit_writer
{
public:
    void put(std::uint64_t value, unsigned bits)
    {
        if (m_count < 64)
        {
            m_low |= value << m_count;
            if (m_count + bits > 64)
                m_high |= value >> (64 - m_count);
        }
        else
            m_high |= value << (m_count - 64);
        m_count += bits;
    }
    void store(std::byte* block) const
    {
        std::memcpy(block, &m_low, 8);
        std::memcpy(block + 8, &m_high, 8);
    }

private:
    std::uint64_t m_low = 0, m_high = 0;
    unsigned m_count = 0;
};

inline constexpr std::array<std::array<std::uint8_t, 16>, 5> block_weights = {{
    {},
    {},
    {0, 21, 43, 64},
    {0, 9, 18, 27, 37, 46, 55, 64},
    {0, 4, 9, 13, 17, 21, 26, 30, 34, 38, 43, 47, 51, 55, 60, 64},
}}; // by the bits of an index, of 64

// Two bits for each pixel, the first one lowest: the subset that it belongs to.
inline constexpr std::array<std::uint32_t, 64> two_subsets = {
    0x50505050, 0x40404040, 0x54545454, 0x54505040, 0x50404000, 0x55545450, 0x55545040, 0x54504000,
    0x50400000, 0x55555450, 0x55544000, 0x54400000, 0x55555440, 0x55550000, 0x55555500, 0x55000000,
    0x55150100, 0x00004054, 0x15010000, 0x00405054, 0x00004050, 0x15050100, 0x05010000, 0x40505054,
    0x00404050, 0x05010100, 0x14141414, 0x05141450, 0x01155440, 0x00555500, 0x15014054, 0x05414150,
    0x44444444, 0x55005500, 0x11441144, 0x05055050, 0x05500550, 0x11114444, 0x41144114, 0x44111144,
    0x15055054, 0x01055040, 0x05041050, 0x05455150, 0x14414114, 0x50050550, 0x41411414, 0x00141400,
    0x00041504, 0x00105410, 0x10541000, 0x04150400, 0x50410514, 0x41051450, 0x05415014, 0x14054150,
    0x41050514, 0x41505014, 0x40011554, 0x54150140, 0x50505500, 0x00555050, 0x15151010, 0x54540404};
inline constexpr std::array<std::uint32_t, 64> three_subsets = {
    0xaa685050, 0x6a5a5040, 0x5a5a4200, 0x5450a0a8, 0xa5a50000, 0xa0a05050, 0x5555a0a0, 0x5a5a5050,
    0xaa550000, 0xaa555500, 0xaaaa5500, 0x90909090, 0x94949494, 0xa4a4a4a4, 0xa9a59450, 0x2a0a4250,
    0xa5945040, 0x0a425054, 0xa5a5a500, 0x55a0a0a0, 0xa8a85454, 0x6a6a4040, 0xa4a45000, 0x1a1a0500,
    0x0050a4a4, 0xaaa59090, 0x14696914, 0x69691400, 0xa08585a0, 0xaa821414, 0x50a4a450, 0x6a5a0200,
    0xa9a58000, 0x5090a0a8, 0xa8a09050, 0x24242424, 0x00aa5500, 0x24924924, 0x24499224, 0x50a50a50,
    0x500aa550, 0xaaaa4444, 0x66660000, 0xa5a0a5a0, 0x50a050a0, 0x69286928, 0x44aaaa44, 0x66666600,
    0xaa444444, 0x54a854a8, 0x95809580, 0x96969600, 0xa85454a8, 0x80959580, 0xaa141414, 0x96960000,
    0xaaaa1414, 0xa05050a0, 0xa0a5a5a0, 0x96000000, 0x40804080, 0xa9a8a9a8, 0xaaaaaa44, 0x2a4a5254};

// The pixels whose index lacks a bit; that of the first subset is always pixel 0.
inline constexpr std::array<std::uint8_t, 64> anchors_of_two = {
    15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 2,  8, 2, 2, 8,
    8,  15, 2,  8,  2,  2,  8,  8,  2,  2,  15, 15, 6,  8,  2,  8,  15, 15, 2, 8, 2, 2,
    2,  15, 15, 6,  6,  2,  6,  8,  15, 15, 2,  2,  15, 15, 15, 15, 15, 2,  2, 15};
inline constexpr std::array<std::uint8_t, 64> second_anchors_of_three = {
    3, 3,  15, 15, 8, 3,  15, 15, 8,  8, 6,  6, 6,  5,  3,  3,  3, 3,  8, 15, 3, 3, 6, 10, 5, 8,  8, 6,  8,  5,  15, 15,
    8, 15, 3,  5,  6, 10, 8,  15, 15, 3, 15, 5, 15, 15, 15, 15, 3, 15, 5, 5,  5, 8, 5, 10, 5, 10, 8, 13, 15, 12, 3,  3};
inline constexpr std::array<std::uint8_t, 64> third_anchors_of_three = {
    15, 8, 8, 3,  15, 15, 3,  8,  15, 15, 15, 15, 15, 15, 15, 8,  15, 8,  15, 3,  15, 8,
    15, 8, 3, 15, 6,  10, 15, 15, 10, 8,  15, 3,  15, 10, 10, 8,  9,  10, 6,  15, 8,  15,
    3,  6, 6, 8,  15, 3,  15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 3,  15, 15, 8};

} // namespace korvane
