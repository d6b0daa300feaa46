#pragma once

// A page whose controls stand in one layout, and give way to an empty state where there is nothing to show. They are
// created when the page is first seen.

#include "EASY_GUI/win32/layout.h"
#include "Korvane/app/empty_state.h"
#include "Korvane/app/page.h"

#include <vector>

namespace korvane
{

class rows_page : public page
{
protected:
    // The controls are the derived class's; the layout is filled by it, too.
    rows_page(page_host& host, std::vector<control*> controls);

    virtual bool isEmpty() const { return false; } // then the empty state, which the class has created, is seen
    void layOut();
    void setRowsVisible(bool is_visible);
    void onSize(int width, int height, size_change change) override;
    void applyFont(const font& used) override;
    LRESULT handleMessage(UINT message, WPARAM wparam, LPARAM lparam) override;

    layout m_layout{layout::direction::down};
    empty_state m_empty;

private:
    std::vector<control*> m_controls;
};

} // namespace korvane
