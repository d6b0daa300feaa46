#include "Korvane/textures/normal_map.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace korvane
{

namespace
{

rgba_pixel orangeFromBlue(rgba_pixel pixel)
{
    return 0xff | (pixel & 0xff00) | pixel << 24;
}

// Signed integers: baseline x86-64 converts those, four at a time, to and from floats.
rgba_pixel blueFromOrange(rgba_pixel pixel)
{
    const auto channel = [pixel](int shift) {
        return static_cast<float>(static_cast<std::int32_t>(pixel >> shift & 0xff)) / 255.0f;
    };
    const float x = channel(24) * channel(0);
    const float y = channel(8);
    const float nx = 2 * x - 1;
    const float ny = 2 * y - 1;
    const float rest = 1 - nx * nx - ny * ny;
    const float z = std::sqrt(rest > 0 ? rest : 0.0f); // 0 gives the byte 127
    const auto byte = [](float value) { return static_cast<rgba_pixel>(static_cast<std::int32_t>(value)); };
    return byte(x * 255) | byte(y * 255) << 8 | byte((z + 1) * 0.5f * 255) << 16 | 0xff000000;
}

struct normal_counts
{
    std::size_t blue = 0, surely_blue = 0, orange = 0, all = 0;
};

normal_counts countNormals(std::span<const rgba_pixel> pixels)
{
    constexpr std::size_t enough = 1 << 20; // of large pictures some pixels, evenly
    const std::size_t step = pixels.size() / enough + 1;
    normal_counts counts;
    for (std::size_t i = 0; i < pixels.size(); i += step)
    {
        const rgba_pixel pixel = pixels[i];
        const auto byte = [pixel](unsigned shift) { return static_cast<int>(pixel >> shift & 255); };
        const auto axis = [](int value) { return static_cast<float>(value) * (2 / 255.0f) - 1; };
        const float x = axis(byte(0)), y = axis(byte(8)), z = axis(byte(16));
        const float off = std::abs(std::sqrt(x * x + y * y + z * z) - 1);
        const float orange_x = axis(byte(0) * byte(24) / 255);
        const bool is_stored_orange = byte(16) <= 16 && (byte(0) >= 240 || byte(24) >= 240);
        counts.blue += off <= 0.25f && z >= -0.05f;
        counts.surely_blue += off <= 0.1f && z >= 0.64f; // grey is longer, or less steep
        counts.orange += is_stored_orange && orange_x * orange_x + y * y <= 1.2f;
        ++counts.all;
    }
    return counts;
}

} // namespace

void turnGreen(std::span<rgba_pixel> pixels)
{
    for (rgba_pixel& pixel : pixels)
        pixel ^= 0xff00;
}

std::optional<normal_form> normalFormOf(std::span<const rgba_pixel> pixels)
{
    const normal_counts counts = countNormals(pixels);
    if (pixels.size() < normal_judged_pixels || std::max(counts.blue, counts.orange) * 2 <= counts.all)
        return std::nullopt;
    return counts.blue > counts.orange ? normal_form::blue : normal_form::orange;
}

std::optional<normal_form> surelyNormalForm(std::span<const rgba_pixel> pixels)
{
    const normal_counts counts = countNormals(pixels);
    const auto isNearlyAll = [&counts](std::size_t count) { return count * 20 >= counts.all * 19; };
    if (pixels.size() < normal_judged_pixels)
        return std::nullopt;
    return isNearlyAll(counts.surely_blue) ? std::optional(normal_form::blue)
           : isNearlyAll(counts.orange)    ? std::optional(normal_form::orange)
                                           : std::nullopt;
}

bool isConvertible(std::span<const rgba_pixel> pixels, normal_form target, bool& is_there, failure& why)
{
    const std::optional<normal_form> form = normalFormOf(pixels);
    is_there = form == target;
    if (pixels.size() < normal_judged_pixels || (form && !is_there))
        return true;
    const bool is_orange = target == normal_form::orange;
    if (is_there)
        return fail(why, failure_kind::refused,
                    is_orange ? "this normal map is in the games' form (orange) already"
                              : "this normal map is in the ordinary form (blue) already");
    return fail(why, failure_kind::refused,
                is_orange ? "this is no normal map: as X, Y, Z the colours of most pixels are not of length 1"
                          : "this is no normal map in the games' form: most pixels do not have X in alpha or red, Y in "
                            "green and no blue");
}

void toOrange(std::span<rgba_pixel> pixels)
{
    std::transform(pixels.begin(), pixels.end(), pixels.begin(), orangeFromBlue);
}

void toBlue(std::span<rgba_pixel> pixels)
{
    std::transform(pixels.begin(), pixels.end(), pixels.begin(), blueFromOrange);
}

} // namespace korvane
