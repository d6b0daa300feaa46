#pragma once

// "Export Model+Skeleton+ANIM": the model or figure that is shown, with its skeleton, in its bind pose or with any
// number of animations, as files for 3D programs. The list fills while the archives are searched; the files are written
// by a worker, and the dialog says what became of each. What is chosen is an export_choices'. Window thread.

#include "EASY_GUI/win32/background_task.h"
#include "EASY_GUI/win32/combo_box.h"
#include "EASY_GUI/win32/dialog_box.h"
#include "EASY_GUI/win32/edit_box.h"
#include "EASY_GUI/win32/label.h"
#include "EASY_GUI/win32/list_view.h"
#include "EASY_GUI/win32/progress_bar.h"
#include "Korvane/app/filter_field.h"
#include "Korvane/app/page.h"
#include "Korvane/presenters/export_choices.h"
#include "Korvane/presenters/export_rows.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace korvane
{

class export_dialog : public dialog_box
{
public:
    using folder_port = std::function<void(const std::string& path)>; // shows a file in the system's file manager

    // The choices outlive the dialog, which changes them.
    export_dialog(page_host& host, export_choices& choices, folder_port open_folder);
    ~export_dialog() override { destroy(); }

protected:
    std::optional<layout> onFill(failure& why) override;
    void onShown() override;
    void onCancel() override; // while files are written it stops that
    void onDestroyed() override;

private:
    bool createChoice();
    bool createOutput();
    void fill();
    void connectChoice();
    void connectOutput();
    layout rows();

    void search();
    void takeFound();
    void endSearch(bool is_stopped);
    void filter();
    bool walkIn();
    void chosen();
    void showChosenRows();
    std::string focusedAnimation() const; // empty: none that a path finds
    void showMenu(POINT on_screen);
    void showChoices();
    void showTexts();

    bool mayReplace(const export_job_options& options);
    void start();
    void end(std::shared_ptr<export_job_result> result, bool is_begun, const failure& why);
    void askForTextures(const std::shared_ptr<const export_job_options>& options,
                        const std::shared_ptr<export_job_result>& result);
    using dialog_box::end;
    bool isExporting() const { return m_export.isRunning(); }
    void enableAll(bool is_enabled);
    std::vector<control*> inputs();

    page_host& m_host;
    export_choices& m_choices;
    folder_port m_open_folder;
    export_rows m_rows;

    field_name m_mode_name, m_format_name, m_skeleton_name, m_filter_name, m_lod_name, m_texture_name, m_folder_name,
        m_name_name;
    combo_box m_mode, m_format, m_skeleton, m_lod, m_textures;
    filter_field m_filter;
    edit_box m_folder, m_name;
    button m_all, m_none, m_stop_search, m_browse;
    check_box m_span, m_together;
    list_view m_list;
    label m_status;
    progress_bar m_progress;
    text_block m_message;
    button m_open, m_dump, m_export_button, m_close;

    bool m_is_ended = false;    // the search
    std::string m_outcome;      // of the last export, until something else is chosen
    std::string m_last_written; // a file
    std::shared_ptr<export_finder> m_found;
    background_task m_search;
    background_task m_export; // the last members: their work ends first
};

// The two commands. Both export what is shown, with the edits that are not saved. What the view shows spares the
// reading of a figure's models; null: nothing.
void exportAnimated(page_host& host, const scene_pointer& former, const export_dialog::folder_port& open_folder);
void exportStatic(page_host& host);

} // namespace korvane
