// Random commands, keys, clicks, resizes and changes on the disk against the real main window, with its boxes answered
// at random, under a count of handles. Each step is written down before it is made, so that the last line of
// "korvane_monkey.log" in the temporary folder names the step that a crash ended; the same seed makes the same steps.
// KORVANE_TESTS=all makes all of them; by hand:
//
//   KORVANE_MONKEY_SEED=7 KORVANE_MONKEY_STEPS=100000 KORVANE_MONKEY_SECONDS=3600 main_window_tests.exe
//   --gtest_filter=*monkey*

#include "tests/windows/app/main_window_fixture.h"
#include "tests/windows/ui_handles.h"

#include <cstdlib>
#include <fstream>
#include <random>

namespace korvane::test
{
namespace
{

unsigned setting(const char* name, unsigned usual)
{
    const char* const value = std::getenv(name);
    return value != nullptr ? static_cast<unsigned>(std::strtoul(value, nullptr, 10)) : usual;
}

bool isWhole()
{
    const char* const value = std::getenv("KORVANE_TESTS");
    return value != nullptr && std::string_view(value) == "all";
}

class monkey_test : public main_window_test
{
protected:
    void SetUp() override
    {
        main_window_test::SetUp();
        sm_po_monkey = this;
        m_log_of_steps.open(toPath(toUtf8(std::filesystem::temp_directory_path()) + "korvane_monkey.log"));
        for (const std::string name : {"a.rigid_model_v2", "b.rigid_model_v2", "c.rigid_model_v2"})
            m_files.push_back(write(name, soldier()));
        m_files.push_back(write("guard.variantmeshdefinition", std::string(guard_definition)));
        m_files.push_back(write("picture.dds", test_dds().bytes()));
        m_files.push_back(m_folder + "never there.rigid_model_v2");
        m_files.push_back(m_folder);
        m_prompt.while_asking = answerAnyhow();
        m_prompt.while_picking = [this] {
            m_prompt.answer.reset();
            if (draw(4) != 0)
                m_prompt.answer = m_files[draw(m_on_disk)]; // file dialogs give no internal paths
        };
        writeArchive(
            {{"men\\body.rigid_model_v2", soldier().bytes()}, {"men\\guard.variantmeshdefinition", guard_definition}});
        m_on_disk = static_cast<unsigned>(m_files.size());
        m_files.emplace_back("pack:men/body.rigid_model_v2");
        m_files.emplace_back("pack:men/guard.variantmeshdefinition");
        // Runs in every message loop, also those of dialogs and menus.
        m_timer = SetTimer(nullptr, 0, 10, [](HWND, UINT, UINT_PTR, DWORD) { sm_po_monkey->leaveModalLoops(); });
    }
    void TearDown() override
    {
        KillTimer(nullptr, m_timer);
        main_window_test::TearDown();
    }

    std::function<void()> answerAnyhow()
    {
        return [this] {
            m_prompt.will_confirm = draw(2) == 0;
            m_prompt.will_save = static_cast<save_answer>(draw(3));
        };
    }
    unsigned draw(unsigned count) { return static_cast<unsigned>(m_random() % count); }
    std::string anyFile() { return m_files[draw(static_cast<unsigned>(m_files.size()))]; }

    // Real dialogs get Escape or Enter, menus end.
    void leaveModalLoops()
    {
        GUITHREADINFO state{};
        state.cbSize = sizeof state;
        GetGUIThreadInfo(GetCurrentThreadId(), &state);
        if ((state.flags & (GUI_INMENUMODE | GUI_POPUPMENUMODE)) != 0)
            EndMenu();
        if (m_window == nullptr || IsWindowEnabled(m_window->handle()))
            return void(m_patience = 0);
        const HWND dialog = GetLastActivePopup(m_window->handle());
        if (dialog == m_window->handle() || ++m_patience % 3 != 0)
            return;
        const HWND focus = GetFocus() != nullptr && IsChild(dialog, GetFocus()) ? GetFocus() : dialog;
        const WPARAM key = draw(3) == 0 && m_patience < 30 ? VK_RETURN : VK_ESCAPE;
        PostMessageW(focus, WM_KEYDOWN, key, 1);
        PostMessageW(focus, WM_KEYUP, key, 1);
    }

    // Any control, page or list that can be seen.
    HWND anyWindow()
    {
        std::vector<HWND> found{m_window->handle()};
        EnumChildWindows(
            m_window->handle(),
            [](HWND child, LPARAM list) -> BOOL {
                if (IsWindowVisible(child) && IsWindowEnabled(child))
                    reinterpret_cast<std::vector<HWND>*>(list)->push_back(child);
                return TRUE;
            },
            reinterpret_cast<LPARAM>(&found));
        return found[draw(static_cast<unsigned>(found.size()))];
    }

