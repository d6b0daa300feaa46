#pragma once

// "Index Cache": what the program keeps of the archives, where it lies, how large and how old it is, whether it is up
// to date; made anew or deleted, and whether it is kept at all. What it shows is cache_rows'. Window thread.

#include "EASY_GUI/win32/background_task.h"
#include "EASY_GUI/win32/combo_box.h"
#include "EASY_GUI/win32/dialog_box.h"
#include "EASY_GUI/win32/label.h"
#include "EASY_GUI/win32/list_view.h"
#include "EASY_GUI/win32/progress_bar.h"
#include "Korvane/app/page.h"
#include "Korvane/presenters/cache_rows.h"

namespace korvane
{

class cache_dialog : public dialog_box
{
public:
    explicit cache_dialog(page_host& host);
    ~cache_dialog() override { destroy(); }

protected:
    std::optional<layout> onFill(failure& why) override;
    void onShown() override { look("Looking at the archives..."); }
    void onCancel() override;

private:
    cache_rows::row chosen() const;
    void look(const std::string& status);
    void show();
    void rebuild();
    void ended(cache_rows::row of, bool is_done, const failure& why);
    void deleteChosen();
    void setUse(cache_use use);
    void setWorking(bool is_working);

    page_host& m_host;
    cache_rows m_rows;
    list_view m_list;
    text_block m_details;
    button m_rebuild, m_delete, m_stop, m_close;
    field_name m_use_name;
    combo_box m_use;
    text_block m_use_text;
    label m_status;
    progress_bar m_progress;
    bool m_is_rebuilding = false;
    background_task m_work; // the last member: its work ends first
};

} // namespace korvane
