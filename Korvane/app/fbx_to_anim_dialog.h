#pragma once

// "Convert FBX animation to .ANIM": files, take, times, the bones that match, and the conversion itself on a worker,
// with its log. What the fields mean is a fbx_to_anim_form's, the conversion is the job that the console runs. Window
// thread.

#include "EASY_GUI/win32/background_task.h"
#include "EASY_GUI/win32/combo_box.h"
#include "EASY_GUI/win32/dialog_box.h"
#include "EASY_GUI/win32/label.h"
#include "EASY_GUI/win32/list_view.h"
#include "EASY_GUI/win32/progress_bar.h"
#include "Korvane/app/page.h"
#include "Korvane/app/path_box.h"
#include "Korvane/presenters/fbx_to_anim_form.h"

#include <array>
#include <string>

namespace korvane
{

class fbx_to_anim_dialog : public dialog_box
{
public:
    // With the file chosen; empty: none.
    explicit fbx_to_anim_dialog(page_host& host, std::string fbx = {});
    ~fbx_to_anim_dialog() override { destroy(); }

protected:
    std::optional<layout> onFill(failure& why) override;
    void onCancel() override; // while it works: stops
    void onFilesDropped(const std::vector<std::string>& paths) override;
    LRESULT handleMessage(UINT message, WPARAM wparam, LPARAM lparam) override;

private:
    using file = fbx_to_anim_form::file;
    using field = fbx_to_anim_form::field;
    struct file_row
    {
        field_name name;
        path_box path;
        button browse;
    };
    struct field_row
    {
        field_name name;
        edit_box typed;
        label problem;
    };
    struct conversion
    {
        convert_job_result result;
        failure why;
        bool is_done = false;
        bool is_stopped = false;
    };

    bool createFiles();
    bool createFields();
    bool createResults();
    void nameHandlers();
    layout rows();
    file_row& rowOf(file which) { return m_files[static_cast<std::size_t>(which)]; }
    field_row& rowOf(field which) { return m_fields[static_cast<std::size_t>(which)]; }

    void choose(file which, const std::string& path);
    void browse(file which);
    void look();
    void showLook();
    void showFields();
    void showState();
    void fillConverted(const std::string& selected);

    void convert();
    void log(const std::string& line);
    void showLog();
    void took(const conversion& made, const std::string& output);
    bool openMenu(HWND clicked, POINT on_screen);
    std::string chosenResult() const;
    void playResult();

    page_host& m_host;
    fbx_to_anim_form m_form;
    std::string m_first_fbx;
    std::array<file_row, 3> m_files;
    button m_archives;
    field_name m_take_name, m_converted_name;
    combo_box m_take, m_converted;
    std::array<field_row, fbx_to_anim_form::field_count> m_fields;
    field_name m_version_name, m_prefix_name;
    combo_box m_version;
    path_box m_prefix; // taken when it is left, as a path is
    check_box m_for_games;
    list_view m_bones;
    label m_summary;
    edit_box m_log;
    progress_bar m_progress;
    label m_status;
    button m_stop, m_convert, m_play, m_dump, m_close;
    std::string m_unshown_log;
    std::vector<std::string> m_results; // in the order of the box
    background_task m_looking;
    background_task m_work; // the last members: their work ends first
};

} // namespace korvane
