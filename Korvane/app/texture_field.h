#pragma once

// A row of the texture panel: what kind of texture it is, its path in two fields, and the button that chooses another
// file. It holds no document: whoever owns it says what is shown, and is told what the person did. Window thread.

#include "EASY_GUI/win32/button.h"
#include "EASY_GUI/win32/combo_box.h"
#include "EASY_GUI/win32/handle_policies.h"
#include "Korvane/app/path_box.h"
#include "Korvane/document/panel_contents.h"
#include "Korvane/presenters/texture_rows.h"

#include <functional>
#include <string>

namespace korvane
{

class texture_field
{
public:
    std::function<void()> onTyped;  // directory() and file() are another path
    std::function<bool()> onPaste;  // into one of the fields; true: handled
    std::function<void()> onChoose; // the button

    [[nodiscard]] bool create(HWND parent, int row); // in the order of Tab
    void place(const RECT& where, const font& used, int gap, int type_width);
    void show(const texture_row_content& content, const texture_row_state& state);

    std::string directory() const; // with a separator at its end
    std::string file() const { return m_file.text(); }
    void take(); // what is typed and not taken yet
    bool has(HWND control) const;
    void focus() { m_directory.focus(); }
    void clearTyped(); // as it was shown last
    // The background of one of its controls, with the colour of its text; null: the system's.
    HBRUSH colour(HDC context, HWND control) const;

private:
    HBRUSH brushOf(HWND control) const;

    combo_box m_type;
    path_box m_directory, m_file;
    button m_choose;
    texture_row_content m_content;
    texture_row_state m_state;
    unique_brush m_directory_brush, m_file_brush;
};

} // namespace korvane
