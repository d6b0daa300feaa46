// The real main window, driven by messages and key presses. Boxes, file dialogs and the three-dimensional view are
// replaced at the window's own seams.

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/win32/message_loop.h"
#include "EASY_GUI/win32/wide_text.h"
#include "Korvane/app/command_ids.h"
#include "Korvane/app/main_window.h"
#include "Korvane/archives/pack_file.h"
#include "tests/support/model_builder.h"
#include "tests/support/pack_builder.h"
#include "tests/support/recording_prompt.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <filesystem>
#include <functional>
#include <shlobj.h>

namespace korvane::test
{
namespace
{

struct view_record
{
    int made = 0, shown = 0, destroyed = 0;
    std::vector<std::pair<std::string, std::size_t>> models; // file name and LOD
};

class recording_view : public model_view
{
public:
    explicit recording_view(view_record& record) : m_record(record) { ++m_record.made; }
    ~recording_view() override { ++m_record.destroyed; }
    void setModel(std::shared_ptr<const RMV2_FILE_DATA> model, const std::string& path, std::size_t lod) override
    {
        EXPECT_NE(model, nullptr);
        m_record.models.emplace_back(fileName(path), lod);
    }
    void show() override { ++m_record.shown; }
    bool isVisible() const override { return m_record.shown > 0; }
    HWND handle() const override { return nullptr; }

private:
    static std::string fileName(const std::string& path) { return path.substr(path.find_last_of("/\\") + 1); }
    view_record& m_record;
};

class main_window_test : public testing::Test
{
protected:
    void SetUp() override
    {
        std::filesystem::create_directories(toPath(m_folder));
        m_config.add("FIRST_TIME", {"no"}, false);
    }
    void TearDown() override
    {
        m_window.reset();
        MSG message{};
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) // the quit message among them
            ;
        std::filesystem::remove_all(toPath(m_folder));
    }

    std::string write(const std::string& name, const test_model& model)
    {
        failure why;
        EXPECT_TRUE(writeWholeFile(m_folder + name, model.bytes(), why)) << describe(why);
        return m_folder + name;
    }
    void openWindow(const std::string& file = {})
    {
        m_log.openAt(m_folder + "log.txt");
        m_window = std::make_unique<main_window>(
            main_window_ports{m_config,
                              m_folder + "config.cfg",
                              m_log,
                              "",
                              m_prompt,
                              {},
                              [this](std::function<void(const std::string&)>, failure& why)
                              {
                                  return makeView(why);
                              },
                              [this](const std::string& path)
                              {
                                  m_opened_folder = path;
                              }},
            "\"" + file + "\"", file);
        failure why;
        ASSERT_TRUE(m_window->open(why)) << describe(why);
        m_loop = std::make_unique<message_loop>(*m_window, m_window->accelerators());
        pump();
    }
    std::unique_ptr<model_view> makeView(failure& why)
    {
        if (!m_has_graphics)
            return fail(why, failure_kind::unsupported, "no graphics device"), nullptr;
        return std::make_unique<recording_view>(m_view);
    }

    void pump() // everything that waits, and what it causes
    {
        MSG message{};
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
            m_loop->dispatch(message);
    }
    bool pumpUntil(const std::function<bool()>& is_true)
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (!is_true() && std::chrono::steady_clock::now() < end)
        {
            MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLINPUT);
            pump();
        }
        return is_true();
    }
    void pressWithControl(WORD key)
    {
        INPUT inputs[4]{};
        for (INPUT& input : inputs)
            input.type = INPUT_KEYBOARD;
        inputs[0].ki.wVk = inputs[3].ki.wVk = VK_CONTROL;
        inputs[1].ki.wVk = inputs[2].ki.wVk = key;
        inputs[2].ki.dwFlags = inputs[3].ki.dwFlags = KEYEVENTF_KEYUP;
        SetForegroundWindow(m_window->handle());
        SetFocus(m_window->handle());
        SendInput(4, inputs, sizeof(INPUT));
    }

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
            [](HWND child, LPARAM parameter) -> BOOL
            {
                auto& looked_for = *reinterpret_cast<search*>(parameter);
                if (GetDlgCtrlID(child) == looked_for.id)
                    looked_for.found = child;
                return looked_for.found == nullptr;
            },
            reinterpret_cast<LPARAM>(&wanted));
        EXPECT_NE(wanted.found, nullptr) << id;
        return wanted.found;
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
    test::recording_prompt m_prompt;
    view_record m_view;
    bool m_has_graphics = true;
    std::string m_opened_folder;
    std::unique_ptr<main_window> m_window;
    std::unique_ptr<message_loop> m_loop;
};

