// The main window with models.

#include "tests/windows/app/main_window_fixture.h"

namespace korvane::test
{
namespace
{

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
                  {control_texture_directory + 1, "men/tex/"},
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
}

TEST_F(main_window_test, ShortcutsOpenTheDialogAndRecentFiles)
{
    const std::string first = write("first.rigid_model_v2", soldier());
    const std::string second = write("second.rigid_model_v2", soldier());
    openWindow();
    m_prompt.answer = first;
    pressWithControl('O');
    ASSERT_TRUE(pumpUntil([&] { return m_window->document().model().hasModel(); }));
    EXPECT_EQ(m_prompt.picked_with,
              "Open File|RMV2+VMD Files (*.rigid_model_v2)|*.rigid_model_v2;*.variantmeshdefinition");
    EXPECT_TRUE(m_window->openFile(second));
    const std::string title = m_window->title();
    EXPECT_NE(title.find("[second.rigid_model_v2]"), std::string::npos);
    pressWithControl('2'); // the one before
    EXPECT_TRUE(pumpUntil([&] { return m_window->title().find("[first.rigid_model_v2]") != std::string::npos; }))
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

TEST_F(main_window_test, DroppedFilesAreOpened)
{
    openWindow();
    drop(write("dropped 李.rigid_model_v2", soldier()));
    drop(write("guard 李.variantmeshdefinition", std::string(guard_definition)));
    EXPECT_EQ(m_window->title(),
              "Korvane 0.5.1a   RMV2: [dropped 李.rigid_model_v2] VMD: [guard 李.variantmeshdefinition]");
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
    const auto bottomOf = [&](int id) {
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
