#pragma once

// "Generate .bone_table From .ANIM": a file is chosen, its bones are shown with the types that they get, and the table
// is written. What it shows is a bone_table_form's. Window thread.

#include "EASY_GUI/win32/background_task.h"
#include "EASY_GUI/win32/dialog_box.h"
#include "EASY_GUI/win32/label.h"
#include "EASY_GUI/win32/list_view.h"
#include "Korvane/app/page.h"
#include "Korvane/app/path_box.h"
#include "Korvane/presenters/bone_table_form.h"

namespace korvane
{

class bone_table_dialog : public dialog_box
{
public:
    explicit bone_table_dialog(page_host& host);
    ~bone_table_dialog() override { destroy(); }

protected:
    std::optional<layout> onFill(failure& why) override;

private:
    void choose(const std::string& path);
    void browse();
    void write();
    void show();

    page_host& m_host;
    bone_table_form m_form;
    field_name m_path_name;
    path_box m_path;
    button m_browse, m_archives, m_write, m_close;
    list_view m_list;
    label m_status;
    background_task m_reading; // the last member: its work ends first
};

} // namespace korvane
