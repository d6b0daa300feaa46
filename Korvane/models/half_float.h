#pragma once

// IEEE 754 binary16 to binary32, exactly: every half has one float of the same value. NaN payloads are kept.

#include <bit>
#include <cstdint>

namespace korvane
{

[[nodiscard]] inline float halfToFloat(std::uint16_t half)
{
    // The 15 bits without the sign, read as a float, are the value times 2^-112: exponents are 5 bits with bias 15
    // here, 8 bits with bias 127 there. The product is exact, for subnormal halves too.
    constexpr std::uint32_t infinity_or_nan = 0x7f800000;
    std::uint32_t bits = static_cast<std::uint32_t>(half & 0x7fffu) << 13;
    const float scaled = std::bit_cast<float>(bits) * 0x1p112f;
    bits = (bits >= 0x0f800000u) ? (bits | infinity_or_nan) : std::bit_cast<std::uint32_t>(scaled);
    return std::bit_cast<float>(bits | (static_cast<std::uint32_t>(half & 0x8000u) << 16));
}

} // namespace korvane
