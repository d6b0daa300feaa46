// The main window with models.

#include "tests/windows/app/main_window_fixture.h"

namespace korvane::test
{
namespace
{

TEST_F(main_window_test, withoutAModelThereIsNothingToChoose)
{
    openWindow();
    EXPECT_EQ(m_window->title(), m_window->document().title());
    EXPECT_TRUE(IsWindowVisible(m_window->handle()));
    EXPECT_EQ(text(control_file_path), "...");
    for (const int id : {static_cast<int>(control_lod), static_cast<int>(control_group),
                         static_cast<int>(control_show_view), static_cast<int>(control_open_folder)})
        EXPECT_FALSE(IsWindowEnabled(find(id))) << id;
    EXPECT_EQ(m_view.made, 0);
    EXPECT_TRUE(m_prompt.shown.empty());
}

TEST_F(main_window_test, aFileOfTheCommandLineFillsThePanelsAndTheView)
{
    const std::string path = write("soldier.rigid_model_v2", soldier());
    openWindow(path);
    EXPECT_EQ(m_window->title(), m_window->document().title());
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
                  {control_texture_file + 2, ""}};
    for (const auto& field : fields)
        EXPECT_EQ(text(field.id), field.text) << field.id;
    EXPECT_EQ(counts(), "2 LODs; LOD 1: 2 groups, 6 vertices, 2 triangles");
    EXPECT_EQ(SendMessageW(find(control_tool_alpha_mode), CB_GETCOUNT, 0, 0), 5);
    EXPECT_EQ(m_view.models, (std::vector<std::pair<std::string, std::size_t>>{{"soldier.rigid_model_v2", 0}}));
    EXPECT_EQ(m_view.shown, 1);

