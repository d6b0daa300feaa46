#pragma once

// The two forms of a normal map. BLUE, that of ordinary tools: red X, green Y, blue Z, 0 to 255 for -1 to 1. ORANGE,
// that of the games: red 255, green Y, blue 0, alpha X. The arithmetic is binary32, conversions to bytes truncate.

#include "EASY_GUI/services/failure.h"
#include "Korvane/textures/picture.h"

#include <cstddef>
#include <optional>
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
// Y, which the games count downwards as their v, and most other programs upwards.
void turnGreen(std::span<rgba_pixel> pixels);

inline void convertNormals(std::span<rgba_pixel> pixels, normal_form target)
{
    target == normal_form::orange ? toOrange(pixels) : toBlue(pixels);
}

// Which of the two a picture is, by most of its pixels: as BLUE those count that are about as long as 1 and do not
// point into the surface; as ORANGE (or with X in red, as in BC5) those without blue, with full red or full alpha, that
// are not much longer than 1. Nothing where neither is so, and of fewer than normal_judged_pixels, which say too
// little.
inline constexpr std::size_t normal_judged_pixels = 64;
[[nodiscard]] std::optional<normal_form> normalFormOf(std::span<const rgba_pixel> pixels);
// The same where nobody has said that it is a normal map: nearly all pixels, and more exactly.
[[nodiscard]] std::optional<normal_form> surelyNormalForm(std::span<const rgba_pixel> pixels);

// False, with the reason, for a picture that is not to be converted to the target: it is no normal map, or has that
// form already (is_there). One of fewer pixels than are judged is taken at its word.
[[nodiscard]] bool isConvertible(std::span<const rgba_pixel> pixels, normal_form target, bool& is_there, failure& why);

} // namespace korvane
