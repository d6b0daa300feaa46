#include "D3D11_RENDER_LIB/device_faults.h"
#include "Korvane/scene/scene_loader.h"
#include "Korvane/viewer/d3d_window.h"
#include "Korvane/viewer/key_table.h"
#include "tests/support/arm_scene.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <limits>
#include <random>

namespace korvane
{

namespace
{

using namespace std::chrono_literals;
using clock = std::chrono::steady_clock;

void pump()
{
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
    {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

template <class condition>
bool pumpUntil(condition&& holds, std::chrono::milliseconds patience = 60s)
{
    const auto until = clock::now() + patience;
    while (!holds())
    {
        if (clock::now() > until)
            return false;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
        pump();
    }
    return true;
}

scene_pointer sphere(float radius, const std::string& path = "Z:/nowhere/a")
{
    return scene_loader({}).loadModel(
        std::make_shared<RMV2_FILE_DATA>(test::modelOf(test::sphereGroup({0, 0, 0}, radius, 24))), path);
}

class d3d_window_test : public ::testing::Test
{
protected:
    void SetUp() override
    {
        viewer_ports ports;
        ports.log = [this](const std::string& line) { m_lines.push_back(line); };
        ports.closed = [this] { ++m_closings; };
        failure why;
        m_window = d3d_window::create(nullptr, ports, sphere(1), why);
        ASSERT_TRUE(m_window) << describe(why);
    }
    void showSmall()
    {
        SetWindowPos(m_window->handle(), nullptr, 10, 10, 340, 220, SWP_NOZORDER);
        m_window->show();
        ASSERT_TRUE(pumpUntil([this] { return m_window->framesDrawn() > 0; }));
        settle();
    }
    // Until no frame was drawn for a while: a longer one where a frame takes long.
    void settle()
    {
        const auto begin = clock::now();
        ASSERT_TRUE(drawsAfter([this] { m_window->redraw(); }));
        const auto frame = std::chrono::duration_cast<std::chrono::milliseconds>(clock::now() - begin);
        std::uint64_t frames = 0;
        do
        {
            frames = m_window->framesDrawn();
            pumpUntil([] { return false; }, 250ms + 10 * frame);
        } while (frames != m_window->framesDrawn());
    }
    bool drawsAfter(const std::function<void()>& action)
    {
        const std::uint64_t frames = m_window->framesDrawn();
        action();
        return pumpUntil([&] { return m_window->framesDrawn() > frames; });
    }

    std::vector<std::string> m_lines;
    int m_closings = 0;
    std::unique_ptr<d3d_window> m_window;
};

TEST_F(d3d_window_test, initialisationLogsEachStepAndThatItWorked)
{
    const std::string mark = "D3dWindow:GFXinit: ";
    std::string begun; // the step that has not said that it worked; a full stop at its end is not repeated
    std::size_t steps = 0;
    for (const std::string& line : m_lines)
        if (line.starts_with(mark) && begun.empty())
            begun = line.substr(0, line.find_last_not_of('.') + 1);
        else if (line.starts_with(mark))
        {
            EXPECT_TRUE(line.starts_with(begun)) << line;
            begun.clear();
            ++steps;
        }
    EXPECT_EQ(steps, 11u);
    EXPECT_TRUE(begun.empty()) << begun;
    EXPECT_EQ(std::count(m_lines.begin(), m_lines.end(), "DirectX INIT successful!!"), 1);
    EXPECT_EQ(m_window->title(), "Korvane GFX-D3D11 - Move/rotate/Zoom with: A,D,S,W/Q,E,R,T,C,V/Wheel");
    EXPECT_EQ(m_window->clientRectangle().right, 1280);
    EXPECT_EQ(m_window->clientRectangle().bottom, 720);
}

TEST_F(d3d_window_test, drawsOnceForEachChangeAndThenRests)
{
    EXPECT_FALSE(pumpUntil([this] { return m_window->framesDrawn() > 0; }, 200ms)) << "still hidden";
    showSmall();
    const HWND handle = m_window->handle();
    const float yaw = m_window->view().eye.yaw;
    EXPECT_TRUE(drawsAfter([&] { PostMessageW(handle, WM_KEYDOWN, 'A', 0); }));
    EXPECT_NEAR(m_window->view().eye.yaw, yaw + 0.06f, 1e-5f);
    const float distance = m_window->view().eye.distance;
    EXPECT_TRUE(drawsAfter([&] { PostMessageW(handle, WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA), 0); }));
    EXPECT_LT(m_window->view().eye.distance, distance) << "away from the person: closer";
    EXPECT_TRUE(drawsAfter([&] {
        PostMessageW(handle, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(50, 50));
        PostMessageW(handle, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(90, 50));
        PostMessageW(handle, WM_LBUTTONUP, 0, MAKELPARAM(90, 50));
    }));
    EXPECT_GT(std::abs(m_window->view().eye.yaw - yaw - 0.06f), 0.1f) << "dragging turns";
    m_window->setScene(sphere(1)); // of the same path: the camera stays
    EXPECT_LT(m_window->view().eye.distance, distance);
    SendMessageW(handle, WM_KEYDOWN, 'V', 0); // the next frame may be the scene's own
    EXPECT_EQ(m_window->view().eye.yaw, yaw);
    EXPECT_EQ(m_window->view().eye.distance, distance);
    SendMessageW(handle, WM_KEYDOWN, 'A', 0);
    m_window->setScene(sphere(1, "Z:/nowhere/b"), "a notice");
    EXPECT_EQ(m_window->view().eye.yaw, yaw) << "another model is seen as the first one was";
    EXPECT_TRUE(FindWindowW(nullptr, L"a notice"));
    m_window->setScene(sphere(1));
    EXPECT_FALSE(FindWindowW(nullptr, L"a notice"));
    settle();
    const std::uint64_t frames = m_window->framesDrawn();
    pumpUntil([] { return false; }, 300ms);
    EXPECT_EQ(m_window->framesDrawn(), frames);
}

TEST_F(d3d_window_test, resizingAndMinimising)
{
    showSmall();
    const HWND handle = m_window->handle();
    for (const int size : {200, 420, 150, 360})
        EXPECT_TRUE(
            drawsAfter([&] { SetWindowPos(handle, nullptr, 0, 0, size * 2, size, SWP_NOMOVE | SWP_NOZORDER); }));
    settle();
    ShowWindow(handle, SW_MINIMIZE);
    pumpUntil([] { return false; }, 300ms);
    const std::uint64_t frames = m_window->framesDrawn();
    for (int i = 0; i < 20; ++i)
        m_window->redraw();
    pumpUntil([] { return false; }, 300ms);
    EXPECT_EQ(m_window->framesDrawn(), frames) << "nothing is drawn while minimised";
    EXPECT_TRUE(drawsAfter([&] { m_window->show(); }));
}

TEST_F(d3d_window_test, scenesAreReplacedWhileItDrawsAndWhileItIsHidden)
{
    m_window->setScene(sphere(2, "Z:/nowhere/b"));
    showSmall();
    for (int i = 0; i < 8; ++i)
    {
        m_window->redraw();
        m_window->setScene(i % 3 == 2 ? nullptr
                                      : sphere(1.0f + static_cast<float>(i), "Z:/nowhere/" + std::to_string(i)));
        pump();
    }
    EXPECT_TRUE(drawsAfter([this] { m_window->redraw(); }));
}

// KORVANE_VIEW_SECONDS: how long.
TEST_F(d3d_window_test, survivesScenesAnimationsKeysClicksAndSizesInAnyOrder)
{
    const char* const wanted = std::getenv("KORVANE_VIEW_SECONDS");
    const auto until = clock::now() + std::chrono::seconds(wanted ? std::max(std::atoi(wanted), 1) : 4);
    const auto arm = test::armScene();
    arm->path = "Z:/nowhere/arm";
    const auto broken = test::quarterTurn();
    broken->rotations[1].x = std::numeric_limits<float>::quiet_NaN();
    const std::vector<scene_pointer> scenes{nullptr, sphere(1), arm, std::make_shared<loaded_scene>(*arm)};
    const std::vector<std::shared_ptr<const anim_data>> animations{test::quarterTurn(), broken,
                                                                   test::quarterTurn("leg")};
    std::mt19937 random(7);
    const auto below = [&random](std::size_t count) { return random() % count; };
    const HWND handle = m_window->handle();
    showSmall();
    int steps = 0;
    for (; clock::now() < until; ++steps)
    {
        const LPARAM at = MAKELPARAM(below(340), below(220));
        const std::span<const view_key> keys = viewKeys();
        switch (below(7))
        {
        case 0:
            m_window->setScene(scenes[below(scenes.size())]);
            break;
        case 1:
            m_window->setAnimations({animations[below(animations.size())]});
            break;
        case 2:
            SetWindowPos(handle, nullptr, 0, 0, static_cast<int>(below(500)), static_cast<int>(below(400)),
                         SWP_NOZORDER | SWP_NOMOVE);
            break;
        case 3:
            ShowWindow(handle, below(4) == 0 ? SW_MINIMIZE : SW_SHOWNOACTIVATE);
            break;
        case 4:
            PostMessageW(handle, WM_LBUTTONDOWN, MK_LBUTTON, at);
            PostMessageW(handle, WM_LBUTTONUP, 0, at);
            break;
        case 5:
            PostMessageW(handle, WM_MOUSEMOVE, 0, at);
            break;
        default:
            PostMessageW(handle, WM_KEYDOWN, keys[below(keys.size())].code, 0);
        }
        pumpUntil([] { return false; }, 10ms);
    }
    m_window->setAnimations({});
    m_window->show();
    EXPECT_TRUE(drawsAfter([this] { m_window->setScene(sphere(1)); })) << steps << " steps";
}

TEST_F(d3d_window_test, keysHeldWithControlOrAltAreNotForTheView)
{
    showSmall();
    for (const int modifier : {VK_CONTROL, VK_MENU})
    {
        BYTE keys[256] = {};
        keys[modifier] = 0x80;
        SetKeyboardState(keys);
        SendMessageW(m_window->handle(), WM_KEYDOWN, 'O', 0);
        keys[modifier] = 0;
        SetKeyboardState(keys);
        EXPECT_FALSE(m_window->view().shows_plain);
    }
    SendMessageW(m_window->handle(), WM_KEYDOWN, 'O', 0);
    EXPECT_TRUE(m_window->view().shows_plain);
}

TEST_F(d3d_window_test, aLostDeviceIsMadeAgain)
{
    const struct
    {
        const char* name;
        std::function<void(device_faults&)> plan;
        const char* said;
    } rows[] = {
        {"at Present", [](device_faults& f) { f.lose(device_step::present, 1); },
         "d3d_window: the graphics device was made again"},
        {"at Present, twice", [](device_faults& f) { f.lose(device_step::present, 2); },
         "d3d_window: try 1 of 3 to make it again failed (887A0005)"},
        {"at a new size", [](device_faults& f) { f.lose(device_step::resize, 1); },
         "d3d_window: the graphics device was lost (887A0005)"},
        {"and again while it is made",
         [](device_faults& f) {
             f.lose(device_step::present, 1);
             f.lose(device_step::creation, 1, 20);
         },
         "d3d_window: try 1 of 3 to make it again failed (887A0005)"},
        {"and no hardware comes back",
         [](device_faults& f) {
             f.lose(device_step::present, 1);
             f.lose(device_step::device, 2);
         },
         "d3d_window: the software device draws instead"},
    };
    showSmall();
    int height = 240;
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.name);
        m_lines.clear();
        row.plan(m_window->faults());
        EXPECT_TRUE(drawsAfter(
            [&] { SetWindowPos(m_window->handle(), nullptr, 0, 0, 340, height += 10, SWP_NOMOVE | SWP_NOZORDER); }));
        EXPECT_TRUE(pumpUntil([&] { return std::count(m_lines.begin(), m_lines.end(), row.said) == 1; }));
        EXPECT_FALSE(m_window->isWaitingForDevice());
        settle();
    }
    m_window->setScene(sphere(2, "Z:/nowhere/b"));
    EXPECT_TRUE(drawsAfter([] {})) << "the new device shows new scenes";
}

TEST_F(d3d_window_test, withoutAnyDeviceItSaysSoAndWaitsForEnter)
{
    showSmall();
    m_window->faults().lose(device_step::present, 1);
    m_window->faults().lose(device_step::device, 100);
    m_window->redraw();
    ASSERT_TRUE(pumpUntil([this] { return m_window->isWaitingForDevice(); }));
    const HWND notice = FindWindowW(nullptr, L"The graphics device was lost, and none could be made again: neither the "
                                             L"hardware nor the software device.\r\nWhat you have open is not "
                                             L"touched.\r\n\r\nPress Enter to try again.");
    EXPECT_TRUE(IsWindowVisible(notice));
    RECT covered{};
    GetWindowRect(notice, &covered);
    EXPECT_EQ(covered.right - covered.left, m_window->clientRectangle().right);
    EXPECT_EQ(m_lines.back(), "d3d_window: no graphics device could be made again; the view waits for a key");

    const std::uint64_t frames = m_window->framesDrawn();
    SendMessageW(m_window->handle(), WM_KEYDOWN, VK_RETURN, 0); // in vain: it is still gone
    m_lines.clear();
    ASSERT_TRUE(pumpUntil([this] { return !m_lines.empty() && m_lines.back().ends_with("waits for a key"); }));
    EXPECT_EQ(m_window->framesDrawn(), frames);
    m_window->setScene(sphere(2, "Z:/nowhere/b")); // is shown when there is a device again
    m_window->faults().lose(device_step::device, 0);
    SendMessageW(m_window->handle(), WM_KEYDOWN, VK_RETURN, 0);
    EXPECT_TRUE(pumpUntil([&] { return m_window->framesDrawn() > frames; }));
    EXPECT_TRUE(pumpUntil([this] { return !m_window->isWaitingForDevice(); }));
}

TEST_F(d3d_window_test, closingHidesItAndDestructionIsQuick)
{
    showSmall();
    SendMessageW(m_window->handle(), WM_CLOSE, 0, 0);
    EXPECT_EQ(m_closings, 1);
    EXPECT_FALSE(m_window->isVisible());
    EXPECT_TRUE(drawsAfter([this] { m_window->show(); }));
    for (int i = 0; i < 50; ++i)
        m_window->redraw();
    const auto start = clock::now();
    m_window.reset();
    EXPECT_LT(clock::now() - start, 3s);
}

} // namespace

} // namespace korvane
