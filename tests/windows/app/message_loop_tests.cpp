// Keys of fields before shortcuts, and the end of a program that cannot go on.

#include "EASY_GUI/win32/edit_box.h"
#include "Korvane/app/fatal_end.h"
#include "tests/windows/app/main_window_fixture.h"

#include <thread>

namespace korvane::test
{
namespace
{

TEST_F(main_window_test, textKeysGoToTheFieldThatCanDoThemAndElseToTheTable)
{
    class counting_window : public plain_window
    {
    public:
        std::string commands;

    protected:
        bool onCommand(int id, int notification, HWND) override
        {
            if (notification == 1)
                commands += static_cast<char>(id);
            return true;
        }
    };
    openWindow();
    counting_window main;
    std::vector<shortcut> shortcuts;
    for (const char key : std::string("ACVXZO"))
        shortcuts.push_back({FCONTROL, static_cast<WORD>(key), static_cast<WORD>(key)});
    const unique_accelerators table = makeAccelerators(shortcuts);
    m_loop = std::make_unique<message_loop>(main, table.get());
    edit_box editable, readable;
    ASSERT_TRUE(editable.create(main.handle(), 1, edit_box::access::editable));
    ASSERT_TRUE(readable.create(main.handle(), 2, edit_box::access::read_only));

    const struct
    {
        const edit_box& field;
        bool has_selection;
        const char* commands; // the others are the field's
    } rows[] = {{editable, true, "O"}, {editable, false, "CO"}, {readable, true, "VXZO"}, {readable, false, "CVXZO"}};
    for (const auto& row : rows)
    {
        SetWindowTextW(row.field.handle(), L"text");
        main.commands.clear();
        SetFocus(row.field.handle());
        for (const char key : std::string("CVXZOA"))
        {
            SendMessageW(row.field.handle(), EM_SETSEL, 0, row.has_selection ? 2 : 0);
            pressWithControl(static_cast<WORD>(key));
        }
        EXPECT_EQ(main.commands, row.commands);
    }
    SetFocus(main.handle());
    main.commands.clear();
    pressWithControl('Z');
    EXPECT_EQ(main.commands, "Z");
}

TEST(message_loop, inContinuousModeTheLoopWorksWhileNothingWaitsAndACommandIsNoKey)
{
    class key_window : public plain_window
    {
    public:
        int commands = 0, keys = 0;

    protected:
        bool onCommand(int, int, HWND) override { return ++commands > 0; }
        bool onKeyDown(unsigned key, bool) override { return keys += key == VK_F1 ? 1 : 0, true; }
    };
    const unique_accelerators table = makeAccelerators(std::vector<shortcut>{{0, VK_F1, 7}});
    for (const bool is_continuous : {false, true})
    {
        key_window main;
        message_loop loop(main, table.get());
        int idle = 0;
        if (is_continuous)
            loop.setIdleWork([&] { ++idle == 3 ? PostQuitMessage(5) : static_cast<void>(0); });
        PostMessageW(main.handle(), WM_KEYDOWN, VK_F1, 1);
        if (!is_continuous)
            PostQuitMessage(5);
        EXPECT_EQ(loop.run(), 5);
        EXPECT_EQ(main.commands, 1);
        EXPECT_EQ(main.keys, is_continuous ? 0 : 1);
        EXPECT_EQ(idle, is_continuous ? 3 : 0);
    }
}

class fatal_end_test : public main_window_test
{
protected:
    fatal_end m_end{{m_keeper, [this](const std::string& line) { m_log.write(line + "\r\n"); },
                     [this](const std::string& text, HWND) {
                         m_shown = text;
                         m_shown_by = GetCurrentThreadId();
                     },
                     [this] { ++m_ends; }}};
    std::string m_shown;
    DWORD m_shown_by = 0;
    std::atomic<int> m_ends{0};
};

TEST_F(fatal_end_test, editsAreKeptTheLogHasTheReasonAndTheWindowThreadShowsIt)
{
    const std::string path = write("soldier.rigid_model_v2", soldier());
    openWindow();
    failure why;
    ASSERT_TRUE(m_end.open(why)) << describe(why);
    open_files edited;
    edited.model().setKeeper(m_keeper);
    ASSERT_TRUE(edited.open(path, why)) << describe(why);
    edited.model().chooseAlphaMode(1);

    std::thread render([this] { m_end.report("Assertion failed: SUCCEEDED(hr), file d3d_window"); });
    EXPECT_TRUE(pumpUntil([this] { return m_ends == 1; }));
    render.join();
    EXPECT_EQ(m_shown_by, GetCurrentThreadId());
    EXPECT_NE(m_shown.find("Assertion failed: SUCCEEDED(hr), file d3d_window\r\n\r\nThe changes"), std::string::npos)
        << m_shown;
    EXPECT_NE(logText().find("SUCCEEDED(hr), file d3d_window"), std::string::npos);
    EXPECT_TRUE(std::filesystem::exists(toPath(m_folder + "kept\\1\\model.rigid_model_v2")));
    m_end.report("once more");
    EXPECT_EQ(m_ends, 1) << "the first reason is the one that is shown";
}

TEST_F(fatal_end_test, aWindowThreadThatWaitsForTheReporterDoesNotHoldItUp)
{
    openWindow();
    failure why;
    ASSERT_TRUE(m_end.open(why)) << describe(why);
    DWORD reporter = 0;
    std::thread render([&] {
        reporter = GetCurrentThreadId();
        m_end.report("the device cannot be made");
    });
    render.join(); // as the window does that ends its render thread
    EXPECT_EQ(m_shown_by, reporter);
    EXPECT_TRUE(m_shown.ends_with("the device cannot be made")) << "nothing was edited: " << m_shown;
    pump(); // the message that came too late
    EXPECT_EQ(m_ends, 1);
}

} // namespace
} // namespace korvane::test
