#pragma once

// The checksum of the program's own cache files.

#include "EASY_GUI/services/byte_reader.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

namespace korvane
{

// Notices damage; no proof against ill will, which is why the tables are checked as well. What is added in pieces gives
// the same as in one, as long as all pieces but the last are multiples of 32 bytes.
class checksum
{
public:
    void add(std::span<const std::byte> bytes)
    {
        std::size_t at = 0;
        for (; at + 32 <= bytes.size(); at += 32)
            for (std::size_t i = 0; i < m_sums.size(); ++i)
                mixInto(m_sums[i], littleEndian<std::uint64_t>(bytes.data() + at + 8 * i));
        for (; at < bytes.size(); ++at)
            mixInto(m_sums[at % m_sums.size()], std::to_integer<std::uint64_t>(bytes[at]));
        m_size += bytes.size();
    }
    std::uint64_t value() const
    {
        std::uint64_t sum = m_size;
        for (const std::uint64_t each : m_sums)
            mixInto(sum, each);
        return sum;
    }

private:
    static void mixInto(std::uint64_t& sum, std::uint64_t value)
    {
        sum = std::rotl((sum ^ value) * 0xd6e8feb86659fd93u, 29);
    }

    std::array<std::uint64_t, 4> m_sums = {1, 2, 3, 4}; // four chains, so that none waits for another's product
    std::uint64_t m_size = 0;
};

[[nodiscard]] inline std::uint64_t checksumOf(std::span<const std::byte> bytes)
{
    checksum sum;
    sum.add(bytes);
    return sum.value();
}

} // namespace korvane
