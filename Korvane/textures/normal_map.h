#pragma once

// The two forms of a normal map. BLUE, that of ordinary tools: red X, green Y, blue Z, 0 to 255 for -1 to 1. ORANGE,
// that of the games: red 255, green Y, blue 0, alpha X. The arithmetic is binary32, conversions to bytes truncate.

#include "Korvane/textures/picture.h"

#include <span>

namespace korvane
{

enum class normal_form
{
    orange,
    blue
};

// The Z of a BLUE map is lost, so is the alpha.
void toOrange(std::span<rgba_pixel> pixels);
// Z is computed; where X and Y alone are longer than 1 it is 0, the blue byte 127. X is alpha times red, so a map with
// X in red and full alpha (BC5) comes out right as well. Alpha becomes 255.
void toBlue(std::span<rgba_pixel> pixels);

inline void convertNormals(std::span<rgba_pixel> pixels, normal_form target)
{
    target == normal_form::orange ? toOrange(pixels) : toBlue(pixels);
}

} // namespace korvane
