// The hand-over between window thread and render thread; meant for the thread sanitizer too.

#include "Korvane/posing/playback.h"

#include <gtest/gtest.h>

#include <thread>

namespace korvane
{

namespace
{

TEST(playback_control, commandsBetweenTwoPicturesAllCount)
{
    double now = 0;
    playback player([&now] { return now; });
    playback_control control;
    player.load({10, 100, 1001});
    now = 0.52;
    control.advance(player);
    EXPECT_EQ(control.shown().frame, 5u);

    control.stepForward();
    control.toggle();
    control.stepForward();
    control.stepForward();
    control.stepBack();
    EXPECT_EQ(control.state(), play_state::paused) << "the button follows the hand, not the picture";
    control.advance(player);
    EXPECT_EQ(control.shown(), (playback_position{7, 0}));
    now = 9;
    control.advance(player);
    EXPECT_EQ(control.shown(), (playback_position{7, 0})) << "once, and paused";

    control.toggle();
    control.toggle();
    control.toggle();
    control.advance(player);
    now = 9.25;
    control.advance(player);
    EXPECT_EQ(control.shown().frame, 9u);
}

TEST(playback_control, noStepIsLostAndNoPositionTornBetweenThreads)
{
    constexpr std::uint32_t presses = 20000;
    playback_control control;
    control.setState(play_state::paused);
    std::atomic<bool> is_done{false};
    std::atomic<std::uint32_t> pictures{0};
    std::thread renderer([&] {
        playback player;
        player.load({10, 1e6, 10'000'000});
        for (; !is_done.load(); ++pictures)
            control.advance(player);
        control.advance(player);
    });
    std::uint32_t last = 0;
    std::uint32_t backwards = 0;
    std::uint32_t torn = 0;
    for (std::uint32_t i = 0; i < presses; ++i)
    {
        if (i % 100 == 0) // both must be at work
            for (const std::uint32_t before = pictures; pictures == before;)
                std::this_thread::yield();
        control.stepForward();
        const playback_position shown = control.shown();
        backwards += shown.frame < last;
        torn += shown.frame > i + 1 || shown.fraction != 0;
        last = shown.frame;
    }
    is_done = true;
    renderer.join();
    EXPECT_EQ(control.shown(), (playback_position{presses, 0}));
    EXPECT_EQ(backwards, 0u);
    EXPECT_EQ(torn, 0u);
}

} // namespace

} // namespace korvane
