#include "Korvane/textures/metal_roughness.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace korvane
{

namespace
{

constexpr float dielectric = 0.04f; // reflectance of what is no metal
constexpr std::size_t curve_steps = 4096;

struct colour
{
    float r = 0, g = 0, b = 0;
};

struct light_curves
{
    std::array<float, 256> linear;
    std::array<std::uint8_t, curve_steps + 1> stored;

    light_curves()
    {
        for (std::size_t i = 0; i < linear.size(); ++i)
        {
            const double s = static_cast<double>(i) / 255;
            linear[i] = static_cast<float>(s <= 0.04045 ? s / 12.92 : std::pow((s + 0.055) / 1.055, 2.4));
        }
        for (std::size_t i = 0; i < stored.size(); ++i)
        {
            const double l = static_cast<double>(i) / curve_steps;
            const double s = l <= 0.0031308 ? l * 12.92 : 1.055 * std::pow(l, 1 / 2.4) - 0.055;
            stored[i] = static_cast<std::uint8_t>(std::lround(s * 255));
        }
    }
};

const light_curves& curves()
{
    static const light_curves made;
    return made;
}

colour linearOf(rgba_pixel pixel)
{
    const auto& linear = curves().linear;
    return {linear[pixel & 0xff], linear[pixel >> 8 & 0xff], linear[pixel >> 16 & 0xff]};
}

unsigned storedOf(float value)
{
    return curves().stored[static_cast<std::size_t>(std::clamp(value, 0.0f, 1.0f) * curve_steps + 0.5f)];
}

unsigned byteOf(float value)
{
    return static_cast<unsigned>(std::clamp(value, 0.0f, 1.0f) * 255 + 0.5f);
}

float brightness(const colour& c)
{
    return std::sqrt(0.299f * c.r * c.r + 0.587f * c.g * c.g + 0.114f * c.b * c.b);
}

// How much metal there must be for both brightnesses to come out.
float metalOf(float diffuse, float specular, float not_specular)
{
    if (specular < dielectric)
        return 0;
    const float b = diffuse * not_specular / (1 - dielectric) + specular - 2 * dielectric;
    const float c = dielectric - specular;
    const float root = std::sqrt(std::max(b * b - 4 * dielectric * c, 0.0f));
    return std::clamp((root - b) / (2 * dielectric), 0.0f, 1.0f);
}

float baseOf(float diffuse, float specular, float not_specular, float metal)
{
    constexpr float smallest = 1e-6f;
    const float from_diffuse = diffuse * not_specular / (1 - dielectric) / std::max(1 - metal, smallest);
    const float from_specular = (specular - dielectric * (1 - metal)) / std::max(metal, smallest);
    const float share = metal * metal;
    return from_diffuse * (1 - share) + from_specular * share;
}

rgba_pixel nearest(const picture& map, const picture& like, std::size_t x, std::size_t y)
{
    return map.row(static_cast<std::uint32_t>(y * map.height() / like.height()))[x * map.width() / like.width()];
}

} // namespace

metal_material metalMaterial(const gloss_material& source)
{
    const picture& diffuse = *source.diffuse;
    const bool has_map = source.specular || source.gloss;
    metal_material result{picture(diffuse.width(), diffuse.height()),
                          has_map ? picture(diffuse.width(), diffuse.height()) : picture()};
    for (std::uint32_t y = 0; y < diffuse.height(); ++y)
        for (std::size_t x = 0; x < diffuse.width(); ++x)
        {
            const rgba_pixel pixel = diffuse.row(y)[x];
            const unsigned alpha = source.keeps_alpha ? pixel >> 24 : 255;
            float metal = 0;
            result.base_colour.row(y)[x] = (pixel & 0xffffff) | alpha << 24;
            if (source.specular)
            {
                const colour d = linearOf(pixel), s = linearOf(nearest(*source.specular, diffuse, x, y));
                const float rest = 1 - std::max({s.r, s.g, s.b});
                metal = metalOf(brightness(d), brightness(s), rest);
                result.base_colour.row(y)[x] =
                    rgba(storedOf(baseOf(d.r, s.r, rest, metal)), storedOf(baseOf(d.g, s.g, rest, metal)),
                         storedOf(baseOf(d.b, s.b, rest, metal)), alpha);
            }
            if (!has_map)
                continue;
            const float smooth = source.gloss ? static_cast<float>(nearest(*source.gloss, diffuse, x, y) & 0xff) / 255
                                              : static_cast<float>(default_smoothness);
            result.metal_roughness.row(y)[x] = rgba(255, byteOf(1 - smooth), byteOf(metal), 255);
        }
    return result;
}

} // namespace korvane
