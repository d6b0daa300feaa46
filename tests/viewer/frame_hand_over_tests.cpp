// The hand-over between window thread and render thread; meant for the thread sanitizer too.

#include "Korvane/viewer/frame_pacer.h"
#include "Korvane/viewer/render_gate.h"

#include <gtest/gtest.h>

#include <thread>

namespace korvane
{

namespace
{

using namespace std::chrono_literals;

// A render thread that reads a plain value only inside frames, as drawables are read.
class test_renderer
{
public:
    test_renderer()
    {
        gate.open();
        m_thread = std::thread([this] { run(); });
    }
    ~test_renderer() { stop(); }
    void stop()
    {
        pacer.stop();
        if (m_thread.joinable())
            m_thread.join();
    }

    render_gate gate;
    frame_pacer pacer;
    int scene_first = 0; // changed behind the gate, always both
    int scene_second = 0;
    std::atomic<int> frames{0};
    std::atomic<int> torn{0};
    std::atomic<std::uint32_t> last_width{0};

private:
    void run()
    {
        for (;;)
        {
            const frame_request request = pacer.next();
            if (request.must_stop)
                return;
            if (!gate.enterFrame() || !request.is_dirty)
                continue;
            const int first = scene_first;
            std::this_thread::sleep_for(200us);
            torn += first != scene_second;
            last_width = request.width;
            ++frames;
        }
    }
    std::thread m_thread;
};

template <class condition>
bool eventually(condition&& holds)
{
    for (int i = 0; i < 4000 && !holds(); ++i)
        std::this_thread::sleep_for(1ms);
    return holds();
}

void makeVisible(frame_pacer& pacer)
{
    pacer.postSize(640, 480);
    pacer.postVisible(true);
}

TEST(FrameHandOver, NothingIsReadWhileTheGateIsClosed)
{
    test_renderer renderer;
    makeVisible(renderer.pacer);
    for (int round = 1; round <= 60; ++round)
    {
        renderer.pacer.post(view_state());
        ASSERT_TRUE(renderer.gate.close(5s, [&] { renderer.pacer.wake(); }));
        const int frames = renderer.frames;
        renderer.scene_first = round;
        if (round % 4 == 0) // hold it closed for longer than a frame
            std::this_thread::sleep_for(2ms);
        renderer.scene_second = round;
        EXPECT_EQ(renderer.frames, frames);
        renderer.gate.open();
        renderer.pacer.wake();
    }
    EXPECT_TRUE(eventually([&] { return renderer.frames > 0; }));
    EXPECT_EQ(renderer.torn, 0);
}

TEST(FrameHandOver, ClosingDoesNotTrustAnOlderAnswer)
{
    render_gate gate;
    gate.open();
    EXPECT_TRUE(gate.enterFrame()); // the render thread is now inside a frame and does not come round
    EXPECT_FALSE(gate.close(5ms, [] {}));
    gate.open();
    EXPECT_FALSE(gate.close(5ms, [] {})) << "still inside the same frame";
    EXPECT_FALSE(gate.enterFrame());
    EXPECT_TRUE(gate.waitClosed(5ms));
}

TEST(FrameHandOver, DrawsOnlyWhenSomethingHasChangedAndCanBeSeen)
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
    ASSERT_TRUE(renderer.gate.close(5s, [&] { renderer.pacer.wake(); })) << "a hidden window answers too";
    EXPECT_EQ(renderer.frames, frames);
}

TEST(FrameHandOver, ManyRequestsMakeAtMostSixtyFramesASecond)
{
    test_renderer renderer;
    makeVisible(renderer.pacer);
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 300; ++i)
    {
        renderer.pacer.post(view_state());
        std::this_thread::sleep_for(1ms);
    }
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    EXPECT_LE(renderer.frames, static_cast<int>(taken.count() * 60) + 2);
    EXPECT_GE(renderer.frames, 3);
}

TEST(FrameHandOver, StoppingIsAnsweredAtOnceAlsoWhilePausing)
{
    frame_pacer pacer;
    makeVisible(pacer);
    ASSERT_TRUE(pacer.next().is_dirty);
    pacer.retryAfter(60s);
    std::thread stopper([&pacer] {
        std::this_thread::sleep_for(20ms);
        pacer.stop();
    });
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(pacer.next().must_stop);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
    stopper.join();
}

} // namespace

} // namespace korvane
