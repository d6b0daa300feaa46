#pragma once

// The real main window for tests, driven by messages and key presses. Boxes, file dialogs and the three-dimensional
// view are replaced at the window's own seams.

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/win32/message_loop.h"
#include "EASY_GUI/win32/wide_text.h"
#include "Korvane/app/command_ids.h"
#include "Korvane/app/main_window.h"
#include "Korvane/archives/pack_file.h"
#include "tests/support/dds_builder.h"
#include "tests/support/model_builder.h"
#include "tests/support/pack_builder.h"
#include "tests/support/recording_prompt.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <functional>
#include <shlobj.h>

namespace korvane::test
{

class plain_window : public window // top-level, visible
{
public:
    plain_window()
    {
        window_settings settings;
        settings.style = WS_POPUP | WS_VISIBLE;
        settings.x = settings.y = settings.width = settings.height = 40;
        failure why;
        EXPECT_TRUE(create(settings, why)) << describe(why);
    }
};

struct view_record
{
    int made = 0, shown = 0, destroyed = 0;
    std::string notice;
    std::vector<std::pair<std::string, std::size_t>> models; // file name and LOD
    std::vector<std::vector<std::string>> definitions;       // the models of each that can be drawn
    std::optional<shown_group> selected;
    std::size_t animations = 0;
    view_events events;
    picture_request picture;    // that was made last
    std::vector<unsigned> keys; // pressed without Ctrl, as far as the view can tell
};

class recording_view : public model_view
{
public:
    explicit recording_view(view_record& record) : m_record(record) { ++m_record.made; }
    ~recording_view() override { ++m_record.destroyed; }
    void setScene(scene_pointer scene, const std::string& notice) override
    {
        m_record.notice = notice;
        ASSERT_NE(scene, nullptr);
        if (isDefinitionPath(scene->path))
            std::transform(scene->parts.begin(), scene->parts.end(),
                           std::back_inserter(m_record.definitions.emplace_back()),
                           [](const scene_part& part) { return part.model->path; });
        else
            m_record.models.emplace_back(fileName(scene->path), scene->parts.at(0).lod);
    }
    void show() override { ++m_record.shown; }
    void showBeside() override { ++m_record.shown; }
    bool isVisible() const override { return m_record.shown > 0; }
    HWND handle() const override { return m_window.handle(); }
    void select(std::optional<shown_group> group) override { m_record.selected = group; }
    std::vector<std::string> setAnimations(std::vector<std::shared_ptr<const anim_data>> animations) override
    {
        m_record.animations = animations.size();
        return {};
    }
    playback_control& playback() override { return m_playback; }
    void playbackChanged() override {}
    picture_maker pictureMaker() const override
    {
        return {{2, 1}, [this](const picture_request& wanted, const work_port&, picture& made, failure&) {
                    m_record.picture = wanted;
                    made = picture(2, 1);
                    made.pixels()[0] = rgba(1, 2, 3, 4);
                    made.pixels()[1] = rgba(5, 6, 7, 8);
                    return true;
                }};
    }

private:
    static std::string fileName(const std::string& path) { return path.substr(path.find_last_of("/\\") + 1); }
    class key_window : public plain_window
    {
    public:
        explicit key_window(view_record& record) : m_record(record) {}
        ~key_window() override { destroy(); }

    protected:
        bool onKeyDown(unsigned virtual_key, bool) override
        {
            if (virtual_key != VK_CONTROL && GetKeyState(VK_CONTROL) >= 0)
                m_record.keys.push_back(virtual_key);
            return true;
        }

    private:
        view_record& m_record;
    };

    view_record& m_record;
    playback_control m_playback;
    key_window m_window{m_record};
};

// Faults of this program. What happens in a window procedure the system may pass over in silence.
inline int s_faults = 0;

inline LONG CALLBACK countFault(EXCEPTION_POINTERS* raised)
{
    const auto* const at = static_cast<const char*>(raised->ExceptionRecord->ExceptionAddress);
    HMODULE module = nullptr;
    constexpr DWORD by_address = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    if (raised->ExceptionRecord->ExceptionCode == EXCEPTION_ACCESS_VIOLATION &&
        GetModuleHandleExW(by_address, reinterpret_cast<LPCWSTR>(at), &module) && module == GetModuleHandleW(nullptr))
    {
        ++s_faults;
        std::printf("access violation at %p\n", static_cast<const void*>(at));
    }
    return EXCEPTION_CONTINUE_SEARCH;
}

class main_window_test : public testing::Test
{
protected:
    void SetUp() override
    {
        s_faults = 0;
        m_fault_counter = AddVectoredExceptionHandler(TRUE, &countFault);
        std::filesystem::create_directories(toPath(m_folder));
        m_config.add("FIRST_TIME", {"no"}, false);
    }
    void TearDown() override
    {
        m_window.reset();
        pack_file::sm_poPathTree = nullptr;
        MSG message{};
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) // the quit message among them
            ;
        removeFolder();
        RemoveVectoredExceptionHandler(m_fault_counter);
        EXPECT_EQ(s_faults, 0);
    }
    // Not by remove_all(), which tries a file that is still open for ever.
    void removeFolder() const
    {
        std::error_code error;
        std::vector<std::filesystem::path> paths;
        for (const auto& each : std::filesystem::recursive_directory_iterator(toPath(m_folder), error))
            paths.push_back(each.path());
        std::reverse(paths.begin(), paths.end()); // folders behind what lies in them
        for (const std::filesystem::path& path : paths)
            EXPECT_TRUE(std::filesystem::remove(path, error) && !std::filesystem::exists(path))
                << toUtf8(path) << " is still open";
        std::filesystem::remove(toPath(m_folder), error);
    }