test_model soldier()
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

test_group grass()
{
    test_group group;
    group.vertex_format = 5;
    group.group_name = "grass";
    return group;
}

TEST_F(main_window_test, WithoutAModelThereIsNothingToChoose)
{
    openWindow();
    EXPECT_EQ(m_window->title(), "Korvane 0.5.1a   RMV2: [no file loaded] VMD: [no file loaded]");
    EXPECT_TRUE(IsWindowVisible(m_window->handle()));
    EXPECT_EQ(text(control_file_path), "...");
    for (const int id : {static_cast<int>(control_lod), static_cast<int>(control_group),
                         static_cast<int>(control_show_view), static_cast<int>(control_open_folder)})
        EXPECT_FALSE(IsWindowEnabled(find(id))) << id;
    EXPECT_EQ(m_view.made, 0);
    EXPECT_TRUE(m_prompt.shown.empty());
}

TEST_F(main_window_test, AFileOfTheCommandLineFillsThePanelsAndTheView)
{
    const std::string path = write("soldier.rigid_model_v2", soldier());
    openWindow(path);
    EXPECT_EQ(m_window->title(), "Korvane 0.5.1a   RMV2: [soldier.rigid_model_v2] VMD: [no file loaded]");
    const struct
    {
        int id;
        std::string text;
    } fields[] = {{control_file_path, path},
                  {control_file_version, "7"},
                  {control_file_game, "WH/WH2"},
                  {control_file_skeleton, "humanoid01"},
                  {control_lod, "LOD 1"},
                  {control_group, "G 1"},
                  {control_material_name, "weighted_skin"},
                  {control_material_id, "70"},
                  {control_group_name, "body"},
                  {control_shader_name, "rigid_shade"},
                  {control_vertex_label, "Default"},
                  {control_vertex_format, "0"},
                  {control_tool_caption, "L(0) G(0)"},
                  {control_tool_vertex_label, "\"Default\" (static)"},
                  {control_tool_material_flags, "3"},
                  {control_tool_alpha_mode, "Alpha Off"},
                  {control_texture_type, "Diffuse"},
                  {control_texture_directory + 1, "men/tex"},
                  {control_texture_file + 1, "body_normal.dds"},
                  {control_texture_file + 2, ""},
                  {control_status, "2 LODs; LOD 1: 2 groups, 6 vertices, 2 triangles"}};
    for (const auto& field : fields)
        EXPECT_EQ(text(field.id), field.text) << field.id;
    EXPECT_EQ(SendMessageW(find(control_tool_alpha_mode), CB_GETCOUNT, 0, 0), 5);
    EXPECT_EQ(m_view.models, (std::vector<std::pair<std::string, std::size_t>>{{"soldier.rigid_model_v2", 0}}));
    EXPECT_EQ(m_view.shown, 1);

    // The order of the start is what the log shows.
    const std::string log = logText();
    const std::string lines[] = {"Korvane 0.X debugging log", "assigning accelerators ",
                                 "main_window::onCreated(). command line \"" + path + "\"",
                                 "main_window::onCreated(). command line processed: " + path};
    std::size_t at = 0;
    for (const std::string& line : lines)
    {
        at = log.find(line, at);
        ASSERT_NE(at, std::string::npos) << line << " in\n" << log;
    }
    click(control_open_folder);
    EXPECT_EQ(m_opened_folder, path);
}

TEST_F(main_window_test, ChoosingALodOrGroupFollowsInAllPanels)
{
    openWindow(write("soldier.rigid_model_v2", soldier()));
    choose(control_group, 1);
    EXPECT_EQ(text(control_group_name), "head");
    EXPECT_EQ(text(control_shader_name), "other_shade");
    EXPECT_EQ(text(control_tool_caption), "L(0) G(1)");
    EXPECT_EQ(text(control_tool_alpha_mode), "Alpha On");
    EXPECT_EQ(text(control_tool_material_flags), "8");
    EXPECT_EQ(text(control_texture_file + 1), "");
    EXPECT_EQ(m_view.models.size(), 1u) << "another group of the same LOD needs no new meshes";

    choose(control_lod, 1); // which has no second group
    EXPECT_EQ(text(control_group), "G 1");
    EXPECT_EQ(text(control_tool_caption), "L(1) G(0)");
    ASSERT_EQ(m_view.models.size(), 2u);
    EXPECT_EQ(m_view.models.back().second, 1u);
}

