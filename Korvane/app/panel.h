#pragma once

// The base of the information panels: a child window with a captioned frame and rows of fields, whose first column, the
// names, is equally wide in all panels. Layout follows the font and the density.

#include "EASY_GUI/win32/button.h"
#include "EASY_GUI/win32/edit_box.h"
#include "EASY_GUI/win32/font.h"
#include "EASY_GUI/win32/handle_policies.h"
#include "EASY_GUI/win32/label.h"
#include "EASY_GUI/win32/window.h"
#include "Korvane/document/panel_contents.h"

#include <initializer_list>
#include <map>
#include <optional>

namespace korvane
{

[[nodiscard]] inline COLORREF systemColour(const rgb_colour& colour)
{
    return RGB(colour.red, colour.green, colour.blue);
}

class panel : public window
{
public:
    ~panel() override { destroy(); }

    [[nodiscard]] bool createIn(HWND parent, std::string_view caption, failure& why);
    void setFont(const font& used); // of all its controls; the font must outlive the panel or the next call
    int preferredHeight() const;    // pixels
    void place(int x, int y, int width, int height);

protected:
    struct cell
    {
        control* what = nullptr;
        int width = 0; // at 96 dots per inch; 0: a share of what the others leave
        int share = 1;
    };

    explicit panel(int rows) : m_rows(rows) {}
    virtual bool createFields() = 0; // false when the system refuses one
    virtual void placeFields() = 0;  // calls placeRow for each row

    void placeRow(int row, std::initializer_list<cell> cells);
    int nameColumn() const; // width of the first column, at 96 dots per inch
    // The background of a field; nothing: the system's.
    void setFieldColour(const control& field, std::optional<COLORREF> colour);

    bool onCreated() override;
    void onSize(int width, int height, size_change change) override;
    HBRUSH onControlColour(HDC context, HWND control) override;

private:
    int rowHeight() const;
    int firstRow() const;

    struct field_colour
    {
        COLORREF colour;
        unique_brush brush;
    };

    int m_rows;
    std::string m_caption;
    const font* m_po_font = nullptr;
    group_frame m_frame;
    std::map<HWND, field_colour> m_colours;
};

} // namespace korvane