    click(control_open_folder);
    EXPECT_EQ(m_opened_folder, path);
}

TEST_F(main_window_test, choosingALodOrGroupFollowsInAllPanels)
{
    openWindow(write("soldier.rigid_model_v2", soldier()));
    EXPECT_FALSE(m_view.selected) << "nothing is outlined before it is chosen";
    m_view.events.picked({0, 1}); // a click in the view
    EXPECT_EQ(text(control_group), "G 2");
    EXPECT_EQ(m_view.selected, (shown_group{0, 1}));
    choose(control_group, 0);
    choose(control_group, 1);
    EXPECT_EQ(m_view.selected, (shown_group{0, 1}));
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
    EXPECT_EQ(m_view.selected, (shown_group{0, 0}));
}

TEST_F(main_window_test, aVertexFormatWithoutAShortLabelKeepsTheFormerText)
{
    test_model model = soldier();
    model.lods[0].push_back(grass());
    openWindow(write("m.rigid_model_v2", model));
    choose(control_group, 2);
    EXPECT_EQ(text(control_vertex_format), "5");
    EXPECT_EQ(text(control_vertex_label), "Default");
    EXPECT_EQ(text(control_tool_vertex_label), "\"Grass\" (internal)");
}

TEST_F(main_window_test, shortcutsOpenTheDialogAndRecentFiles)
{
    const std::string first = write("first.rigid_model_v2", soldier());
    const std::string second = write("second.rigid_model_v2", soldier());
    openWindow();
    m_prompt.answer = first;
    pressWithControl('O');
    EXPECT_TRUE(m_window->document().model().hasModel());
    EXPECT_EQ(m_prompt.picked_with,
              "Open File|RMV2+VMD Files (*.rigid_model_v2)|*.rigid_model_v2;*.variantmeshdefinition");
    EXPECT_TRUE(openFile(second));
    EXPECT_EQ(text(control_file_path), second);
    SetFocus(m_window->view()->handle()); // whose keys give the same commands
    pressWithControl('2');                // the one before
    EXPECT_TRUE(text(control_file_path).ends_with("first.rigid_model_v2"));

    m_prompt.while_picking = [] { // Ctrl is let go while the dialog is open
        BYTE keys[256];
        GetKeyboardState(keys);
        keys[VK_CONTROL] = keys[VK_LCONTROL] = keys[VK_RCONTROL] = 0;
        SetKeyboardState(keys);
    };
    m_prompt.answer = first;
    pressWithControl('O');
    EXPECT_TRUE(m_view.keys.empty()) << "a shortcut is no key of the view";
    m_prompt.while_picking = nullptr;

    m_prompt.answer = second;
    const plain_window dialog;
    SetFocus(dialog.handle());
    pressWithControl('O');
    EnableWindow(m_window->handle(), FALSE); // as a dialog does with its owner
    SetFocus(m_window->view()->handle());
    pressWithControl('O');
    EnableWindow(m_window->handle(), TRUE);
    EXPECT_TRUE(text(control_file_path).ends_with("first.rigid_model_v2"))
        << "no shortcut works in a dialog or beside one";

    config_file saved;
    ASSERT_TRUE(saved.load(m_folder + "config.cfg"));
    const std::vector<std::string> recent = saved.get("config_recent_files");
    ASSERT_EQ(recent.size(), 2u) << testing::PrintToString(recent);
    EXPECT_TRUE(recent[0].ends_with("first.rigid_model_v2")) << recent[0];
    const HMENU file_menu = GetSubMenu(GetMenu(m_window->handle()), 0);
    EXPECT_EQ(GetMenuItemCount(GetSubMenu(file_menu, 1)), 2);
}

TEST_F(main_window_test, droppedFilesAreOpened)
{
    openWindow();
    drop(write("dropped 李.rigid_model_v2", soldier()));
    drop(write("guard 李.variantmeshdefinition", std::string(guard_definition)));
    EXPECT_TRUE(text(control_file_path).ends_with("dropped 李.rigid_model_v2"));
    EXPECT_TRUE(m_window->document().definition().hasDefinition());
    EXPECT_NE(m_view.notice.find("Setup Game Folders"), std::string::npos)
        << "what to do is said where the figure should be";
    EXPECT_TRUE(openFile(m_folder + "dropped 李.rigid_model_v2"));
    EXPECT_EQ(m_view.notice, "");
}

TEST_F(main_window_test, aRecentFileThatIsGoneIsTakenOffTheList)
{
    const std::string path = write("gone.rigid_model_v2", soldier());
    openWindow(path);
    const HMENU recent = GetSubMenu(GetSubMenu(GetMenu(m_window->handle()), 0), 1);
    std::filesystem::remove(toPath(path));
    for (const bool answer : {false, true})
    {
        m_prompt.shown.clear();
        m_prompt.will_confirm = answer;
        pressWithControl('1');
        ASSERT_EQ(m_prompt.shown.size(), 1u);
        EXPECT_NE(m_prompt.shown[0].second.find("gone.rigid_model_v2"), std::string::npos);
        EXPECT_EQ(GetMenuState(recent, 0, MF_BYPOSITION) & MF_GRAYED, answer ? MF_GRAYED : 0u);
    }
    config_file saved;
    ASSERT_TRUE(saved.load(m_folder + "config.cfg"));
    EXPECT_TRUE(saved.get("config_recent_files").empty());
}

TEST_F(main_window_test, whatAConsoleSetsMeanwhileStaysAndIsTakenUp)
{
    const std::string path = write("soldier.rigid_model_v2", soldier());
    openWindow();
    changeConfig([&](config_file& config) {
        config.add("mod_paths", {m_folder}, false);
        return config.add("config_recent_files", {"pack:men/other.rigid_model_v2"}, false);
    });
    EXPECT_TRUE(openFile(path));
    SendMessageW(m_window->handle(), WM_ACTIVATEAPP, TRUE, 0); // what it has written itself is no news
    EXPECT_FALSE(happened().starts_with("The data folders were changed"));
    config_file saved;
    ASSERT_TRUE(saved.load(m_folder + "config.cfg"));
    EXPECT_EQ(saved.get("mod_paths").size(), 1u);
    ASSERT_EQ(saved.get("config_recent_files").size(), 2u);

    writeArchive({{"men\\other.rigid_model_v2", soldier().bytes()}});
    SendMessageW(m_window->handle(), WM_ACTIVATEAPP, TRUE, 0);
    EXPECT_TRUE(happened().starts_with("The data folders were changed")) << happened();
    choose(document_command::reread_archives);
    pressWithControl('2');
    EXPECT_EQ(text(control_file_path), "pack:men/other.rigid_model_v2");
}

TEST_F(main_window_test, aPaintedTextureIsShownAndAModelOfAnotherProgramOnlySaid)
{
    const std::string path = write("soldier.rigid_model_v2", soldier());
    test_dds picture;
    for (const char* name : {"body_diffuse.dds", "body_normal.dds"})
        write(name, picture.bytes());
    openWindow(path);
    choose(control_group, 1);
    picture.pixels += "one byte more";
    write("body_diffuse.dds", picture.bytes());
    EXPECT_TRUE(pumpUntil([&] { return happened().starts_with("body_diffuse.dds was read again ("); }));
    EXPECT_EQ(m_view.models.size(), 2u);
    EXPECT_EQ(text(control_group), "G 2") << "what is chosen stays";
    write("soldier.rigid_model_v2", soldier().bytes() + " ");
    EXPECT_TRUE(pumpUntil([&] { return happened().starts_with("soldier.rigid_model_v2 was changed"); }));
    EXPECT_EQ(m_view.models.size(), 2u);
}

TEST_F(main_window_test, theFirstStartShowsItsNoticeOnce)
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

TEST_F(main_window_test, withoutAGraphicsDeviceTheModelIsStillShown)
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

TEST_F(main_window_test, aLowWindowScrollsItsPanelsAboveTheStatusLine)
{
    openWindow(write("soldier.rigid_model_v2", soldier()));
    SetWindowPos(m_window->handle(), nullptr, 0, 0, 620, 420, SWP_NOMOVE | SWP_NOZORDER);
    pump();
    const LONG height = m_window->clientRectangle().bottom;
    const RECT status = placeOf(find(control_status));
    EXPECT_LE(status.bottom, height);
    const HWND page = GetParent(GetParent(find(control_file_path)));
    SendMessageW(page, WM_VSCROLL, SB_BOTTOM, 0);
    EXPECT_EQ(placeOf(find(control_status)).top, status.top);
    EXPECT_LE(placeOf(page).bottom, status.top);
    EXPECT_LT(placeOf(find(control_file_path)).bottom, placeOf(page).top);
    SetWindowPos(m_window->handle(), nullptr, 0, 0, 620, 1000, SWP_NOMOVE | SWP_NOZORDER);
    pump();
    EXPECT_GT(placeOf(find(control_file_path)).top, placeOf(page).top) << "there is room again";
}

TEST_F(main_window_test, theKeyboardReachesEverythingAndMnemonicsAreUnique)
{
    openWindow(write("soldier.rigid_model_v2", soldier()));
    SetWindowPos(m_window->handle(), nullptr, 0, 0, 620, 420, SWP_NOMOVE | SWP_NOZORDER);
    SetActiveWindow(m_window->handle());

    // With Tab from above, and what has the focus is seen although the window is low.
    const HWND page = GetParent(GetParent(find(control_file_path)));
    SetFocus(find(control_file_path));
    std::vector<int> reached;
    LONG lowest = -1; // line on the screen, with the scroll bar at its upper end
    do
    {
        reached.push_back(GetDlgCtrlID(GetFocus()));
        const RECT place = placeOf(GetFocus());
        EXPECT_GE(place.top, 0) << reached.back();
        EXPECT_LE(place.bottom, m_window->clientRectangle().bottom) << reached.back();
        const LONG line = (place.top + place.bottom) / 2 + GetScrollPos(page, SB_VERT);
        const bool is_on_page = IsChild(page, GetFocus());
        EXPECT_TRUE(!is_on_page || line + 4 >= lowest) << reached.back(); // lists stand a little higher than texts
        lowest = is_on_page ? line : lowest;
        press(VK_TAB);
    } while (GetFocus() != find(control_file_path) && reached.size() < 100);
    // Every field, list and button but the empty rows of textures; the tabs and the button beside them.
    EXPECT_EQ(reached.size(), 35u);

    // Each name's mnemonic leads to the field behind it, in reading order.
    const std::pair<char, int> names[] = {{'P', control_file_path},
                                          {'D', control_open_folder},
                                          {'K', control_file_skeleton},
                                          {'L', control_lod},
                                          {'G', control_group},
                                          {'B', control_material_name},
                                          {'N', control_group_name},
                                          {'S', control_shader_name},
                                          {'X', control_vertex_label},
                                          {'U', control_tool_caption},
                                          {'R', control_tool_vertex_format},
                                          {'M', control_tool_material_flags}};
    for (const auto& [key, id] : names)
    {
        press(static_cast<WORD>(key), VK_MENU);
        EXPECT_EQ(GetDlgCtrlID(GetFocus()), id) << key;
    }
    EXPECT_EQ(m_opened_folder, text(control_file_path)) << "a button's mnemonic presses it";
    std::string mnemonics = "FETAVH"; // of the menus
    EnumChildWindows(
        m_window->handle(),
        [](HWND child, LPARAM found) -> BOOL {
            wchar_t text[100]{};
            GetWindowTextW(child, text, 100);
            if (const wchar_t* const mark = wcschr(text, L'&'); mark != nullptr && IsWindowVisible(child))
                reinterpret_cast<std::string*>(found)->push_back(static_cast<char>(towupper(mark[1])));
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&mnemonics));
    EXPECT_EQ(mnemonics.size(), 6 + std::size(names) + 4); // the alpha mode, all LODs, pictures and the view
    std::sort(mnemonics.begin(), mnemonics.end());
    EXPECT_EQ(std::adjacent_find(mnemonics.begin(), mnemonics.end()), mnemonics.end()) << mnemonics;
}

TEST_F(main_window_test, theFocusComesBackWithTheWindow)
{
    test_model model = soldier();
    model.lods.push_back({});
    openWindow(write("soldier.rigid_model_v2", model));
    SetActiveWindow(m_window->handle());
    EXPECT_EQ(GetFocus(), find(control_lod)) << "what is chosen next has the focus at the start";
    SetFocus(find(control_texture_file + 1));
    const plain_window other;
    SetActiveWindow(other.handle());
    ASSERT_EQ(GetFocus(), other.handle());
    SetActiveWindow(m_window->handle());
    EXPECT_EQ(GetFocus(), find(control_texture_file + 1));
    SetFocus(find(control_group));
    choose(control_lod, 2); // which has no groups
    EXPECT_FALSE(IsWindowEnabled(find(control_group)));
    EXPECT_EQ(GetFocus(), find(control_fill_all_lods)) << "the focus does not stay where no key works";
}

TEST_F(main_window_test, anotherDensityScalesFontsAndLayout)
{
    openWindow(write("soldier.rigid_model_v2", soldier()));
    const auto heightOf = [&](int id) { return placeOf(find(id)).bottom - placeOf(find(id)).top; };
    const unsigned dpi = m_window->dpi() * 5 / 4;
    const LONG height = heightOf(control_file_path);
    RECT place{};
    GetWindowRect(m_window->handle(), &place);
    place.right += 300;
    SendMessageW(m_window->handle(), WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&place));
    RECT now{};
    GetWindowRect(m_window->handle(), &now);
    EXPECT_TRUE(EqualRect(&now, &place)) << "the suggested rectangle is taken";
    EXPECT_NEAR(static_cast<double>(heightOf(control_file_path)) / height, 1.2, 0.1);
    EXPECT_EQ(window::fromHandle(GetParent(find(control_file_path)))->dpi(), dpi) << "a panel is as its window";
}

