// Places of windows in the configuration, and what becomes of them on other monitors.

#include "Korvane/document/window_place.h"

#include <gtest/gtest.h>

namespace korvane::test
{
namespace
{

TEST(window_place, whatIsKeptComesBackAndNonsenseDoesNot)
{
    config_file config;
    const window_place place{{-1200, 40, -300, 700}, 144, true};
    EXPECT_TRUE(keepPlace(config, "window_place", place));
    EXPECT_FALSE(keepPlace(config, "window_place", place)) << "nothing new";
    EXPECT_EQ(keptPlace(config, "window_place"), place);
    for (const char* const nonsense :
         {"", "here", "1 2 3 4 96", "0 0 10 10 96 0", "500 0 100 600 96 0", "0 0 900 600 0 0", "0 0 900 600 96 0 7",
          "0 0 900 99999999999 96 0", "0,0,900,600,96,0", "-2000000000 0 2000000000 600 96 0"})
    {
        config.clear("window_place");
        config.add("window_place", {nonsense}, false);
        EXPECT_FALSE(keptPlace(config, "window_place")) << nonsense;
    }
    EXPECT_TRUE(keepColumns(config, "problems", std::vector{100, 100, 0}));
    EXPECT_EQ(keptColumns(config, "problems", 3), (std::vector{100, 100, 0}));
    EXPECT_TRUE(keptColumns(config, "problems", 2).empty()) << "of another version";
    EXPECT_TRUE(keepPage(config, "Problems"));
    EXPECT_FALSE(keepPage(config, "Problems"));
    EXPECT_EQ(keptPage(config), "problems");
}

TEST(window_place, aWindowOpensWhereItCanBeReached)
{
    const std::vector<monitor_area> one = {{{0, 0, 1920, 1040}, 96}};
    const std::vector<monitor_area> two = {{{0, 0, 1920, 1040}, 96}, {{1920, 0, 5760, 2120}, 192}};
    const struct
    {
        const char* name;
        window_place place;
        std::vector<monitor_area> monitors;
        screen_rect wanted;
    } rows[] = {
        {"as it was", {{100, 50, 900, 650}}, one, {100, 50, 900, 650}},
        {"on the second monitor", {{2000, 100, 3600, 1300}, 192}, two, {2000, 100, 3600, 1300}},
        {"whose monitor is gone", {{2000, 100, 3600, 1300}, 192}, one, {560, 220, 1360, 820}},
        {"the monitor has another dpi now", {{2000, 100, 2800, 700}, 96}, two, {2000, 100, 3600, 1300}},
        {"larger than the monitor", {{0, 0, 4000, 3000}}, one, {0, 0, 1920, 1040}},
        {"half outside", {{-400, 800, 400, 1400}}, one, {0, 440, 800, 1040}},
        {"title bar above the screen", {{100, -900, 900, -300}}, one, {560, 220, 1360, 820}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(fittedPlace(row.place, row.monitors), row.wanted) << row.name;
}

} // namespace
} // namespace korvane::test
