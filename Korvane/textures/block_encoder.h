#pragma once

// Encodes single blocks of 4 x 4 pixels: BC1 to BC5 through libsquish, BC6H and BC7 here (bc6h_encoder.cpp,
// bc7_encoder.cpp). The same pixels give the same bytes on every machine.

#include "Korvane/textures/block_decoder.h"

#include <cstddef>

namespace korvane
{

enum class encoding_effort
{
    usual, // end points from the colours' range
    best   // BC1 and BC3: every division of the colours is tried; a sixth of the speed, 1 to 3 dB better
};

// 8 bytes. Pixels with an alpha below 128 become transparent black, the others opaque.
void encodeBc1(const block_pixels& pixels, encoding_effort effort, std::byte* block);
// 16 bytes.
void encodeBc3(const block_pixels& pixels, encoding_effort effort, std::byte* block);
// Red alone, 8 bytes.
void encodeBc4(const block_pixels& pixels, std::byte* block);
// Red and green, 16 bytes.
void encodeBc5(const block_pixels& pixels, std::byte* block);
// 16 bytes. A block that is opaque stays so to the bit.
void encodeBc7(const block_pixels& pixels, std::byte* block);

// The bits of 16-bit floats as numbers, 0 to largest_half, and what lies between two of them: along these codes a step
// is about the same part of the light everywhere, and BC6H divides them evenly.
using light_block = std::array<std::array<float, 16>, 3>; // channel, pixel
inline constexpr float largest_half = 0x7bff;
// 16 bytes, without a sign. Made for light that changes smoothly: one line of colours a block, its ends in the finest
// of four steps that reaches far enough (a half's own steps where the light is almost even, 31 of them at worst).
void encodeBc6hUnsigned(const light_block& pixels, std::byte* block);

} // namespace korvane
