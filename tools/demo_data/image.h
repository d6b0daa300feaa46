#pragma once

// Pixels, their halving for mip maps, and the noise that painted surfaces are made of.

#include "tools/demo_data/demo_math.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace korvane::demo
{

struct image // 8 bits a channel, red green blue alpha, rows from the top
{
    std::size_t width = 0, height = 0;
    std::vector<std::uint8_t> pixels;

    image() = default;
    image(std::size_t w, std::size_t h) : width(w), height(h), pixels(w * h * 4) {}
    std::uint8_t* at(std::size_t x, std::size_t y) { return pixels.data() + (y * width + x) * 4; }
    const std::uint8_t* at(std::size_t x, std::size_t y) const { return pixels.data() + (y * width + x) * 4; }
};

[[nodiscard]] std::uint8_t toByte(double unit); // 0..1, rounded, clamped
[[nodiscard]] double linearFromSrgb(std::uint8_t value);

// Half the size (at least 1), by averaging; of colours that are meant for the eye (srgb) the light is averaged, not the
// numbers. Alpha is a number always.
[[nodiscard]] image halved(const image& source, bool srgb);

// Smooth noise, 0..1, that repeats after one unit in u and v. cells: the lattice's size, at least 1.
[[nodiscard]] double noise(double u, double v, int cells_u, int cells_v, std::uint32_t seed);
// Several octaves of it, each twice as fine and half as strong; 0..1.
[[nodiscard]] double cloudy(double u, double v, int cells_u, int cells_v, int octaves, std::uint32_t seed);
// A number 0..1 for a cell.
[[nodiscard]] double hashOfCell(int x, int y, std::uint32_t seed);

} // namespace korvane::demo