    void command()
    {
        const auto& rows = commandTable();
        const command_row& row = rows[draw(static_cast<unsigned>(rows.size()))];
        note("command " + std::to_string(numberOf(row.command)));
        if (row.command != document_command::exit)
            SendMessageW(m_window->handle(), WM_COMMAND, static_cast<WPARAM>(numberOf(row.command)), 0);
    }
    void recentFile()
    {
        const unsigned place = draw(11);
        note("recent file " + std::to_string(place));
        SendMessageW(m_window->handle(), WM_COMMAND, static_cast<WPARAM>(recent_file_first) + place, 0);
    }
    void key()
    {
        static constexpr unsigned keys[] = {VK_TAB,  VK_RETURN, VK_ESCAPE, VK_SPACE, VK_UP,    VK_DOWN,
                                            VK_LEFT, VK_RIGHT,  VK_HOME,   VK_END,   VK_PRIOR, VK_NEXT,
                                            VK_F4,   VK_F10,    VK_DELETE, 'A'};
        const unsigned code = keys[draw(std::size(keys))];
        note("key " + std::to_string(code));
        const HWND focus = GetFocus() != nullptr ? GetFocus() : m_window->handle();
        PostMessageW(focus, WM_KEYDOWN, code, 1);
        PostMessageW(focus, WM_KEYUP, code, 1);
    }
    void click()
    {
        const HWND at = anyWindow();
        RECT area{};
        GetClientRect(at, &area);
        const LPARAM point = MAKELPARAM(draw(static_cast<unsigned>(std::max<LONG>(1, area.right))),
                                        draw(static_cast<unsigned>(std::max<LONG>(1, area.bottom))));
        static constexpr UINT buttons[][2] = {{WM_LBUTTONDOWN, WM_LBUTTONUP},
                                              {WM_LBUTTONDOWN, WM_LBUTTONUP},
                                              {WM_LBUTTONDBLCLK, WM_LBUTTONUP},
                                              {WM_RBUTTONDOWN, WM_RBUTTONUP}};
        const auto& button = buttons[draw(std::size(buttons))];
        note("click " + std::to_string(button[0]) + " on " + std::to_string(GetDlgCtrlID(at)));
        PostMessageW(at, button[0], 0, point);
        PostMessageW(at, button[1], 0, point);
    }
    void resize()
    {
        const unsigned kind = draw(12);
        note("resize " + std::to_string(kind));
        if (kind < 3)
            ShowWindow(m_window->handle(), kind == 0 ? SW_MINIMIZE : kind == 1 ? SW_MAXIMIZE : SW_RESTORE);
        else if (kind == 3)
        {
            const unsigned dpi = 96 + 24 * draw(5);
            RECT place{20, 20, 900, 700};
            SendMessageW(m_window->handle(), WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&place));
        }
        else
            SetWindowPos(m_window->handle(), nullptr, 0, 0, static_cast<int>(draw(1600)), static_cast<int>(draw(1000)),
                         SWP_NOMOVE | SWP_NOZORDER);
    }
    void dropFiles()
    {
        const std::string path = anyFile();
        note("drop " + path);
        drop(path);
    }
    // A file vanishes, is cut short, grows, or comes back.
    void changeDisk()
    {
        const std::string path = m_files[draw(5)];
        const unsigned kind = draw(4);
        note("disk " + std::to_string(kind) + " " + path);
        std::error_code error;
        if (kind == 0)
            std::filesystem::remove_all(toPath(path), error);
        else if (std::filesystem::is_directory(toPath(path), error)) // which a command made of it
            return;
        else if (kind == 1)
            std::filesystem::resize_file(toPath(path), draw(800), error);
        else if (path.ends_with("_v2"))
            write(std::filesystem::path(toPath(path)).filename().string(),
                  soldier().bytes() + std::string(draw(2), ' '));
    }
    void choiceOfList()
    {
        static constexpr int lists[] = {control_lod, control_group, control_tool_alpha_mode};
        const int id = lists[draw(std::size(lists))];
        const int position = static_cast<int>(draw(7)) - 1;
        note("choose " + std::to_string(id) + " " + std::to_string(position));
        if (IsWindowEnabled(find(id)))
            choose(id, position);
    }
    void note(const std::string& step)
    {
        m_step = step;
        m_log_of_steps << m_steps_made << ": " << step << std::endl;
    }
    void step()
    {
        const unsigned kind = draw(100);
        if (kind < 20)
            command();
        else if (kind < 22)
            recentFile();
        else if (kind < 55)
            key();
        else if (kind < 85)
            click();
        else if (kind < 87)
            resize();
        else if (kind < 88)
            dropFiles();
        else if (kind < 90)
            changeDisk();
        else
            choiceOfList();
        ++m_steps_made;
        dispatchWaiting();
    }
    // Nothing open, every handle that comes and goes is gone.
    ui_handles settledHandles()
    {
        for (int i = 0; i < 20; ++i)
        {
            leaveModalLoops();
            pump();
        }
        // What stands beside the main window: the playback box, files that are looked at.
        EnumThreadWindows(
            GetCurrentThreadId(),
            [](HWND each, LPARAM main) -> BOOL {
                if (each != reinterpret_cast<HWND>(main) && IsWindowVisible(each) != 0 &&
                    dynamic_cast<dialog_box*>(window::fromHandle(each)) != nullptr)
                    PostMessageW(each, WM_CLOSE, 0, 0);
                return TRUE;
            },
            reinterpret_cast<LPARAM>(m_window->handle()));
        pump();
        ShowWindow(m_window->handle(), SW_RESTORE);
        RECT place{20, 20, 900, 700};
        SendMessageW(m_window->handle(), WM_DPICHANGED, MAKEWPARAM(96, 96), reinterpret_cast<LPARAM>(&place));
        m_prompt.while_asking = [this] {
            m_prompt.will_confirm = true;
            m_prompt.will_save = save_answer::discard;
        };
        choose(document_command::reset);
        m_prompt.while_asking = answerAnyhow();
        for (int i = 0; i < 5; ++i) // all pages have their controls then
        {
            SendMessageW(m_window->handle(), WM_COMMAND, MAKELONG(next_page_command, 1), 0);
            pump();
        }
        EXPECT_FALSE(m_window->document().model().hasModel());
        return uiHandlesOf(GetCurrentProcess());
    }

