// The texture panel and the dialog of game folders in the real main window.

#include "EASY_GUI/services/config_keys.h"
#include "EASY_GUI/win32/dialog_box.h"
#include "Korvane/textures/picture_file.h"
#include "tests/windows/app/main_window_fixture.h"

namespace korvane::test
{

namespace
{

class texture_panel_test : public main_window_test
{
protected:
    static constexpr int file_of_second = control_texture_file + 1;

    void openWithModFolder()
    {
        std::filesystem::create_directories(toPath(m_folder + "mod"));
        writeArchive(
            {{"men\\tex\\body_diffuse.dds", test_dds().bytes()}, {"men\\tex\\body_normal.dds", test_dds().bytes()}});
        changeConfig([&](config_file& config) { return config.add("mod_paths", {m_folder + "mod\\"}, false); });
        openWindow(write("soldier.rigid_model_v2", soldier()));
        SetActiveWindow(m_window->handle());
    }
    void writePicture(const std::string& path, rgba_pixel colour)
    {
        picture pixels(4, 4);
        std::fill(pixels.pixels().begin(), pixels.pixels().end(), colour);
        picture_bytes bytes;
        failure why;
        ASSERT_TRUE(encodePicture(pixels, picture_kind::png, bytes, why) && writeWholeFile(path, bytes.bytes(), why))
            << describe(why);
    }
    void type(int id, const std::string& text)
    {
        SetFocus(find(id));
        SetWindowTextW(find(id), toWide(text).c_str());
    }
    // As a file manager does that drops a file there.
    void dropOn(int id, const std::string& file)
    {
        const HWND panel = GetParent(find(id));
        RECT place{};
        GetWindowRect(find(id), &place);
        MapWindowPoints(nullptr, panel, reinterpret_cast<POINT*>(&place), 2);
        drop(file, panel, {place.left + 2, place.top + 2});
    }
    bool isThere(const std::string& path) { return std::filesystem::exists(toPath(m_folder + path)); }
};

} // namespace

TEST_F(texture_panel_test, aTypedPathIsTakenByEnterLeavingAndCommands)
{
    openWithModFolder();
    const auto isEdited = [this] { return m_window->document().model().isEdited(); };

    choose(control_texture_type, 3);
    EXPECT_EQ(text(control_texture_type), "Diffuse") << "the list only says something";

    type(file_of_second, "other.dds");
    press(VK_ESCAPE);
    EXPECT_EQ(text(file_of_second), "body_normal.dds");
    EXPECT_FALSE(isEdited());
    press(VK_RETURN);
    EXPECT_FALSE(isEdited()) << "nothing was typed";

    type(file_of_second, "other.dds");
    press(VK_RETURN);
    EXPECT_TRUE(isEdited());
    pressWithControl('Z'); // the field has nothing to undo
    EXPECT_EQ(text(file_of_second), "body_normal.dds");

    type(control_texture_directory + 1, "men/else"); // without a separator
    SetFocus(find(control_lod));
    pump();
    EXPECT_EQ(text(control_texture_directory + 1), "men/else/");

    type(file_of_second, "last.dds");
    choose(document_command::save);
    EXPECT_FALSE(isEdited());
    ASSERT_TRUE(openFile(m_folder + "soldier.rigid_model_v2"));
    EXPECT_EQ(text(control_texture_directory + 1) + text(file_of_second), "men/else/last.dds");
}

TEST_F(texture_panel_test, picturesBecomeTexturesOfTheRow)
{
    openWithModFolder();
    const std::string png = m_folder + "paint.png";
    writePicture(png, rgba(255, 0, 0, 255));
    dropOn(file_of_second, png);
    EXPECT_TRUE(isThere("mod\\men\\tex\\body_normal.dds")) << happened();
    EXPECT_EQ(text(file_of_second), "body_normal.dds");
    dropOn(file_of_second, write("notes.txt", "no picture"));
    EXPECT_FALSE(m_prompt.shown.empty()) << "it is opened like any other file";

    SetFocus(find(control_texture_file));
    choose(document_command::edit_picture);
    ASSERT_NE(m_edited_picture, "");
    EXPECT_FALSE(isThere("mod\\men\\tex\\body_diffuse.dds"));
    writePicture(m_edited_picture, rgba(0, 255, 0, 255));
    EXPECT_TRUE(pumpUntil([this] { return isThere("mod\\men\\tex\\body_diffuse.dds"); })) << happened();
}

TEST_F(texture_panel_test, texturesAreExtractedAndFoldersAskedFor)
{
    openWithModFolder();
    m_prompt.answer = m_folder + "out";
    std::filesystem::create_directories(toPath(*m_prompt.answer));
    click(control_extract_textures);
    EXPECT_EQ(text(control_extraction_status),
              "2 DDS files extracted. 1 texture is nowhere to be found. They are in " + *m_prompt.answer);
    EXPECT_TRUE(isThere("out\\men\\tex\\body_normal.dds"));
    click(control_textures_flat);
    click(control_textures_as_picture);
    click(control_extract_textures);
    EXPECT_TRUE(isThere("out\\body_normal.png"));

    // The dialog, closed by Escape, changes nothing.
    m_prompt.shown.clear();
    changeConfig([](config_file& config) { return config.clear("data_paths"), config.clear("mod_paths"), true; });
    bool was_shown = false;
    const UINT_PTR timer = SetTimer(nullptr, 0, 50, [](HWND, UINT, UINT_PTR, DWORD) {
        if (const HWND dialog = dialog_box::innermost(); dialog != nullptr)
            PostMessageW(GetDlgItem(dialog, control_folder_cancel), BM_CLICK, 0, 0);
    });
    m_prompt.while_picking = [&was_shown] { was_shown = true; };
    choose(document_command::extract_textures);
    KillTimer(nullptr, timer);
    EXPECT_FALSE(m_prompt.shown.empty()) << "no folders are set up";
    EXPECT_FALSE(was_shown) << "the dialog was opened instead";
}

} // namespace korvane::test
