#pragma once

// Before files are taken out of the archives: the folder, and how they are written. Ends with accepted when the files
// are to be written; the choices are in what it was given.

#include "EASY_GUI/win32/combo_box.h"
#include "EASY_GUI/win32/dialog_box.h"
#include "EASY_GUI/win32/edit_box.h"
#include "EASY_GUI/win32/label.h"
#include "Korvane/app/page.h"
#include "Korvane/presenters/take_out.h"

#include <string>

namespace korvane
{

class take_out_dialog : public dialog_box
{
public:
    static constexpr int accepted = 1;

    // The choices outlive the dialog, which changes them. The note says which files these are.
    take_out_dialog(page_host& host, take_out_choices& choices, std::string note, bool has_textures);
    ~take_out_dialog() override { destroy(); }

protected:
    std::optional<layout> onFill(failure& why) override;

private:
    bool createControls();
    void connect();
    void accept();

    page_host& m_host;
    take_out_choices& m_choices;
    std::string m_files;
    bool m_has_textures;
    label m_about;
    field_name m_folder_name, m_layout_name, m_textures_name, m_there_name;
    edit_box m_folder;
    button m_browse;
    combo_box m_layout_choice, m_textures, m_there;
    text_block m_note;
    button m_ok, m_cancel;
};

} // namespace korvane
