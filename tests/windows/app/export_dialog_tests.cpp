// The commands of export with the main window: the dialog searches, is filtered, chosen from and stopped, and writes
// what the job alone writes.

#include "EASY_GUI/win32/dialog_box.h"
#include "Korvane/jobs/export_job.h"
#include "tests/support/anim_builder.h"
#include "tests/windows/app/main_window_fixture.h"

#include <commctrl.h>

namespace korvane::test
{
namespace
{

class export_dialog_test : public main_window_test
{
protected:
    struct step
    {
        std::function<bool(HWND)> is_due; // looked at in the dialog's own message loop
        std::function<void(HWND)> act;
    };

    void openModel()
    {
        test_anim walk;
        writeArchive({{"animations\\skeletons\\humanoid01.anim", walk.bytes()},
                      {"animations\\walk\\fast.anim", walk.bytes()},
                      {"animations\\walk\\slow.anim", walk.bytes()},
                      {"animations\\run.anim", walk.bytes()},
                      {"animations\\damaged.anim", walk.bytes().substr(0, 60)}});
        openWindow();
        ASSERT_TRUE(openFile(write("man.rigid_model_v2", soldier())));
    }
    void runThrough(std::vector<step> steps)
    {
        ui_thread later;
        failure why;
        ASSERT_TRUE(later.open(why)) << describe(why);
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(120);
        std::size_t next = 0;
        const std::function<void()> look = [&] {
            const HWND shown = dialog_box::innermost();
            const bool is_late = std::chrono::steady_clock::now() > end;
            if (shown != nullptr && is_late)
            {
                PostMessageW(shown, WM_CLOSE, 0, 0);
                return;
            }
            if (shown != nullptr && steps[next].is_due(shown))
                steps[next++].act(shown);
            Sleep(5);
            if (next < steps.size())
                later.box().post(look);
        };
        later.box().post(look);
        choose(document_command::export_animated);
        EXPECT_EQ(next, steps.size());
    }
    static std::string textOf(HWND dialog, int id)
    {
        wchar_t text[400] = {};
        SendMessageW(GetDlgItem(dialog, id), WM_GETTEXT, 400, reinterpret_cast<LPARAM>(text));
        return fromWide(text);
    }
    static bool says(HWND dialog, int id, const char* what)
    {
        return textOf(dialog, id).find(what) != std::string::npos;
    }
    static void press(HWND dialog, int id) { SendMessageW(GetDlgItem(dialog, id), BM_CLICK, 0, 0); }
    static void type(HWND dialog, int id, const std::string& text)
    {
        SendMessageW(GetDlgItem(dialog, id), EM_SETSEL, 0, -1);
        SendMessageW(GetDlgItem(dialog, id), EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(toWide(text).c_str()));
    }
    static void pick(HWND dialog, int id, int position)
    {
        SendMessageW(GetDlgItem(dialog, id), CB_SETCURSEL, static_cast<WPARAM>(position), 0);
        SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(id, CBN_SELCHANGE),
                     reinterpret_cast<LPARAM>(GetDlgItem(dialog, id)));
    }
    std::string bytesOf(const std::string& path) const
    {
        memory_file file;
        failure why;
        EXPECT_TRUE(file.read(path, why)) << describe(why);
        return std::string(file.text());
    }
};

TEST_F(export_dialog_test, searchesIsChosenFromAndWritesWhatTheJobWrites)
{
    openModel();
    const auto hasSearched = [](HWND shown) { return says(shown, control_export_status, "Done!"); };
    const auto rowsOf = [](HWND shown) {
        return SendMessageW(GetDlgItem(shown, control_export_list), LVM_GETITEMCOUNT, 0, 0);
    };
    runThrough({
        {hasSearched,
         [&](HWND shown) {
             EXPECT_EQ(textOf(shown, control_export_status), "5 compatible animatimations found. Done!");
             EXPECT_EQ(GetFocus(), GetDlgItem(shown, control_export_filter));
             EXPECT_FALSE(IsWindowEnabled(GetDlgItem(shown, control_export_start)));
             EXPECT_EQ(textOf(shown, control_export_message), "Choose one or more animations.");
             type(shown, control_export_filter, "walk");
             EXPECT_EQ(rowsOf(shown), 2);
             press(shown, control_export_all);
             type(shown, control_export_filter, "damaged");
             press(shown, control_export_all);
         }},
        {[](HWND shown) { return says(shown, control_export_message, "2 of the chosen ones are not shown."); },
         [&](HWND shown) {
             type(shown, control_export_filter, "");
             pick(shown, control_export_format, 1); // ".dae"
             pick(shown, control_export_textures, 0);
             type(shown, control_export_folder, m_folder + "out");
             press(shown, control_export_start);
             EXPECT_FALSE(IsWindowEnabled(GetDlgItem(shown, control_export_list))) << "while it works";
         }},
        {[](HWND shown) { return says(shown, control_export_status, "Done. Files Exported: 2"); },
         [&](HWND shown) {
             EXPECT_TRUE(says(shown, control_export_message, "damaged.anim"));
             press(shown, control_export_open);
             EXPECT_EQ(fileName(m_opened_folder), "slow.dae");
             pick(shown, control_export_mode, 1);
             EXPECT_FALSE(IsWindowEnabled(GetDlgItem(shown, control_export_list)));
             press(shown, control_export_start);
         }},
        {[](HWND shown) { return says(shown, control_export_status, "Done. Files Exported: 1"); },
         [](HWND shown) { PostMessageW(shown, WM_CLOSE, 0, 0); }},
    });
    EXPECT_EQ(happened(), "Done. Files Exported: 1");

    export_job_options wanted;
    wanted.model = m_folder + "man.rigid_model_v2";
    wanted.skeleton = "pack:animations\\skeletons\\humanoid01.anim";
    wanted.output = m_folder + "slow.dae";
    wanted.animations = {"pack:animations\\walk\\slow.anim"};
    loaded_game game(m_window->document().game());
    export_job_result result;
    failure why;
    ASSERT_TRUE(runExport(game, wanted, {}, result, why)) << describe(why);
    EXPECT_EQ(bytesOf(m_folder + "slow.dae"), bytesOf(m_folder + "out\\slow.dae"));
    EXPECT_TRUE(std::filesystem::exists(toPath(m_folder + "out\\man__BIND_POSE.dae")));
}

TEST_F(export_dialog_test, saysWhatIsMissing)
{
    openWindow();
    ASSERT_TRUE(openFile(write("man.rigid_model_v2", soldier())));
    choose(document_command::export_animated); // no archives
    ASSERT_EQ(m_prompt.shown.size(), 1u);
    EXPECT_EQ(m_prompt.shown[0].second, ".pack File Not Found. Closing Search Dialog...");
    m_prompt.answer = m_folder + "man.glb";
    choose(document_command::export_static);
    EXPECT_EQ(happened(), "Exported " + m_folder + "man.glb");
    EXPECT_EQ(bytesOf(m_folder + "man.glb").substr(0, 4), "glTF");
}

} // namespace
} // namespace korvane::test
