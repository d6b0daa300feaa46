// 16 frames a second from 0 to 1 second are 17 frames; sixteenths are exact in binary, so times below are, too.

#include "Korvane/posing/playback.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <ostream>
#include <vector>

namespace korvane
{

void PrintTo(const playback_position& position, std::ostream* out)
{
    *out << position.frame << " + " << position.fraction;
}

namespace
{

constexpr playback_length second{16, 1, 17};
constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr double nan_number = std::numeric_limits<double>::quiet_NaN();

enum class action
{
    wait, // so many sixteenths of a second, then a tick
    pause,
    resume,
    step, // so many frames
    speed,
    seek,
    range // first.last, two digits
};

struct deed
{
    action what;
    double amount;
    playback_position expected;
};

TEST(playback, doesWhatAPersonExpects)
{
    using enum action;
    const struct
    {
        const char* name;
        std::vector<deed> deeds;
    } rows[] = {
        {"plays from frame 0", {{wait, 0, {0, 0}}, {wait, 2.5, {2, 0.5f}}, {wait, 13, {15, 0.5f}}}},
        {"goes round at the end time", {{wait, 15.5, {15, 0.5f}}, {wait, 0.5, {0, 0}}, {wait, 3, {3, 0}}}},
        {"begins again after a long pause of the pictures", {{wait, 1000.25, {0, 0}}, {wait, 1.5, {1, 0.5f}}}},
        {"a pause keeps what is shown",
         {{wait, 3.25, {3, 0.25f}}, {pause, 0, {3, 0.25f}}, {wait, 7, {3, 0.25f}}, {wait, 900, {3, 0.25f}}}},
        {"goes on from there",
         {{wait, 3.25, {3, 0.25f}},
          {pause, 0, {3, 0.25f}},
          {wait, 900, {3, 0.25f}},
          {resume, 0, {3, 0.25f}},
          {wait, 0, {3, 0.25f}},
          {wait, 1, {4, 0.25f}},
          {wait, 12, {0, 0}}}},
        {"a second resume or pause changes nothing",
         {{wait, 2, {2, 0}},
          {resume, 0, {2, 0}},
          {wait, 1, {3, 0}},
          {pause, 0, {3, 0}},
          {pause, 0, {3, 0}},
          {wait, 1, {3, 0}},
          {resume, 0, {3, 0}},
          {wait, 1, {4, 0}}}},
        {"a step forward is the next whole frame, at once",
         {{wait, 3.25, {3, 0.25f}}, {pause, 0, {3, 0.25f}}, {step, 1, {4, 0}}, {wait, 5, {4, 0}}, {step, 1, {5, 0}}}},
        {"a step back is the one before", {{wait, 3.25, {3, 0.25f}}, {pause, 0, {3, 0.25f}}, {step, -1, {2, 0}}}},
        {"steps wrap",
         {{pause, 0, {0, 0}},
          {step, -1, {16, 0}},
          {step, -1, {15, 0}},
          {step, 2, {0, 0}},
          {step, 35, {1, 0}},
          {step, -36, {16, 0}},
          {wait, 1, {16, 0}}}},
        {"going on from the last frame begins again",
         {{pause, 0, {0, 0}}, {step, -1, {16, 0}}, {resume, 0, {16, 0}}, {wait, 0, {0, 0}}, {wait, 1, {1, 0}}}},
        {"stepped to, then resumed",
         {{pause, 0, {0, 0}}, {step, 5, {5, 0}}, {wait, 9, {5, 0}}, {resume, 0, {5, 0}}, {wait, 1.5, {6, 0.5f}}}},
        {"steps while playing",
         {{wait, 3.5, {3, 0.5f}}, {step, 1, {4, 0}}, {wait, 1.5, {5, 0.5f}}, {step, -1, {4, 0}}}},
        {"another speed goes on from what is shown",
         {{wait, 2, {2, 0}}, {speed, 2, {2, 0}}, {wait, 1.5, {5, 0}}, {speed, 0.25, {5, 0}}, {wait, 2, {5, 0.5f}}}},
        {"a place that is sought is shown at once, and played from",
         {{seek, 9, {9, 0}}, {wait, 1, {10, 0}}, {pause, 0, {10, 0}}, {seek, 40, {16, 0}}, {wait, 3, {16, 0}}}},
        {"a range goes round, and is jumped into",
         {{range, 4.07, {0, 0}},
          {wait, 1, {4, 0}},
          {wait, 3.75, {7, 0.75f}},
          {wait, 0.5, {4, 0}},
          {range, 0, {4, 0}},
          {wait, 5, {9, 0}}}},
    };
    for (const auto& row : rows)
    {
        double now = 12345;
        playback player([&now] { return now; });
        player.load(second);
        for (std::size_t i = 0; i < row.deeds.size(); ++i)
        {
            const deed& next = row.deeds[i];
            if (next.what == wait)
                now += next.amount / 16;
            else if (next.what == step)
                player.step(static_cast<std::int64_t>(next.amount));
            else if (next.what == speed)
                player.setSpeed(static_cast<float>(next.amount));
            else if (next.what == seek)
                player.seek({static_cast<std::uint32_t>(next.amount), 0});
            else if (next.what == range)
                player.setRange({static_cast<std::uint32_t>(next.amount),
                                 static_cast<std::uint32_t>(std::lround(next.amount * 100)) % 100});
            else
                player.setState(next.what == pause ? play_state::paused : play_state::playing);
            if (next.what == wait)
                player.tick();
            EXPECT_EQ(player.position(), next.expected) << row.name << ", deed " << i;
        }
    }
}

TEST(playback, aFrameThatWasSteppedToStaysThatFrameAtAnyRate)
{
    for (const double rate : {20.0, 24.5, 29.97, 30.0, 59.94})
    {
        double now = 1e6 / 3;
        playback player([&now] { return now; });
        player.load({rate, 1000 / rate, 1001});
        for (std::uint32_t frame = 1; frame < 1000; ++frame)
        {
            player.setState(play_state::paused);
            player.step(1);
            player.setState(play_state::playing);
            player.tick();
            ASSERT_EQ(player.position(), (playback_position{frame, 0})) << rate;
        }
    }
}

TEST(playback, senselessLengthsStandStillAndCanBeStepped)
{
    for (const double wrong : {0.0, -1.0, nan_number, infinite, -infinite})
        for (const bool is_rate : {true, false})
        {
            double now = 0;
            playback player([&now] { return now; });
            player.load(is_rate ? playback_length{wrong, 1, 4} : playback_length{10, wrong, 4});
            now = 3;
            player.tick();
            EXPECT_EQ(player.position(), playback_position{}) << wrong;
            player.step(-1);
            player.tick();
            EXPECT_EQ(player.position(), (playback_position{3, 0})) << wrong;
        }
    double now = 0;
    playback player([&now] { return now; });
    player.step(1);
    player.tick(); // nothing is loaded
    player.load({10, 1, 0});
    player.step(1);
    EXPECT_EQ(player.position(), playback_position{}) << "no frames";
    player.load({1e300, 1e300, 4});
    for (const double time : {1e-300, 1.0, 1e200, -1e300, nan_number, infinite})
    {
        now = time;
        player.tick();
        player.step(std::numeric_limits<std::int64_t>::min());
        player.step(std::numeric_limits<std::int64_t>::max());
        EXPECT_LT(player.position().frame, 4u);
    }
}

TEST(playback, loadingBeginsAtFrame0AndLeavesAPauseAlone)
{
    double now = 0;
    playback player([&now] { return now; });
    player.load(second);
    player.setState(play_state::paused);
    player.step(5);
    player.load(second);
    now = 0.5;
    player.tick();
    EXPECT_EQ(player.position(), playback_position{});
    EXPECT_EQ(player.state(), play_state::paused);
}

TEST(playback, timesFindTheirFrameAndGoRound)
{
    const struct
    {
        double time;
        playback_length length;
        playback_position expected;
    } rows[] = {
        {0, second, {0, 0}},
        {0.40625, second, {6, 0.5f}},
        {1, second, {0, 0}},
        {3.40625, second, {6, 0.5f}},
        {-0.03125, second, {15, 0.5f}},
        {-2, second, {0, 0}},
        {-1e-300, second, {0, 0}},
        {1e18, second, {0, 0}},
        {0.5, {16, 2, 3}, {8, 0}}, // the end time lies beyond the last frame
        {nan_number, second, {0, 0}},
        {infinite, second, {0, 0}},
        {0.5, {nan_number, 1, 17}, {0, 0}},
        {0.5, {16, 0, 17}, {0, 0}},
        {0.5, {1e300, 1, 17}, {0xffffffff, 0}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(positionAt(row.time, row.length), row.expected) << row.time << " at " << row.length.frame_rate;
}

} // namespace

} // namespace korvane