    std::string write(const std::string& name, const std::string& bytes)
    {
        failure why;
        EXPECT_TRUE(writeWholeFile(m_folder + name, bytes, why)) << describe(why);
        return m_folder + name;
    }
    std::string write(const std::string& name, const test_model& model) { return write(name, model.bytes()); }
    // The only archive of the data folder, which the next start or re-read finds. Each time another folder: what is
    // shown keeps the former archive open.
    void writeArchive(const std::vector<test_entry>& entries)
    {
        const std::string data = "data" + std::to_string(++m_data_folders) + "\\";
        test_pack pack;
        pack.entries = entries;
        std::filesystem::create_directories(toPath(m_folder + data));
        write(data + "a.pack", pack.bytes());
        changeConfig([&](config_file& config) {
            config.clear("data_paths");
            return config.add("data_paths", {m_folder + data}, false);
        });
    }
    void changeConfig(const config_file::change_function& change) // as a console does
    {
        config_file other = m_config;
        failure why;
        EXPECT_TRUE(other.change(m_folder + "config.cfg", change, why)) << describe(why);
        if (m_window == nullptr)
            m_config = other;
    }
    void choose(document_command command)
    {
        SendMessageW(m_window->handle(), WM_COMMAND, static_cast<WPARAM>(numberOf(command)), 0);
        pump();
    }
    void openWindow(const std::string& file = {})
    {
        failure why;
        ASSERT_TRUE(tryToOpen(why, file)) << describe(why);
        m_loop = std::make_unique<message_loop>(*m_window, m_window->accelerators());
        pump();
    }
    bool tryToOpen(failure& why, const std::string& file = {})
    {
        m_log.openAt(m_folder + "log.txt");
        m_window = std::make_unique<main_window>(
            main_window_ports{m_config,
                              m_folder + "config.cfg",
                              m_log,
                              "",
                              m_prompt,
                              {},
                              [this](view_events events, failure& why) {
                                  m_view.events = std::move(events);
                                  return makeView(why);
                              },
                              [this](const std::string& path) { m_opened_folder = path; },
                              m_keeper,
                              [this](const std::string& path) { return m_edited_picture = path, true; },
                              [this](const std::string& path) { return m_opened_page = path, true; },
                              m_folder},
            "\"" + file + "\"", file.empty() ? std::vector<std::string>() : std::vector{file});
        return m_window->open(why);
    }
    std::unique_ptr<model_view> makeView(failure& why)
    {
        if (!m_has_graphics)
            return fail(why, failure_kind::unsupported, "no graphics device"), nullptr;
        return std::make_unique<recording_view>(m_view);
    }

