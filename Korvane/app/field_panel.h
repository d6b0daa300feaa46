#pragma once

// A panel of the main window: a captioned frame around rows of fields, which a table describes. The first column, the
// names, is equally wide in all panels. Layout follows the font and the density; fields are found by their numbers.

#include "EASY_GUI/win32/button.h"
#include "EASY_GUI/win32/combo_box.h"
#include "EASY_GUI/win32/edit_box.h"
#include "EASY_GUI/win32/font.h"
#include "EASY_GUI/win32/handle_policies.h"
#include "EASY_GUI/win32/window.h"
#include "Korvane/app/panel_column.h"
#include "Korvane/document/panel_contents.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace korvane
{

struct panel_field
{
    enum class kind
    {
        name, // of the field behind it
        text, // read only
        path, // the same, and its end is seen when it is too long
        list,
        check,
        button
    };
    static constexpr int name_width = -1; // that of the longest name
    static constexpr int rest = 0;        // a share of what the others leave

    kind what = kind::text;
    int id = 0;                 // a name has none
    std::string_view text = {}; // of a name, check box or button, with its mnemonic; outlives the panel
    int width = rest;           // at 96 dots per inch
    int share = 1;
};

class field_panel : public window, public column_part
{
public:
    using field_rows = std::vector<std::vector<panel_field>>;

    // acted is told the number of a list with a new choice, of a check box and of a pressed button.
    field_panel(std::string_view caption, field_rows rows, std::function<void(int id)> acted = {});
    ~field_panel() override { destroy(); }

    [[nodiscard]] bool createIn(HWND parent, failure& why);
    void setFont(const font& used) override;
    int preferredHeight() const override;
    void place(int x, int y, int width, int height) override;

    // The fields of the table, by number.
    void setText(int id, std::string_view text);
    void setTabStop(int id, bool is_wanted) { at(id).setTabStop(is_wanted); }
    void setEnabled(int id, bool is_enabled) { at(id).setEnabled(is_enabled); }
    void setColour(int id, const std::optional<rgb_colour>& colour); // of the background; nothing: the system's
    combo_box& list(int id) const;
    check_box& check(int id) const;

protected:
    bool onCreated() override;
    void onSize(int width, int height, size_change change) override;
    HBRUSH onControlColour(HDC context, HWND control) override;

private:
    struct field_colour
    {
        COLORREF colour;
        unique_brush brush;
    };

    bool createField(const panel_field& field);
    control& at(int id) const;
    int rowHeight() const;
    int firstRow() const;
    int widthOf(const panel_field& field) const; // 0: a share of the rest
    int textHeight() const;
    void placeRow(const std::vector<panel_field>& row, std::size_t first_control, int y);

    std::string m_caption;
    field_rows m_rows;
    std::function<void(int id)> m_acted;
    failure m_failure; // why the fields could not be created
    const font* m_po_font = nullptr;
    group_frame m_frame;
    std::vector<std::unique_ptr<control>> m_controls; // in the order of the rows
    std::map<int, control*> m_by_id;
    std::map<int, edit_box*> m_paths;
    std::map<HWND, field_colour> m_colours;
};

} // namespace korvane