TEST_F(main_window_test, AVertexFormatWithoutAShortLabelKeepsTheFormerText)
{
    test_model model = soldier();
    model.lods[0].push_back(grass());
    openWindow(write("m.rigid_model_v2", model));
    choose(control_group, 2);
    EXPECT_EQ(text(control_vertex_format), "5");
    EXPECT_EQ(text(control_vertex_label), "Default");
    EXPECT_EQ(text(control_tool_vertex_label), "\"Grass\" (internal)");
}

TEST_F(main_window_test, AFileThatCannotBeOpenedIsReportedAndNothingChanges)
{
    openWindow(write("soldier.rigid_model_v2", soldier()));
    choose(control_group, 1);
    const std::string title = m_window->title();
    test_model broken = soldier();
    broken.magic = "RMV3";
    EXPECT_FALSE(m_window->openFile(write("broken.rigid_model_v2", broken)));
    ASSERT_EQ(m_prompt.shown.size(), 1u);
    EXPECT_EQ(m_prompt.shown[0].first, "Error!");
    EXPECT_NE(m_prompt.shown[0].second.find("broken.rigid_model_v2"), std::string::npos) << m_prompt.shown[0].second;
    EXPECT_EQ(m_window->title(), title);
    EXPECT_EQ(text(control_group_name), "head");
    EXPECT_EQ(m_view.models.size(), 1u);
    EXPECT_EQ(m_config.get("config_recent_files").size(), 1u) << "only what was opened is remembered";

    EXPECT_FALSE(m_window->openFile(m_folder + "unit.variantmeshdefinition"));
    EXPECT_EQ(m_prompt.shown.back().second.rfind("Loading .variantmeshdefintion failed. \r\nErro string: r\n", 0), 0u);
}

TEST_F(main_window_test, ShortcutsOpenTheDialogAndRecentFiles)
{
    const std::string first = write("first.rigid_model_v2", soldier());
    const std::string second = write("second.rigid_model_v2", soldier());
    openWindow();
    m_prompt.answer = first;
    pressWithControl('O');
    ASSERT_TRUE(pumpUntil(
        [&]
        {
            return m_window->document().hasModel();
        }));
    EXPECT_EQ(m_prompt.picked_with, "Open File|RMV2+VMD Files (*.rigid_model_v2)|*.rigid_model_v2");
    EXPECT_TRUE(m_window->openFile(second));
    const std::string title = m_window->title();
    EXPECT_NE(title.find("[second.rigid_model_v2]"), std::string::npos);
    pressWithControl('2'); // the one before
    EXPECT_TRUE(pumpUntil(
        [&]
        {
            return m_window->title().find("[first.rigid_model_v2]") != std::string::npos;
        }))
        << m_window->title();

    config_file saved;
    ASSERT_TRUE(saved.load(m_folder + "config.cfg"));
    const std::vector<std::string> recent = saved.get("config_recent_files");
    ASSERT_EQ(recent.size(), 2u);
    EXPECT_TRUE(recent[0].ends_with("first.rigid_model_v2")) << recent[0];
    const HMENU file_menu = GetSubMenu(GetMenu(m_window->handle()), 0);
    EXPECT_EQ(GetMenuItemCount(GetSubMenu(file_menu, 1)), 2);
    EXPECT_EQ(menu(file_menu).textOf(0), "&Open \t\t Ctrl+O");
}

TEST_F(main_window_test, ADroppedFileIsOpened)
{
    const std::wstring path = toWide(write("dropped 李.rigid_model_v2", soldier()));
    openWindow();
    const std::size_t text_bytes = (path.size() + 2) * sizeof(wchar_t); // the list ends in an empty path
    const HGLOBAL block = GlobalAlloc(GHND, sizeof(DROPFILES) + text_bytes);
    auto* const header = static_cast<DROPFILES*>(GlobalLock(block));
    header->pFiles = sizeof(DROPFILES);
    header->fWide = TRUE;
    std::memcpy(header + 1, path.c_str(), path.size() * sizeof(wchar_t));
    GlobalUnlock(block);
    PostMessageW(m_window->handle(), WM_DROPFILES, reinterpret_cast<WPARAM>(block), 0);
    pump();
    EXPECT_NE(m_window->title().find("[dropped 李.rigid_model_v2]"), std::string::npos) << m_window->title();
}

