#include "Korvane/viewer/d3d_window.h"
#include "tests/support/mesh_builder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <new>

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
bool pumpUntil(condition&& holds, std::chrono::milliseconds patience = 20s)
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

std::shared_ptr<const RMV2_FILE_DATA> sphere(float radius)
{
    return std::make_shared<RMV2_FILE_DATA>(test::modelOf(test::sphereGroup({0, 0, 0}, radius, 24)));
}

class D3dWindow : public ::testing::Test
{
protected:
    void SetUp() override
    {
        viewer_ports ports;
        ports.log = [this](const std::string& line) { m_lines.push_back(line); };
        ports.closed = [this] { ++m_closings; };
        failure why;
        m_window = d3d_window::create(GetModuleHandleW(nullptr), nullptr, ports, sphere(1), "Z:/nowhere/a", why);
        ASSERT_TRUE(m_window) << describe(why);
    }
    void showSmall()
    {
        SetWindowPos(m_window->handle(), nullptr, 10, 10, 340, 220, SWP_NOZORDER);
        m_window->show();
        ASSERT_TRUE(pumpUntil([this] { return m_window->framesDrawn() > 0; }));
        settle();
    }
    // Until no frame was drawn for a while.
    void settle()
    {
        std::uint64_t frames = 0;
        do
        {
            frames = m_window->framesDrawn();
            pumpUntil([] { return false; }, 250ms);
        } while (frames != m_window->framesDrawn());
    }
    bool drawsAfter(const std::function<void()>& action)
    {
        const std::uint64_t frames = m_window->framesDrawn();
        action();
        return pumpUntil([&] { return m_window->framesDrawn() > frames; }, 5s);
    }

    std::vector<std::string> m_lines;
    int m_closings = 0;
    std::unique_ptr<d3d_window> m_window;
};

TEST_F(D3dWindow, InitialisationLogsItsSteps)
{
    const std::vector<std::string> expected = {"D3dWindow:GFXinit: Create VienAndPerspective Matrices",
                                               "D3dWindow:GFXinit: Create VienAndPerspective Matrices: SUCCESS",
                                               "D3dWindow:GFXinit: Create D3D Device",
                                               "Device created. Sucess",
                                               "Swapchain. Sucess",
                                               "D3dWindow:GFXinit: Create D3D Device: SUCCESS",
                                               "D3dWindow:GFXinit: createTargetTexture()",
                                               "Render Targe. Sucess",
                                               "D3dWindow:GFXinit: createTargetTexture(): SUCCESS",
                                               "D3dWindow:GFXinit: Loading Textures",
                                               "D3dWindow:GFXinit: Loading Textures: SUCESSS",
                                               "D3dWindow:GFXinit: Loading Mesh",
                                               "D3dWindow:GFXinit: Loading Mesh: SUCESSS!",
                                               "D3dWindow:GFXinit: Create Texures Sampeler for shaders",
                                               "D3dWindow:GFXinit: Create Texures Sampeler for shaders: SUCESSS!",
                                               "D3dWindow:GFXinit: Create Depth+Stencil",
                                               "D3dWindow:GFXinit: Create Depth+Stencil: SUCCESS",
                                               "D3dWindow:GFXinit: Create Cube Maps",
                                               "D3dWindow:GFXinit: Create Cube Maps: Success!",
                                               "D3dWindow:GFXinit: Create Costant Buffer",
                                               "D3dWindow:GFXinit: Create Costant Buffer. SUCCESS",
                                               "D3dWindow:GFXinit: Create Index Buffer for oAnimation.",
                                               "D3dWindow:GFXinit: Create Index Buffer for oAnimation. SUCCESS.",
                                               "D3dWindow:GFXinit: Selecting startup Skeleton.",
                                               "D3dWindow:GFXinit: Selecting startup Skeleton. SUCCESS!",
                                               "Create Render Thread",
                                               "DirectX INIT successful!!"};
    std::vector<std::string> seen = m_lines; // without the notes about textures and adapters in between
    std::erase_if(seen, [&](const std::string& line) {
        return std::find(expected.begin(), expected.end(), line) == expected.end();
    });
    EXPECT_EQ(seen, expected);
    EXPECT_EQ(m_window->title(), "Korvane GFX-D3D11 - Move/rotate/Zoom with: A,D,S,W/Q,E,R,T,C,V/Wheel");
    const RECT client = m_window->clientRectangle();
    EXPECT_EQ(client.right, 1280);
    EXPECT_EQ(client.bottom, 720);
}

TEST_F(D3dWindow, DrawsOnceForEachChangeAndThenRests)
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
    settle();
    const std::uint64_t frames = m_window->framesDrawn();
    pumpUntil([] { return false; }, 300ms);
    EXPECT_EQ(m_window->framesDrawn(), frames);
}

TEST_F(D3dWindow, ResizingAndMinimising)
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

TEST_F(D3dWindow, ModelsAreReplacedWhileItDrawsAndWhileItIsHidden)
{
    m_window->setModel(sphere(2), "Z:/nowhere/b");
    showSmall();
    for (int i = 0; i < 8; ++i)
    {
        m_window->redraw();
        m_window->setModel(i % 3 == 2 ? nullptr : sphere(1.0f + static_cast<float>(i)),
                           "Z:/nowhere/" + std::to_string(i));
        pump();
    }
    EXPECT_TRUE(drawsAfter([this] { m_window->redraw(); }));
}

TEST_F(D3dWindow, AModelThatCannotBeBuiltToItsEndLeavesAWorkingView)
{
    class no_memory : public texture_source
    {
    public:
        std::optional<memory_file> read(const std::string&) const override { throw std::bad_alloc(); }
    };
    showSmall();
    group_data group = test::squareGroup(1);
    group.textures.emplace_back().path = "any.dds";
    const auto model = std::make_shared<RMV2_FILE_DATA>(test::modelOf(std::move(group)));
    EXPECT_THROW(m_window->setModel(model, "Z:/nowhere/c", 0, std::make_shared<no_memory>()), std::bad_alloc);
    for (const char* path : {"Z:/nowhere/d", "Z:/nowhere/e"})
    {
        m_window->setModel(sphere(1), path);
        settle();
        EXPECT_TRUE(drawsAfter([this] { m_window->redraw(); })) << path;
    }
}

TEST_F(D3dWindow, ClosingHidesItAndDestructionIsQuick)
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
