// The pages Definition and Problems of the main window, and its dialogs.

#include "EASY_GUI/win32/dialog_box.h"
#include "tests/windows/app/main_window_fixture.h"

#include <commctrl.h>

namespace korvane::test
{
namespace
{

class pages_test : public main_window_test
{
protected:
    LRESULT shownTab() const { return SendMessageW(find(control_tabs), TCM_GETCURSEL, 0, 0); }
    std::string caption(int tab) const
    {
        wchar_t text[80] = {};
        TCITEMW item{};
        item.mask = TCIF_TEXT;
        item.pszText = text;
        item.cchTextMax = 80;
        SendMessageW(find(control_tabs), TCM_GETITEMW, static_cast<WPARAM>(tab), reinterpret_cast<LPARAM>(&item));
        return fromWide(text);
    }
    bool waitForCheck()
    {
        return pumpUntil([this] { return !m_window->isChecking(); });
    }
};

TEST_F(pages_test, aDefinitionIsShownAtOnceAndOpensItsModels)
{
    writeArchive({{"men\\body.rigid_model_v2", soldier().bytes()}});
    openWindow();
    SetFocus(find(control_tabs));
    ASSERT_TRUE(openFile(write("guard.variantmeshdefinition", std::string(guard_definition))));
    EXPECT_EQ(shownTab(), 1);
    EXPECT_EQ(text(control_definition_counts), "guard.variantmeshdefinition: 1 slot, 2 models, 0 references. 1 is "
                                               "missing or broken.");
    SetFocus(find(control_definition_tree)); // with the first model chosen
    press(VK_RETURN);
    EXPECT_EQ(shownTab(), 0);
    EXPECT_EQ(text(control_file_path), "pack:men\\body.rigid_model_v2");

    for (const int expected : {1, 2, 3, 0})
    {
        pressWithControl(VK_TAB);
        EXPECT_EQ(shownTab(), expected);
    }
    SendMessageW(m_window->handle(), WM_COMMAND, MAKELONG(former_page_command, 1), 0);
    SendMessageW(m_window->handle(), WM_COMMAND, MAKELONG(former_page_command, 1), 0);
    EXPECT_EQ(shownTab(), 2);
    SendMessageW(m_window->handle(), WM_CLOSE, 0, 0);
    EXPECT_EQ(m_config.get("page"), std::vector<std::string>{"problems"});
}

TEST_F(pages_test, anFbxFileIsReportedOnAPageOfItsOwn)
{
    const std::string scene = "; FBX 7.4.0 project file\nObjects: { Model: 1, \"Model::root\", \"LimbNode\" { } }\n"
                              "Connections: { C: \"OO\",1,0\n}\n";
    openWindow();
    ASSERT_FALSE(openFile(write("broken.fbx", scene.substr(0, 60))));
    ASSERT_FALSE(m_prompt.shown.empty());
    EXPECT_EQ(m_prompt.shown.back().first, "Error!");
    EXPECT_TRUE(m_prompt.shown.back().second.starts_with("Error loading FBX fil file: "));
    EXPECT_EQ(shownTab(), 0);
    ASSERT_TRUE(openFile(write("WALK.FBX", scene)));
    EXPECT_EQ(shownTab(), 4);
    EXPECT_EQ(caption(4), "FBX");
    EXPECT_EQ(text(control_fbx_summary), "WALK.FBX: 0 meshes, 1 skeleton node, 0 takes. One unit is 1 cm, up is +Y.");
    EXPECT_FALSE(m_window->document().model().hasModel());
    ASSERT_TRUE(openFile(write("soldier.rigid_model_v2", soldier())));
    EXPECT_EQ(shownTab(), 0);
    SendMessageW(m_window->handle(), WM_CLOSE, 0, 0);
    EXPECT_EQ(m_config.get("page"), std::vector<std::string>{"model"});
}

TEST_F(pages_test, archivesAreSearchedOpenedAndTakenOutOf)
{
    test_model model = soldier();
    model.lods[0][0].textures = {{0, "Tex/Steel.dds"}};
    writeArchive({{"men\\body.rigid_model_v2", model.bytes()},
                  {"tex\\steel.dds", "bytes"},
                  {"tex\\wood.dds", ""},
                  {"tex\\notes.txt", "one\ntwo"},
                  {"tex\\odd.bin", std::string(100, '\1')}});
    openWindow();
    for (int i = 0; i < 3; ++i)
        pressWithControl(VK_TAB);
    ASSERT_EQ(shownTab(), 3);
    const auto isIdle = [this] { return !m_window->archivePage().isSearching(); };
    const archive_rows& rows = m_window->archivePage().browser().rows();
    ASSERT_TRUE(pumpUntil(isIdle));
    EXPECT_EQ(text(control_archive_status), "2 folders, 0 files");
    SetWindowTextW(find(control_archive_find), L"DDS st");
    ASSERT_TRUE(pumpUntil(isIdle));
    ASSERT_EQ(rows.rowCount(), 1u);
    EXPECT_EQ(text(control_archive_status), "Files with \"DDS st\": 1 file");
    SetFocus(find(control_archive_list));
    press(VK_HOME);
    EXPECT_EQ(text(control_archive_details), "tex\\steel.dds: from a.pack (PFH4).");
    inDialog([this] { SendMessageW(find(control_archive_take_out), BM_CLICK, 0, 0); },
             [this](HWND shown) {
                 SetWindowTextW(GetDlgItem(shown, control_take_out_folder), toWide(m_folder + "out").c_str());
                 PostMessageW(GetDlgItem(shown, control_take_out_ok), BM_CLICK, 0, 0);
             });
    EXPECT_EQ(happened(), "1 file extracted to " + m_folder + "out.");
    memory_file bytes;
    failure why;
    ASSERT_TRUE(bytes.read(m_folder + "out\\tex\\steel.dds", why)) << describe(why);
    EXPECT_EQ(bytes.text(), "bytes");
    SetWindowTextW(find(control_archive_find), L"body");
    ASSERT_TRUE(pumpUntil(isIdle));
    SetFocus(find(control_archive_list));
    press(VK_HOME);
    press(VK_RETURN);
    EXPECT_EQ(shownTab(), 0);
    EXPECT_EQ(text(control_file_path), "pack:men\\body.rigid_model_v2");

    // What has no window of its own is seen as text or bytes. Escape leaves the viewer, then what was found.
    for (int i = 0; i < 3; ++i)
        pressWithControl(VK_TAB);
    const file_viewer& viewer = m_window->archivePage().viewer();
    const std::pair<const wchar_t*, const char*> viewed[] = {{L"notes", "Text, UTF-8, 7 bytes"},
                                                             {L"odd.bin", "100 bytes"}};
    for (const auto& [name, status] : viewed)
    {
        SetWindowTextW(find(control_archive_find), name);
        ASSERT_TRUE(pumpUntil(isIdle));
        SetFocus(find(control_archive_list));
        press(VK_HOME);
        press(VK_F4);
        ASSERT_TRUE(pumpUntil([&] { return viewer.isOpen() && !viewer.isLoading(); }));
        EXPECT_EQ(viewer.status(), status);
    }
    SetForegroundWindow(m_window->handle());
    SetFocus(find(control_archive_list));
    press(VK_ESCAPE);
    EXPECT_EQ(text(control_archive_find), "");
    EXPECT_EQ(text(control_archive_status), "2 folders, 0 files");
}

TEST_F(pages_test, aFindingLeadsToItsGroupAndEditsAreCheckedAgain)
{
    test_model model = soldier();
    model.lods[1][0].textures[1].second = "c:\\mine\\x.dds";
    openWindow(write("soldier.rigid_model_v2", model));
    ASSERT_TRUE(waitForCheck());
    const std::string before = caption(2);
    EXPECT_EQ(before.substr(0, 10), "Problems (");

    SetFocus(find(control_lod));
    pressWithControl(VK_TAB);
    pressWithControl(VK_TAB);
    ASSERT_EQ(GetFocus(), find(control_problem_list));
    press(VK_DOWN);
    press(VK_HOME); // the worst: a path of somebody's disk
    press(VK_RETURN);
    EXPECT_EQ(shownTab(), 0);
    EXPECT_EQ(m_window->document().model().selection(), (model_selection{1, 0}));

    m_window->took(m_window->commands().replacePathPrefix("c:\\mine", "tex"));
    EXPECT_TRUE(m_window->isChecking());
    ASSERT_TRUE(waitForCheck());
    EXPECT_NE(caption(2), before);
}

TEST_F(pages_test, dialogsOfCommandsSayAndDoWhatIsAsked)
{
    openWindow(write("soldier.rigid_model_v2", soldier()));
    const auto commandWith = [&](document_command command, const std::function<void(HWND)>& act) {
        inDialog([&] { choose(command); }, act);
    };
    const auto cancel = [](HWND shown) { PostMessageW(shown, WM_CLOSE, 0, 0); };
    commandWith(document_command::legal, cancel);
    commandWith(document_command::test, cancel);
    EXPECT_EQ(happened().substr(0, 16), "The test is done");
    // The guide opens at what is worked with: page, field, dialog.
    const auto leadsTo = [this](const std::string& place) {
        const std::string page = m_opened_page.empty() ? "" : test::readBytes(m_opened_page);
        m_opened_page.clear();
        return page.find("guide.html" + place + "\"") != page.npos;
    };
    choose(document_command::guide);
    EXPECT_TRUE(m_opened_page.empty() &&
                m_prompt.shown.back().second.find("the guide is not there") != std::string::npos);
    write("guide.html", "<p>Guide</p>");
    SetFocus(find(control_tool_alpha_mode));
    press(VK_F1);
    EXPECT_TRUE(leadsTo("#alpha"));
    SetFocus(find(control_lod));
    press(VK_F1);
    EXPECT_TRUE(leadsTo("#unit"));
    commandWith(document_command::replace_path_prefix, [&](HWND shown) {
        PostMessageW(GetDlgItem(shown, control_prefix_replacement), WM_KEYDOWN, VK_F1, 0);
        pump();
        EXPECT_TRUE(leadsTo("#repaint-change-many-paths-at-once"));
        SetWindowTextW(GetDlgItem(shown, control_prefix_replacement), L"new/");
        EXPECT_TRUE(IsWindowEnabled(GetDlgItem(shown, control_prefix_replace)));
        SetWindowTextW(GetDlgItem(shown, control_prefix_wanted), L"nothing so");
        EXPECT_FALSE(IsWindowEnabled(GetDlgItem(shown, control_prefix_replace)));
        SetWindowTextW(GetDlgItem(shown, control_prefix_wanted), L"MEN\\tex");
        SendMessageW(GetDlgItem(shown, control_prefix_replace), BM_CLICK, 0, 0);
    });
    EXPECT_EQ(m_window->document().model().changes().size(), 4u);

    m_prompt.answer = m_folder + "seen.tga";
    commandWith(document_command::save_picture, [](HWND shown) {
        SetWindowTextW(GetDlgItem(shown, control_picture_width), L"8193");
        EXPECT_FALSE(IsWindowEnabled(GetDlgItem(shown, control_picture_save)));
        SetWindowTextW(GetDlgItem(shown, control_picture_width), L"3000"); // the view is 2 x 1
        PostMessageW(GetDlgItem(shown, control_picture_save), BM_CLICK, 0, 0);
    });
    EXPECT_EQ(happened(), "Saved " + m_folder + "seen.tga");
    EXPECT_EQ(m_view.picture.size, (picture_size{3000, 1500}));
}

TEST_F(pages_test, normalMapsAreConvertedAndCancellingWritesNothing)
{
    openWindow();
    std::string picture(18, '\0');
    picture[2] = 2; // true colour
    picture[12] = picture[14] = 1;
    picture[16] = 32;
    picture[17] = 8;
    picture += "\xff\x80\x80\xff"; // blue, green, red, alpha: straight up
    const std::string input = write("blue.tga", picture);
    choose(document_command::normal_map_to_orange); // cancelled at the first picker
    m_prompt.answers = {input};
    choose(document_command::normal_map_to_orange); // at the second one
    EXPECT_FALSE(std::filesystem::exists(toPath(m_folder + "orange.tga")));
    m_prompt.answer = m_folder + "orange.tga";
    choose(document_command::normal_map_to_orange);
    EXPECT_EQ(m_prompt.picked_with, "Convert BLUE Type Normal Map to Orange (CA) Type, pick OUTPUT file...|Targa "
                                    "(*.tga)|*.tga");
    EXPECT_TRUE(m_prompt.shown.empty());
    EXPECT_EQ(happened(), "1 picture converted to ORANGE: " + m_folder + "orange.tga.");
    EXPECT_TRUE(std::filesystem::exists(toPath(m_folder + "orange.tga")));
}

} // namespace
} // namespace korvane::test