    bool openFile(const std::string& path)
    {
        const bool is_open = m_window->openFile(path);
        pump();
        return is_open;
    }
    void pump() // everything that waits, and what it causes, until the view has what it is to show
    {
        dispatchWaiting();
        while (m_window->isLoading())
        {
            MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLINPUT);
            dispatchWaiting();
        }
    }
    void dispatchWaiting()
    {
        MSG message{};
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        {
            m_released += message.message == WM_KEYUP || message.message == WM_SYSKEYUP ? 1 : 0;
            m_loop->dispatch(message);
        }
    }
    // Does something that shows a dialog, in which act is called once, and which returns when the dialog is left.
    void inDialog(const std::function<void()>& begin, const std::function<void(HWND)>& act)
    {
        ui_thread later;
        failure why;
        ASSERT_TRUE(later.open(why)) << describe(why);
        bool has_acted = false;
        const std::function<void()> look = [&] {
            const HWND shown = dialog_box::innermost();
            has_acted = shown != nullptr;
            if (has_acted)
                act(shown);
            else
                later.box().post(look);
        };
        later.box().post(look);
        begin();
        EXPECT_TRUE(has_acted && dialog_box::innermost() == nullptr);
    }
    bool pumpUntil(const std::function<bool()>& is_true)
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (!is_true() && std::chrono::steady_clock::now() < end)
        {
            MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLINPUT);
            pump();
        }
        return is_true();
    }
    // As the person does, where the focus is; modifier 0: the key alone. Whatever it causes has happened then.
    void press(WORD key, WORD modifier = 0)
    {
        std::vector<INPUT> inputs;
        const auto add = [&](WORD code, DWORD flags) {
            INPUT input{};
            input.type = INPUT_KEYBOARD;
            input.ki.wVk = code;
            input.ki.dwFlags = flags;
            if (code != 0)
                inputs.push_back(input);
        };
        add(modifier, 0);
        add(key, 0);
        add(key, KEYEVENTF_KEYUP);
        add(modifier, KEYEVENTF_KEYUP);
        m_released = 0;
        SendInput(static_cast<UINT>(inputs.size()), inputs.data(), sizeof(INPUT));
        EXPECT_TRUE(pumpUntil([&] { return m_released == (modifier != 0 ? 2 : 1); })) << "key " << key;
    }
    void pressWithControl(WORD key) { press(key, VK_CONTROL); }

    // A control of any panel by its number.
    HWND find(int id) const
    {
        struct search
        {
            int id;
            HWND found;
        } wanted{id, nullptr};
        EnumChildWindows(
            m_window->handle(),
            [](HWND child, LPARAM parameter) -> BOOL {
                auto& looked_for = *reinterpret_cast<search*>(parameter);
                if (GetDlgCtrlID(child) == looked_for.id)
                    looked_for.found = child;
                return looked_for.found == nullptr;
            },
            reinterpret_cast<LPARAM>(&wanted));
        EXPECT_NE(wanted.found, nullptr) << id;
        return wanted.found;
    }
    RECT placeOf(HWND control) const // in the main window
    {
        RECT place{};
        GetWindowRect(control, &place);
        MapWindowPoints(nullptr, m_window->handle(), reinterpret_cast<POINT*>(&place), 2);
        return place;
    }
    std::string text(int id) const
    {
        const HWND control = find(id);
        std::wstring wide(static_cast<std::size_t>(GetWindowTextLengthW(control)) + 1, L'\0');
        wide.resize(static_cast<std::size_t>(GetWindowTextW(control, wide.data(), static_cast<int>(wide.size()))));
        return fromWide(wide);
    }
    void choose(int id, int position) // as a click into the opened list does
    {
        const HWND list = find(id);
        SendMessageW(list, CB_SETCURSEL, static_cast<WPARAM>(position), 0);
        SendMessageW(GetParent(list), WM_COMMAND, static_cast<WPARAM>(MAKELONG(id, CBN_SELCHANGE)),
                     reinterpret_cast<LPARAM>(list));
        pump();
    }
    std::string happened() const { return m_window->statusLine().part(0); }
    std::string counts() const { return m_window->statusLine().part(1); }
    void drop(const std::string& file) { drop(file, m_window->handle(), {}); }
    void drop(const std::string& file, HWND target, POINT at) // client pixels
    {
        const std::wstring path = toWide(file);
        const std::size_t text_bytes = (path.size() + 2) * sizeof(wchar_t); // the list ends in an empty path
        const HGLOBAL block = GlobalAlloc(GHND, sizeof(DROPFILES) + text_bytes);
        auto* const header = static_cast<DROPFILES*>(GlobalLock(block));
        header->pFiles = sizeof(DROPFILES);
        header->fWide = TRUE;
        header->pt = at;
        std::memcpy(header + 1, path.c_str(), path.size() * sizeof(wchar_t));
        GlobalUnlock(block);
        PostMessageW(target, WM_DROPFILES, reinterpret_cast<WPARAM>(block), 0);
        pump();
    }
    void click(int id)
    {
        SendMessageW(find(id), BM_CLICK, 0, 0);
        pump();
    }
    std::string logText() const
    {
        memory_file file;
        failure why;
        EXPECT_TRUE(file.read(m_folder + "log.txt", why)) << describe(why);
        return std::string(file.text());
    }

    std::string m_folder = toUtf8(std::filesystem::temp_directory_path()) + "korvane window 李\\";
    config_file m_config;
    log_file m_log;
    void* m_fault_counter = nullptr;
    int m_released = 0; // keys, since the last press
    test::recording_prompt m_prompt;
    edit_keeper m_keeper{m_folder + "kept"};
    view_record m_view;
    bool m_has_graphics = true;
    std::string m_opened_folder;
    std::string m_edited_picture;
    std::string m_opened_page;
    int m_data_folders = 0;
    std::unique_ptr<main_window> m_window;
    std::unique_ptr<message_loop> m_loop;
};

inline test_model soldier()
{
    test_group body;
    body.material_id = 70;
    body.textures = {{0, "men/tex/body_diffuse.dds"}, {1, "men/tex/body_normal.dds"}};
    test_group head;
    head.group_name = "head";
    head.shader_name = "other_shade";
    head.alpha_mode = 1;
    head.material_flags = 8;
    test_model model;
    model.lods = {{body, head}, {body}};
    return model;
}

inline test_group grass()
{
    test_group group;
    group.vertex_format = 5;
    group.group_name = "grass";
    return group;
}

// Of two models.
inline constexpr const char* guard_definition =
    "<VARIANT_MESH model=\"men\\body.rigid_model_v2\"><SLOT name=\"head\">"
    "<VARIANT_MESH model=\"men\\head.rigid_model_v2\"/></SLOT></VARIANT_MESH>";

} // namespace korvane::test
