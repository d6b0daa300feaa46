// The hand-over between window thread and render thread; meant for the thread sanitizer too.

#include "Korvane/viewer/frame_pacer.h"
#include "Korvane/viewer/moving_size.h"
#include "Korvane/viewer/render_gate.h"

#include <gtest/gtest.h>

#include <thread>

namespace korvane
{

namespace
{

using namespace std::chrono_literals;

// What is handed over: both numbers always agree.
struct test_scene
{
    int first = 0;
    int second = 0;
};

// A render thread as the real one: it takes the scene whole at the top of a frame.
class test_renderer
{
public:
    test_renderer() : m_thread([this] { run(); }) {}
    ~test_renderer() { stop(); }
    void stop()
    {
        pacer.stop();
        if (m_thread.joinable())
            m_thread.join();
    }

    gated_value<test_scene> published;
    frame_pacer pacer;
    std::atomic<int> frames{0};
    std::atomic<int> torn{0};
    std::atomic<int> shown{0};
    std::atomic<std::uint32_t> last_width{0};

private:
    void run()
    {
        std::shared_ptr<const test_scene> scene = std::make_shared<test_scene>();
        for (;;)
        {
            const frame_request request = pacer.next();
            if (request.must_stop)
                return;
            static_cast<void>(published.take(scene));
            if (scene)
            {
                torn += scene->first != scene->second;
                shown = scene->second;
            }
            std::this_thread::sleep_for(200us);
            last_width = request.width;
            ++frames;
        }
    }
    std::thread m_thread;
};

template <class condition>
bool eventually(condition&& holds)
{
    for (int i = 0; i < 60000 && !holds(); ++i)
        std::this_thread::sleep_for(1ms);
    return holds();
}

void makeVisible(frame_pacer& pacer)
{
    pacer.postSize(640, 480);
    pacer.postVisible(true);
}

TEST(frame_hand_over, scenesArriveWholeAndTheLastOneStays)
{
    test_renderer renderer;
    makeVisible(renderer.pacer);
    for (int round = 1; round <= 2000; ++round)
    {
        renderer.published.publish(std::make_shared<test_scene>(test_scene{round, round}));
        renderer.pacer.redraw();
        if (round % 100 == 0)
            std::this_thread::sleep_for(2ms);
    }
    EXPECT_TRUE(eventually([&] { return renderer.shown == 2000; }));
    EXPECT_EQ(renderer.torn, 0);
}

TEST(frame_hand_over, theGateKeepsOneSideOut)
{
    render_gate gate;
    ASSERT_TRUE(gate.enter());
    std::atomic<bool> is_closed{false};
    std::thread window([&] {
        gate.close();
        is_closed = true;
    });
    std::this_thread::sleep_for(20ms);
    EXPECT_FALSE(is_closed) << "the render thread is still inside";
    gate.leave();
    window.join();
    EXPECT_FALSE(gate.enter());
    EXPECT_FALSE(gate.enter()) << "looking does not open it";
    gate.open();
    EXPECT_TRUE(gate.enter());
}

TEST(frame_hand_over, drawsOnlyWhenSomethingHasChangedAndCanBeSeen)
{
    test_renderer renderer;
    renderer.pacer.postSize(640, 480);
    renderer.pacer.post(view_state());
    std::this_thread::sleep_for(60ms);
    EXPECT_EQ(renderer.frames, 0) << "hidden";
    renderer.pacer.postVisible(true);
    EXPECT_TRUE(eventually([&] { return renderer.frames == 1; }));
    std::this_thread::sleep_for(80ms);
    EXPECT_EQ(renderer.frames, 1) << "nothing has changed";
    renderer.pacer.postSize(0, 480);
    renderer.pacer.post(view_state());
    std::this_thread::sleep_for(60ms);
    EXPECT_EQ(renderer.frames, 1) << "empty";
    renderer.pacer.postSize(800, 600);
    EXPECT_TRUE(eventually([&] { return renderer.last_width == 800; }));
    renderer.pacer.postVisible(false);
    const int frames = renderer.frames;
    renderer.published.publish(std::make_shared<test_scene>(test_scene{7, 7}));
    renderer.pacer.redraw();
    std::this_thread::sleep_for(60ms);
    EXPECT_LE(renderer.frames, frames + 1) << "one may have been on its way";
    renderer.pacer.postVisible(true);
    EXPECT_TRUE(eventually([&] { return renderer.shown == 7; }));
}

TEST(frame_hand_over, wherePresentingDoesNotWaitFramesKeepToTheScreen)
{
    test_renderer renderer;
    renderer.pacer.postRefreshRate(75);
    makeVisible(renderer.pacer);
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 300; ++i)
    {
        renderer.pacer.post(view_state());
        std::this_thread::sleep_for(1ms);
    }
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    EXPECT_LE(renderer.frames, static_cast<int>(taken.count() * 100) + 2) << "a little faster than the screen";
    EXPECT_GE(renderer.frames, 3);
}

TEST(frame_hand_over, whatMovesIsDrawnOnItsOwnUpToTheLimitOfTheDrawMode)
{
    test_renderer renderer;
    makeVisible(renderer.pacer);
    renderer.pacer.postMoving(true);
    EXPECT_TRUE(eventually([&] { return renderer.frames >= 5; })) << "nothing was posted";
    view_state wireframe;
    wireframe.onKey('C');
    renderer.pacer.post(wireframe);
    std::this_thread::sleep_for(50ms);
    int frames = renderer.frames;
    const auto begin = std::chrono::steady_clock::now();
    std::this_thread::sleep_for(400ms);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
    EXPECT_LE(renderer.frames, frames + 2 + static_cast<int>(taken.count())) << "one a second";
    frames = renderer.frames;
    renderer.pacer.post(wireframe);
    EXPECT_TRUE(eventually([&] { return renderer.frames > frames; })) << "what the person does is drawn at once";
    renderer.pacer.post(view_state()); // many a second again
    renderer.pacer.postMoving(false);
    std::this_thread::sleep_for(50ms);
    frames = renderer.frames;
    std::this_thread::sleep_for(200ms);
    EXPECT_LE(renderer.frames, frames + 1) << "one may have been on its way";
}

TEST(frame_hand_over, framesAreQuickWhileThePictureMovesAndOneThatIsNotComesAfterThem)
{
    frame_pacer pacer;
    makeVisible(pacer);
    view_state view;
    const auto isQuick = [&](bool is_turned) {
        if (is_turned)
            view.eye.turn(0.1f, 0);
        pacer.post(view);
        return pacer.next().is_quick;
    };
    EXPECT_FALSE(isQuick(true)) << "one step stays sharp";
    auto moved = std::chrono::steady_clock::now();
    EXPECT_TRUE(eventually([&] { return moved = std::chrono::steady_clock::now(), isQuick(true); }));
    EXPECT_FALSE(pacer.next().is_quick) << "nothing was posted";
    EXPECT_GE(std::chrono::steady_clock::now() - moved, frame_pacer::settled / 2);
    view.show_reflections = false;
    EXPECT_FALSE(isQuick(false));
    EXPECT_FALSE(isQuick(false)) << "what changes is not the place";
    pacer.postMoving(true);
    EXPECT_TRUE(pacer.next().is_quick);
    pacer.postMoving(false);
    EXPECT_FALSE(pacer.next().is_quick);
}

TEST(moving_size, shrinksWhileFramesAreSlowAndGrowsWhenTheyWouldStayQuick)
{
    const struct
    {
        double seconds; // of a whole frame
        double scale;   // in the end
    } rows[] = {{0.010, 1}, {0.017, 1}, {0.030, 0.7}, {0.045, 0.5}, {0.5, 0.5}, {0.020, 0.7}, {0.010, 1}};
    moving_size size;
    for (const auto& row : rows)
    {
        for (int frame = 0; frame < 400; ++frame)
            size.took(row.seconds * size.scale() * size.scale());
        EXPECT_EQ(size.scale(), row.scale) << row.seconds;
    }
}

TEST(frame_hand_over, stoppingIsAnsweredAtOnceAlsoWhilePausing)
{
    frame_pacer pacer;
    makeVisible(pacer);
    ASSERT_FALSE(pacer.next().must_stop);
    pacer.retryAfter(60s);
    std::thread stopper([&pacer] {
        std::this_thread::sleep_for(20ms);
        pacer.stop();
    });
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(pacer.next().must_stop);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 30s);
    stopper.join();
}

} // namespace

} // namespace korvane
