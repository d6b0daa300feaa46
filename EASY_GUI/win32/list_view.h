#pragma once

// A list with columns over a list_model, which outlives it: rows are asked for when they are seen, so there may be
// millions. Marked rows have a text colour that fits the system's and, if wanted, a picture. Typing letters goes to the
// next row that begins with them. Texts that are cut off, and the model's tips, are tooltips. Call refresh() whenever
// the model's rows changed.

#include "EASY_GUI/services/list_model.h"
#include "EASY_GUI/win32/control.h"
#include "EASY_GUI/win32/image_list.h"

#include <span>
#include <utility>
#include <vector>

namespace korvane
{

struct list_view_options
{
    bool has_many = false;     // rows may be selected at once
    bool has_pictures = false; // of the marks note, warning and error, before the first column
};

class list_view : public control
{
public:
    // By the person. Rows count from 0; -1 is none. With many at once the row is the one that has the focus.
    std::function<void(int row)> onSelect;
    std::function<void(int row)> onActivate;                     // Enter or a double click
    std::function<void(int row, POINT on_screen)> onContextMenu; // the row is selected by then
    std::function<void(int column)> onColumn;                    // a click on its title
    std::function<void()> onDrag;                                // the selected rows are dragged: the button is down
    std::function<bool(unsigned virtual_key)> onKey;             // true: handled; must be so when the list is gone

    [[nodiscard]] bool create(HWND parent, int id, const list_model& model, list_view_options options = {});

    void refresh();       // what is selected stays, as far as these rows exist
    int selected() const; // the one with the focus, if it is selected; -1: none
    std::vector<std::size_t> selectedRows() const;
    std::size_t selectedCount() const;              // known without looking for them
    void select(int row);                           // and show it; -1: none; calls nothing
    void select(std::span<const std::size_t> rows); // of many; calls nothing
    void selectAll();

    // At 96 dots per inch, so that they can be remembered. Columns that the span has no width for stay as they are.
    std::vector<int> columnWidths() const;
    void setColumnWidths(std::span<const int> widths);

    // An arrow in the title of the column by which the model's rows are sorted; -1: in none.
    void showSorting(int column, bool is_descending);

    bool fillsHeight() const override { return true; }

protected:
    bool onNotify(NMHDR& message, LRESULT& result) override;
    LRESULT handleMessage(UINT message, WPARAM wparam, LPARAM lparam) override;
    std::string tipAt(POINT at) const override;

private:
    void release(UINT states);   // of all rows
    void setAll(LVITEMW& state); // of all rows at once
    void setSelected(int row, bool is_selected);
    bool isToSelectAnother(UINT message, WPARAM wparam, LPARAM lparam) const;
    LRESULT selectAnother(UINT message, WPARAM wparam, LPARAM lparam);
    void giveText(LVITEMW& item);
    LRESULT draw(NMLVCUSTOMDRAW& stage) const;
    int findFrom(const NMLVFINDITEMW& wanted) const;
    void createPictures();
    void fitLastColumn();
    void tellSelection(bool may_be_none, int known = -1); // the row, where the system has said which
    void tellContextMenu(POINT on_screen);
    std::pair<int, int> cellAt(POINT at) const; // row and column; -1: none
    bool isRow(int row) const { return row >= 0 && static_cast<std::size_t>(row) < m_po_model->rowCount(); }

    const list_model* m_po_model = nullptr;
    list_view_options m_options;
    image_list m_pictures;
    std::wstring m_text;        // that the system reads
    int m_told = -1;            // row, by onSelect
    bool m_is_look_due = false; // at the selection
    bool m_is_set = false;      // just now, by the program
    std::pair<int, int> m_pointed_at{-1, -1};
    unsigned m_dpi = 96; // of the columns
};

} // namespace korvane
