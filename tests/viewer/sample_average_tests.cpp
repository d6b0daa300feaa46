#include "Korvane/viewer/sample_average.h"

#include <gtest/gtest.h>

#include <array>

namespace korvane
{

TEST(sample_average, coloursAreAveragedAsLightAndByTheirAlpha)
{
    using pixel = std::array<std::uint8_t, 4>;
    const auto average = [](const pixel& first, const pixel& second, sample_content content) {
        sample_average sums;
        sums.begin(1, content);
        sums.add(first);
        sums.add(second);
        pixel result{};
        sums.finish(result);
        return result;
    };
    const auto colour = sample_content::colour;
    EXPECT_EQ(average({255, 0, 0, 255}, {0, 0, 0, 255}, colour), (pixel{188, 0, 0, 255})) << "half the light";
    EXPECT_EQ(average({255, 0, 0, 255}, {0, 0, 0, 255}, sample_content::data), (pixel{128, 0, 0, 255}));
    EXPECT_EQ(average({200, 100, 3, 255}, {0, 0, 0, 0}, colour), (pixel{200, 100, 3, 128}))
        << "nothing does not darken";
    EXPECT_EQ(average({9, 9, 9, 0}, {7, 7, 7, 0}, colour), (pixel{0, 0, 0, 0}));
    for (unsigned value = 0; value < 256; ++value)
    {
        const pixel same{static_cast<std::uint8_t>(value), 0, 0, 255};
        EXPECT_EQ(average(same, same, colour), same);
    }
}

} // namespace korvane
