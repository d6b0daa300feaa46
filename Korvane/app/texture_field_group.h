#pragma once

// The texture panel: the textures of the selected group as rows, what the selected row's texture looks like beside
// them, and below them what replaces, paints and extracts textures. Window thread.

#include "EASY_GUI/win32/button.h"
#include "EASY_GUI/win32/combo_box.h"
#include "EASY_GUI/win32/label.h"
#include "EASY_GUI/win32/layout.h"
#include "EASY_GUI/win32/menu.h"
#include "EASY_GUI/win32/progress_bar.h"
#include "Korvane/app/page.h"
#include "Korvane/app/panel_column.h"
#include "Korvane/app/texture_commands.h"
#include "Korvane/app/texture_field.h"
#include "Korvane/app/texture_preview_panel.h"
#include "Korvane/app/texture_window.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace korvane
{

class texture_field_group : public window, public column_part
{
public:
    texture_field_group(page_host& host, texture_ports ports);
    ~texture_field_group() override { destroy(); }

    [[nodiscard]] bool createIn(HWND parent, failure& why);
    void setFont(const font& used) override;
    int preferredHeight() const override;
    void place(int x, int y, int width, int height) override;

    void showDocument();
    void showSelection();
    void follow() { m_commands.follow(); } // what other programs paint; about twice a second
    void takeTyped();                      // into the document
    // Of the row that has the focus, or had it last.
    void run(document_command command);
    void select(int row, bool is_focused); // does nothing with a row that is not used
    int selectedRow() const { return m_selected; }
    // The path of the row that has the focus; empty: none has it.
    std::string focusedPath() const;
    // A path, into the row that has the focus. False: none has it, or the text is no path.
    bool paste(const std::string& text);
    bool isLoading() const { return m_preview.isLoading(); }

protected:
    bool onCreated() override;
    void onSize(int width, int height, size_change change) override;
    void onControlFocused(HWND control) override;
    HBRUSH onControlColour(HDC context, HWND control) override;
    void onFilesDropped(const std::vector<std::string>& paths) override;
    LRESULT handleMessage(UINT message, WPARAM wparam, LPARAM lparam) override;

private:
    bool createBelow();
    void takeForm();
    layout belowRows();
    int rowHeight() const;
    int rowOf(HWND control) const; // -1: none
    int rowAt(POINT at) const;     // client pixels; -1: none
    RECT rowPlace(std::size_t row) const;
    int rowsWidth() const;
    void placeMarker();
    void showRows();
    void setPath(std::size_t row); // as it was typed
    bool pasteClipboard();
    std::size_t row() const { return static_cast<std::size_t>(m_selected); }
    void showPreview(bool reads_again);
    void view(); // the row's texture in a window of its own
    void showExtraction();
    void openMenu(HWND control, POINT on_screen);
    void runFromMenu(int chosen);

    page_host& m_host;
    const font* m_po_font = nullptr;
    group_frame m_frame;
    label m_marker; // before the selected row
    std::array<texture_field, texture_row_count> m_rows;
    int m_selected = 0;
    texture_preview_panel m_preview;
    texture_window m_window;
    button m_replace, m_edit, m_extract, m_choose_folder, m_open_folder;
    check_box m_is_flat, m_is_picture;
    combo_box m_picture_kind;
    progress_bar m_progress;
    label m_status;
    std::optional<layout> m_below;
    POINT m_dropped_at{};
    texture_commands m_commands; // its work ends first
};

} // namespace korvane
