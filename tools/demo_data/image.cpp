#include "tools/demo_data/image.h"

#include <array>

namespace korvane::demo
{

namespace
{

// x to the power of 2.4 for 0 < x <= 1, as x^2 times the fifth root of x^2, by Newton's steps from above.
double powerOf2Point4(double x)
{
    const double square = x * x;
    double root = 1;
    for (int i = 0; i < 40; ++i)
        root = (root * 4 + square / (root * root * root * root)) * 0.2;
    return square * root;
}

const std::array<double, 256>& linearTable()
{
    static const std::array<double, 256> table = [] {
        std::array<double, 256> values{};
        for (std::size_t i = 0; i < values.size(); ++i)
        {
            const double value = static_cast<double>(i) / 255;
            values[i] = value <= 0.04045 ? value / 12.92 : powerOf2Point4((value + 0.055) / 1.055);
        }
        return values;
    }();
    return table;
}

std::uint8_t srgbFromLinear(double light)
{
    const auto& table = linearTable();
    const auto above = std::lower_bound(table.begin(), table.end(), light);
    if (above == table.begin())
        return 0;
    if (above == table.end())
        return 255;
    const auto index = above - table.begin();
    return static_cast<std::uint8_t>(light - *(above - 1) < *above - light ? index - 1 : index);
}

} // namespace

std::uint8_t toByte(double unit)
{
    return static_cast<std::uint8_t>(clamp01(unit) * 255 + 0.5);
}

double linearFromSrgb(std::uint8_t value)
{
    return linearTable()[value];
}

image halved(const image& source, bool srgb)
{
    image result(std::max<std::size_t>(1, source.width / 2), std::max<std::size_t>(1, source.height / 2));
    for (std::size_t y = 0; y < result.height; ++y)
        for (std::size_t x = 0; x < result.width; ++x)
        {
            const std::size_t x0 = std::min(x * 2, source.width - 1), x1 = std::min(x * 2 + 1, source.width - 1);
            const std::size_t y0 = std::min(y * 2, source.height - 1), y1 = std::min(y * 2 + 1, source.height - 1);
            const std::uint8_t* const four[] = {source.at(x0, y0), source.at(x1, y0), source.at(x0, y1),
                                                source.at(x1, y1)};
            for (std::size_t channel = 0; channel < 4; ++channel)
            {
                double light = 0;
                int sum = 0;
                for (const std::uint8_t* const pixel : four)
                {
                    light += linearTable()[pixel[channel]];
                    sum += pixel[channel];
                }
                result.at(x, y)[channel] =
                    srgb && channel < 3 ? srgbFromLinear(light * 0.25) : static_cast<std::uint8_t>((sum + 2) / 4);
            }
        }
    return result;
}

double hashOfCell(int x, int y, std::uint32_t seed)
{
    std::uint32_t h =
        seed * 0x9E3779B1u + static_cast<std::uint32_t>(x) * 0x85EBCA77u + static_cast<std::uint32_t>(y) * 0xC2B2AE3Du;
    h ^= h >> 15;
    h *= 0x2C1B3C6Du;
    h ^= h >> 12;
    h *= 0x297A2D39u;
    h ^= h >> 15;
    return h * (1.0 / 4294967296.0);
}

double noise(double u, double v, int cells_u, int cells_v, std::uint32_t seed)
{
    const double x = fraction(u) * cells_u, y = fraction(v) * cells_v;
    const double column = std::floor(x), row = std::floor(y);
    const int x0 = static_cast<int>(column) % cells_u, y0 = static_cast<int>(row) % cells_v;
    const int x1 = (x0 + 1) % cells_u, y1 = (y0 + 1) % cells_v;
    const double s = smoothStep(0, 1, x - column), t = smoothStep(0, 1, y - row);
    return mix(mix(hashOfCell(x0, y0, seed), hashOfCell(x1, y0, seed), s),
               mix(hashOfCell(x0, y1, seed), hashOfCell(x1, y1, seed), s), t);
}

double cloudy(double u, double v, int cells_u, int cells_v, int octaves, std::uint32_t seed)
{
    double sum = 0, total = 0, strength = 1;
    for (int i = 0; i < octaves; ++i)
    {
        sum += strength * noise(u, v, cells_u << i, cells_v << i, seed + static_cast<std::uint32_t>(i) * 101);
        total += strength;
        strength *= 0.5;
    }
    return sum / total;
}

} // namespace korvane::demo