TEST_F(main_window_test, unsavedChangesAreOfferedAgainAndNotLostWithoutAQuestion)
{
    const std::string path = write("soldier.rigid_model_v2", soldier());
    {
        open_files former; // of a program that ended
        former.model().setKeeper(m_keeper);
        failure why;
        ASSERT_TRUE(former.open(path, why)) << describe(why);
        ASSERT_EQ(former.model().chooseAlphaMode(1).changed, 1u);
        std::string where;
        ASSERT_EQ(m_keeper.keep(where, why), edit_keeper::outcome::kept) << describe(why);
    }
    m_prompt.confirmations = {true};
    openWindow();
    EXPECT_TRUE(m_window->title().ends_with("*[edited]")) << m_window->title();
    EXPECT_EQ(text(control_tool_alpha_mode), "Alpha On");
    EXPECT_EQ(m_view.models.size(), 1u);

    EXPECT_FALSE(openFile(write("other.rigid_model_v2", soldier())));
    SendMessageW(m_window->handle(), WM_CLOSE, 0, 0);
    EXPECT_TRUE(m_window->isOpen());
    EXPECT_EQ(text(control_file_path), path);
    const auto keepsThere = [this] {
        std::size_t count = 0;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(toPath(m_folder + "kept")))
            count += entry.path().filename() == "model.rigid_model_v2" ? 1u : 0u;
        return count;
    };
    EXPECT_EQ(keepsThere(), 1u) << "until they are saved or discarded";
    SendMessageW(m_window->handle(), WM_ENDSESSION, TRUE, 0);
    EXPECT_GE(keepsThere(), 1u) << "the person logs off";
    m_prompt.will_save = save_answer::discard;
    SendMessageW(m_window->handle(), WM_CLOSE, 0, 0);
    EXPECT_FALSE(m_window->isOpen());
}