    static inline monkey_test* sm_po_monkey = nullptr;
    std::mt19937 m_random{setting("KORVANE_MONKEY_SEED", 1)};
    std::vector<std::string> m_files; // those of the archives are the last ones
    unsigned m_on_disk = 0;           // of them
    std::ofstream m_log_of_steps;
    std::string m_step;
    unsigned m_steps_made = 0;
    unsigned m_patience = 0;
    UINT_PTR m_timer = 0;
};

TEST_F(monkey_test, randomStepsLeaveTheWindowWholeAndNoHandleBehind)
{
    openWindow(m_files[0]);
    const unsigned steps = setting("KORVANE_MONKEY_STEPS", isWhole() ? 10000 : 1500);
    const auto start = std::chrono::steady_clock::now();
    const auto end = start + std::chrono::seconds(setting("KORVANE_MONKEY_SECONDS", 150));
    ui_handles before;
    while (m_steps_made < steps && std::chrono::steady_clock::now() < end)
    {
        step();
        ASSERT_TRUE(m_window->isOpen()) << m_steps_made << ": " << m_step;
        ASSERT_EQ(m_window->title(), m_window->document().title()) << m_steps_made << ": " << m_step;
        m_prompt.shown.clear();
        // The system keeps pictures of its theme and icons from their first use on.
        if (before.gdi == 0 &&
            (m_steps_made >= steps / 3 || std::chrono::steady_clock::now() > start + (end - start) / 3))
            before = settledHandles();
    }
    const ui_handles after = settledHandles();
    std::printf("%u steps, %lld s; %+d GDI handles, %+d user handles\n", m_steps_made,
                static_cast<long long>(
                    std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - start).count()),
                after.gdi - before.gdi, after.user - before.user);
    if (!isWhole()) // after few steps much is still made for the first time, and kept
        return;
    constexpr int late_pictures = 6; // of the theme, for what nobody had pointed at before
    constexpr int late_windows = 4;  // of the system, made once
    EXPECT_LE(after.gdi, before.gdi + late_pictures);
    EXPECT_LE(after.user, before.user + late_windows);
}

TEST_F(main_window_test, opensLeaveNoHandleBehind)
{
    const std::string files[] = {write("soldier.rigid_model_v2", soldier()),
                                 write("guard.variantmeshdefinition", std::string(guard_definition))};
    openWindow();
    const auto open = [&](int count) {
        for (int i = 0; i < count; ++i)
            ASSERT_TRUE(openFile(files[i % 2]));
    };
    open(10);
    const ui_handles before = uiHandlesOf(GetCurrentProcess());
    open(isWhole() ? 60 : 10); // bench_window does so a thousand times with the real program
    const ui_handles after = uiHandlesOf(GetCurrentProcess());
    EXPECT_EQ(after.gdi, before.gdi);
    EXPECT_EQ(after.user, before.user);
}

} // namespace
} // namespace korvane::test
