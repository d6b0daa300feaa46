#include "Korvane/textures/channel_bytes.h"

#include <array>
#include <cmath>

namespace korvane
{

namespace
{

// Where one byte ends and the next begins: a search takes a fraction of a root's time.
std::array<double, 255> bordersOfLight()
{
    std::array<double, 255> borders;
    for (std::size_t i = 0; i < borders.size(); ++i)
    {
        const double curved = (static_cast<double>(i) + 0.5) / 255;
        borders[i] = curved <= 0.0031308 * 12.92 ? curved / 12.92 : std::pow((curved + 0.055) / 1.055, 2.4);
    }
    return borders;
}

} // namespace

std::uint8_t byteOfUnit(double value)
{
    return value > 0 ? static_cast<std::uint8_t>(std::min(value, 1.0) * 255 + 0.5) : std::uint8_t{0};
}

std::uint8_t byteOfLight(double value)
{
    static const std::array<double, 255> borders = bordersOfLight();
    if (!(value > 0))
        return 0;
    return static_cast<std::uint8_t>(std::upper_bound(borders.begin(), borders.end(), value) - borders.begin());
}

} // namespace korvane
