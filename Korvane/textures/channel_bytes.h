#pragma once

// Values of a channel as the bytes of a picture, to the nearest.

#include <algorithm>
#include <cstdint>

namespace korvane
{

// 0 to most as 0 to 255.
[[nodiscard]] constexpr std::uint8_t byteOfUnorm(std::uint64_t value, std::uint64_t most)
{
    return static_cast<std::uint8_t>((value * 255 + most / 2) / most);
}
// -most to most as 0 to 255; below counts as -most.
[[nodiscard]] constexpr std::uint8_t byteOfSnorm(std::int64_t value, std::int64_t most)
{
    const std::int64_t shifted = std::max(value, -most) + most;
    return static_cast<std::uint8_t>((shifted * 255 + most) / (2 * most));
}
// Cut to 0..1, NaN is 0: as it is, or as light that gets the sRGB curve.
[[nodiscard]] std::uint8_t byteOfUnit(double value);
[[nodiscard]] std::uint8_t byteOfLight(double value);

} // namespace korvane
