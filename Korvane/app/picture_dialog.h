#pragma once

// Before a picture of the 3D view is saved: its size, background and smoothing. Ends with accepted when the person goes
// on to choose the file.

#include "EASY_GUI/win32/combo_box.h"
#include "EASY_GUI/win32/dialog_box.h"
#include "EASY_GUI/win32/edit_box.h"
#include "EASY_GUI/win32/label.h"
#include "Korvane/app/model_view.h"
#include "Korvane/app/page.h"
#include "Korvane/presenters/picture_settings.h"

namespace korvane
{

class picture_dialog : public dialog_box
{
public:
    static constexpr int accepted = 1;

    // The settings outlive the dialog, which changes them.
    explicit picture_dialog(picture_settings& settings)
        : dialog_box({"Save Picture", {}, false, helpContext(help_topic::pictures)})
        , m_settings(settings)
    {
    }
    ~picture_dialog() override { destroy(); }

protected:
    std::optional<layout> onFill(failure& why) override;

private:
    bool createControls();
    void connect();
    void showSize();
    void showNote();

    picture_settings& m_settings;
    field_name m_size_name, m_width_name, m_height_name, m_background_name, m_samples_name;
    combo_box m_size, m_background, m_samples;
    edit_box m_width, m_height;
    check_box m_proportions;
    label m_note;
    button m_save, m_cancel;
};

// "Save Picture...": asks with the dialog and for the file, and saves the picture. The suggestion is a file's name.
void savePicture(page_host& host, const picture_maker& maker, const std::string& suggestion);

} // namespace korvane
