#pragma once

// The archives in the order in which they count: of each its format, its files, what it overrides and loses, and why.
// Window thread.

#include "EASY_GUI/win32/dialog_box.h"
#include "EASY_GUI/win32/edit_box.h"
#include "EASY_GUI/win32/label.h"
#include "EASY_GUI/win32/list_view.h"
#include "Korvane/presenters/archive_overview.h"

#include <cstddef>
#include <optional>

namespace korvane
{

class archive_overview_dialog : public dialog_box
{
public:
    static constexpr int show_files = 1; // of the archive that is chosen

    // The overview outlives the dialog. first: the number of the archive that is chosen at first, in the order of the
    // tree.
    archive_overview_dialog(const archive_overview& shown, std::size_t first);
    ~archive_overview_dialog() override { destroy(); }

    std::size_t chosen() const { return m_chosen; } // in the order of the tree

protected:
    std::optional<layout> onFill(failure& why) override;
    void onShown() override;

private:
    void showFacts(int row);

    const archive_overview& m_shown;
    std::size_t m_chosen;
    field_name m_list_name, m_facts_name;
    list_view m_list;
    edit_box m_facts;
    button m_files, m_close;
};

} // namespace korvane
