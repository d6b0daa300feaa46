// Editing in the real main window, to the bytes of the file that is saved.

#include "tests/windows/app/main_window_fixture.h"

namespace korvane::test
{
namespace
{

std::string bytesOf(const std::string& path)
{
    memory_file file;
    failure why;
    EXPECT_TRUE(file.read(path, why)) << describe(why);
    return std::string(file.text());
}

TEST_F(main_window_test, editsAreUndoneRedoneAndSavedToTheByte)
{
    const std::string path = write("soldier.rigid_model_v2", soldier());
    openWindow(path);
    choose(control_tool_alpha_mode, 1);
    EXPECT_TRUE(m_window->title().ends_with("*[edited]")) << m_window->title();
    EXPECT_NE(happened().find("alpha mode"), std::string::npos) << happened();
    choose(document_command::undo);
    EXPECT_EQ(text(control_tool_alpha_mode), "Alpha Off");
    EXPECT_TRUE(happened().starts_with("Undone")) << happened();
    EXPECT_FALSE(m_window->title().ends_with("*[edited]"));
    choose(document_command::redo);
    EXPECT_EQ(text(control_tool_alpha_mode), "Alpha On");

    const HWND field = find(control_texture_file + 1);
    SetWindowTextW(field, L"worn.dds");
    SendMessageW(field, WM_KEYDOWN, VK_RETURN, 1);
    choose(document_command::undo);
    EXPECT_EQ(text(control_texture_file + 1), "body_normal.dds");
    choose(document_command::redo);
    EXPECT_EQ(text(control_texture_file + 1), "worn.dds");

    m_prompt.answer = m_folder + "no such folder\\other.rigid_model_v2";
    choose(document_command::save_as);
    ASSERT_EQ(m_prompt.shown.size(), 1u) << "a target that cannot be written is told";
    EXPECT_TRUE(m_window->title().ends_with("*[edited]")) << "and nothing is lost";

    m_prompt.answer = m_folder + "other 李.rigid_model_v2";
    choose(document_command::save_as);
    EXPECT_EQ(text(control_file_path), *m_prompt.answer);
    EXPECT_FALSE(m_window->title().ends_with("*[edited]"));
    test_model expected = soldier();
    expected.lods[0][0].alpha_mode = 1;
    expected.lods[0][0].textures[1].second = "men/tex/worn.dds";
    EXPECT_EQ(bytesOf(*m_prompt.answer), expected.bytes());
    EXPECT_EQ(bytesOf(path), soldier().bytes());
}

} // namespace
} // namespace korvane::test
