#pragma once

// The animations and skeletons of the archives, of which one is chosen: a filter over a list. Window thread.

#include "EASY_GUI/win32/background_task.h"
#include "EASY_GUI/win32/dialog_box.h"
#include "EASY_GUI/win32/edit_box.h"
#include "EASY_GUI/win32/label.h"
#include "EASY_GUI/win32/list_view.h"
#include "Korvane/app/page.h"
#include "Korvane/presenters/animation_rows.h"

#include <memory>
#include <optional>
#include <string>

namespace korvane
{

class archive_anim_dialog : public dialog_box
{
public:
    static constexpr int chosen = 1;

    // The game has archives.
    explicit archive_anim_dialog(page_host& host);
    ~archive_anim_dialog() override { destroy(); }

    std::string path() const { return m_path; } // "pack:" and the internal path of what was chosen

protected:
    std::optional<layout> onFill(failure& why) override;

private:
    void filter();
    void showCount();
    void choose(int row);

    std::shared_ptr<const game_data> m_po_game; // keeps the entries alive
    animation_rows m_rows{false};
    std::string m_path;
    field_name m_filter_name;
    edit_box m_filter;
    list_view m_list;
    label m_count;
    button m_ok, m_cancel;
    background_task m_listing; // the last member: its work ends first
};

// Nothing when the person changed their mind, or, after a box, when there are no archives.
std::optional<std::string> pickArchiveAnimation(page_host& host);

} // namespace korvane