TEST_F(main_window_test, TheFirstStartShowsItsNoticeOnce)
{
    m_config.clear("FIRST_TIME");
    openWindow();
    ASSERT_EQ(m_prompt.shown.size(), 1u);
    EXPECT_EQ(m_prompt.shown[0].first, "Important!");
    config_file saved;
    ASSERT_TRUE(saved.load(m_folder + "config.cfg"));
    EXPECT_EQ(saved.get("FIRST_TIME").size(), 1u);
    m_window.reset();
    openWindow();
    EXPECT_EQ(m_prompt.shown.size(), 1u);
}

TEST_F(main_window_test, TheArchivesAreReadBeforeAnythingElse)
{
    const std::string data = m_folder + "Data\\";
    std::filesystem::create_directories(toPath(data));
    test::test_pack pack;
    pack.entries = {{"Tex\\A.dds", "bytes"}};
    failure why;
    ASSERT_TRUE(writeWholeFile(data + "one.pack", pack.bytes(), why));
    ASSERT_TRUE(writeWholeFile(data + "two.pack", std::string("PFH1"), why));
    m_config.add("DATA_PATHS", {data}, false);
    openWindow();
    ASSERT_TRUE(pack_file::sm_poPathTree);
    EXPECT_NE(pack_file::sm_poPathTree->find("tex/a.dds"), nullptr);
    ASSERT_EQ(m_prompt.shown.size(), 1u); // the damaged one is named, and the program runs
    EXPECT_NE(m_prompt.shown[0].second.find("two.pack"), std::string::npos);
    memory_file log;
    ASSERT_TRUE(log.read(m_folder + "log.txt", why));
    std::size_t at = 0;
    for (const char* line : {"Initializing virtual file system (.pack reading)...", ".pack files being sorted...",
                             "[PACK FILE] 0 : ", "[PACK FILE] 1 : ", "assigning accelerators "})
    {
        at = log.text().find(line, at);
        ASSERT_NE(at, std::string_view::npos) << line;
    }
    pack_file::sm_poPathTree = nullptr;
}

TEST_F(main_window_test, WithoutAGraphicsDeviceTheModelIsStillShown)
{
    m_has_graphics = false;
    openWindow(write("soldier.rigid_model_v2", soldier()));
    EXPECT_EQ(text(control_group_name), "body");
    ASSERT_EQ(m_prompt.shown.size(), 1u);
    EXPECT_NE(m_prompt.shown[0].second.find("no graphics device"), std::string::npos);
    m_has_graphics = true; // the driver was installed
    click(control_show_view);
    EXPECT_EQ(m_view.models.size(), 1u);
}

TEST_F(main_window_test, ALowWindowScrollsToItsLastRow)
{
    openWindow(write("soldier.rigid_model_v2", soldier()));
    SetWindowPos(m_window->handle(), nullptr, 0, 0, 620, 420, SWP_NOMOVE | SWP_NOZORDER);
    pump();
    const auto bottomOf = [&](int id)
    {
        RECT rectangle{};
        GetWindowRect(find(id), &rectangle);
        POINT corner{rectangle.left, rectangle.bottom};
        ScreenToClient(m_window->handle(), &corner);
        return corner.y;
    };
    const LONG height = m_window->clientRectangle().bottom;
    EXPECT_GT(bottomOf(control_status), height);
    SendMessageW(m_window->handle(), WM_VSCROLL, SB_BOTTOM, 0);
    EXPECT_LE(bottomOf(control_status), height);
    EXPECT_LT(bottomOf(control_file_path), 0);
    SetWindowPos(m_window->handle(), nullptr, 0, 0, 620, 1000, SWP_NOMOVE | SWP_NOZORDER);
    pump();
    EXPECT_GT(bottomOf(control_file_path), 0) << "there is room again";
}

TEST_F(main_window_test, ClosingEndsTheViewAndTheMessageLoop)
{
    openWindow(write("soldier.rigid_model_v2", soldier()));
    PostMessageW(m_window->handle(), WM_COMMAND, command_exit, 0);
    EXPECT_EQ(m_loop->run(), 0);
    EXPECT_FALSE(m_window->isOpen());
    EXPECT_EQ(m_view.destroyed, 1);
}

} // namespace
} // namespace korvane::test
