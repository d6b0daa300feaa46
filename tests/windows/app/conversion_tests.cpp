// The dialogs of animations, with the real main window: an FBX file becomes an .anim file that plays, and a table of
// bones is written; both as the console does it.

#include "EASY_GUI/win32/dialog_box.h"
#include "Korvane/jobs/anim_text_job.h"
#include "Korvane/jobs/convert_job.h"
#include "tests/support/anim_builder.h"
#include "tests/support/walking_fbx.h"
#include "tests/windows/app/main_window_fixture.h"

#include <commctrl.h>

namespace korvane::test
{
namespace
{

std::string textOf(HWND control)
{
    std::wstring wide(static_cast<std::size_t>(SendMessageW(control, WM_GETTEXTLENGTH, 0, 0)) + 1, L'\0');
    wide.resize(static_cast<std::size_t>(
        SendMessageW(control, WM_GETTEXT, wide.size(), reinterpret_cast<LPARAM>(wide.data()))));
    return fromWide(wide);
}

class conversion_test : public main_window_test
{
protected:
    // Opens the dialog and does the steps in it, one after the other, each as soon as it can: a step that returns false
    // is tried again. Then the dialog is closed.
    void inDialog(document_command command, const std::vector<std::function<bool(HWND)>>& steps)
    {
        ui_thread later;
        failure why;
        ASSERT_TRUE(later.open(why)) << describe(why);
        std::size_t done = 0;
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(120);
        const std::function<void()> go = [&] {
            const HWND shown = dialog_box::innermost();
            if (shown != nullptr && (done == steps.size() || std::chrono::steady_clock::now() > end))
                return static_cast<void>(PostMessageW(shown, WM_CLOSE, 0, 0));
            if (shown != nullptr && steps[done](shown))
                ++done;
            Sleep(5);
            later.box().post(go);
        };
        later.box().post(go);
        choose(command);
        EXPECT_EQ(done, steps.size()) << "a step did not come about";
        EXPECT_EQ(dialog_box::innermost(), nullptr);
    }
    static void press(HWND dialog, int id) { SendMessageW(GetDlgItem(dialog, id), BM_CLICK, 0, 0); }
    std::string read(const std::string& name) const
    {
        memory_file file;
        failure why;
        EXPECT_TRUE(file.read(m_folder + name, why)) << describe(why);
        return std::string(file.text());
    }
};

} // namespace

TEST_F(conversion_test, anFbxFileBecomesAnAnimationThatPlaysAsTheConsoleMakesIt)
{
    openWindow(write("man.rigid_model_v2", soldier()));
    test_anim skeleton;
    skeleton.version = 7;
    const std::string fbx = write("walk.fbx", walkingFbx()), rig = write("rig.anim", skeleton.bytes());
    const int field = control_convert_field; // the rate's
    const auto type = [](HWND dialog, int id, const wchar_t* text) {
        SetFocus(GetDlgItem(dialog, id));
        SendMessageW(GetDlgItem(dialog, id), EM_SETSEL, 0, -1);
        SendMessageW(GetDlgItem(dialog, id), EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(text));
    };
    std::string log, result;
    inDialog(
        document_command::convert_animation,
        {[&](HWND dialog) {
             EXPECT_FALSE(IsWindowEnabled(GetDlgItem(dialog, control_convert_run)));
             m_prompt.answer = fbx;
             press(dialog, control_convert_browse);
             EXPECT_EQ(m_prompt.picked_with, "Select .fbx file|fbx Files (*.fbx)|*.fbx");
             m_prompt.answer = rig;
             press(dialog, control_convert_browse + 1);
             return true;
         },
         [&](HWND dialog) { return textOf(GetDlgItem(dialog, control_convert_summary)).starts_with("2 of 3 bones"); },
         [&](HWND dialog) {
             EXPECT_EQ(textOf(GetDlgItem(dialog, field)), "30");
             m_prompt.picked_with.clear();
             type(dialog, field, L"abc");
             press(dialog, control_convert_run);
             EXPECT_EQ(m_prompt.picked_with, "") << "no picker opens";
             EXPECT_EQ(m_prompt.shown.back().second, textOf(GetDlgItem(dialog, control_convert_problem)));
             type(dialog, field, L"25");
             press(dialog, control_convert_games);
             m_prompt.answer = m_folder + "made.anim";
             press(dialog, control_convert_run);
             EXPECT_EQ(m_prompt.picked_with, "Select .ANIM file|ANIM Files (*.anim)|*.anim");
             EXPECT_TRUE(IsWindowEnabled(GetDlgItem(dialog, control_convert_stop)));
             return true;
         },
         [&](HWND dialog) {
             log = textOf(GetDlgItem(dialog, control_convert_log));
             return textOf(GetDlgItem(dialog, control_convert_status)).starts_with("Sucess!");
         },
         [&](HWND dialog) {
             log = textOf(GetDlgItem(dialog, control_convert_log));
             press(dialog, control_convert_play);
             return true;
         },
         [&](HWND) { return m_view.animations == 1; }});
    EXPECT_EQ(log.substr(0, 29), "Starting new Anim File....\r\nR");
    EXPECT_TRUE(log.ends_with("\r\nSucess!\r\n")) << log;
    loaded_game game(std::make_shared<const game_data>());
    convert_job_options options;
    options.fbx = fbx;
    options.template_anim = rig;
    options.output = m_folder + "console.anim";
    options.rate = 25;
    options.layout = anim_layout::games;
    options.config_path = m_folder + "config.cfg";
    convert_job_result made;
    failure why;
    ASSERT_TRUE(convertFbx(game, options, {}, made, why)) << describe(why);
    EXPECT_EQ(made.conversion.anim.frames.size(), 51u);
    EXPECT_EQ(read("made.anim"), read("console.anim"));
}

TEST_F(conversion_test, typesOfBonesAreShownBeforeTheirTableIsWritten)
{
    test_anim skeleton;
    writeArchive({{"animations\\skeletons\\humanoid01.anim", skeleton.bytes()}});
    openWindow(write("man.rigid_model_v2", soldier()));
    const std::string rig = write("rig.anim", skeleton.bytes());
    inDialog(document_command::generate_bone_table,
             {[&](HWND dialog) {
                  m_prompt.answer = rig;
                  press(dialog, control_bone_table_browse);
                  return true;
              },
              [&](HWND dialog) { return IsWindowEnabled(GetDlgItem(dialog, control_bone_table_write)) != FALSE; },
              [&](HWND dialog) {
                  EXPECT_EQ(SendMessageW(GetDlgItem(dialog, control_bone_table_list), LVM_GETITEMCOUNT, 0, 0), 3);
                  m_prompt.answer = m_folder + "made.bone_table";
                  press(dialog, control_bone_table_write);
                  EXPECT_EQ(m_prompt.suggested.name, "humanoid01.bone_table");
                  return true;
              }});
    loaded_game game(std::make_shared<const game_data>());
    failure why;
    ASSERT_TRUE(tabulateBones(game, rig, m_folder + "console.bone_table", why)) << describe(why);
    EXPECT_EQ(read("made.bone_table"), read("console.bone_table"));
}

} // namespace korvane::test
