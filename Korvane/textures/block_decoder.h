#pragma once

// Decodes single blocks of 4 x 4 pixels (dds_decoder.h says what becomes of the channels). Every bit pattern is a valid
// block; no function reads beyond its block's 8 or 16 bytes.

#include "Korvane/textures/picture.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace korvane
{

using block_pixels = std::array<rgba_pixel, 16>; // row by row from the top
using block_decoder = void (*)(const std::byte* block, block_pixels& pixels);

void decodeBc1(const std::byte* block, block_pixels& pixels);
void decodeBc2(const std::byte* block, block_pixels& pixels);
void decodeBc3(const std::byte* block, block_pixels& pixels);
void decodeBc4(const std::byte* block, block_pixels& pixels);
void decodeBc4Signed(const std::byte* block, block_pixels& pixels);
void decodeBc5(const std::byte* block, block_pixels& pixels);
void decodeBc5Signed(const std::byte* block, block_pixels& pixels);
void decodeBc6hUnsigned(const std::byte* block, block_pixels& pixels);
void decodeBc6hSigned(const std::byte* block, block_pixels& pixels);
void decodeBc7(const std::byte* block, block_pixels& pixels);

// The three channels of a BC6H block as bits of 16-bit floats, before they become bytes.
using block_halves = std::array<std::array<std::uint16_t, 3>, 16>;
void decodeBc6hHalves(const std::byte* block, bool is_signed, block_halves& pixels);

} // namespace korvane