TEST_F(main_window_test, whyThePanelsCouldNotBeMadeReachesThePersonAndTheLog)
{
    const HHOOK hook = SetWindowsHookExW(
        WH_CBT,
        [](int code, WPARAM, LPARAM created) -> LRESULT {
            const auto id =
                code == HCBT_CREATEWND ? reinterpret_cast<const CBT_CREATEWNDW*>(created)->lpcs->hMenu : nullptr;
            return id == reinterpret_cast<HMENU>(static_cast<INT_PTR>(control_shader_name)) ? 1 : 0; // 1: refused
        },
        nullptr, GetCurrentThreadId());
    openWindow(write("soldier.rigid_model_v2", soldier()));
    UnhookWindowsHookEx(hook);
    const std::string why = "the panel \"Group Info:\" could not be created: field 1303";
    ASSERT_FALSE(m_prompt.shown.empty());
    EXPECT_NE(m_prompt.shown.back().second.find(why), std::string::npos) << m_prompt.shown.back().second;
    EXPECT_NE(logText().find(why), std::string::npos);
}

TEST_F(main_window_test, closingEndsTheViewAndTheMessageLoop)
{
    openWindow(write("soldier.rigid_model_v2", soldier()));
    PostMessageW(m_window->handle(), WM_COMMAND, static_cast<WPARAM>(numberOf(document_command::exit)), 0);
    EXPECT_EQ(m_loop->run(), 0);
    EXPECT_FALSE(m_window->isOpen());
    EXPECT_EQ(m_view.destroyed, 1);
}

} // namespace
} // namespace korvane::test
