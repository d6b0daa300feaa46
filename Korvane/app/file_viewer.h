#pragma once

// A file of the archives as a text, or as its bytes, in a window beside the main window: read-only, with a search and a
// way to go to a position. It shows one file at a time. Everything is read by a worker, so that a file of any size is
// there at once. Window thread.

#include "EASY_GUI/win32/background_task.h"
#include "EASY_GUI/win32/combo_box.h"
#include "EASY_GUI/win32/edit_box.h"
#include "EASY_GUI/win32/label.h"
#include "EASY_GUI/win32/list_view.h"
#include "Korvane/app/file_window.h"
#include "Korvane/app/filter_field.h"
#include "Korvane/game/file_bytes.h"
#include "Korvane/presenters/hex_rows.h"

#include <memory>
#include <optional>
#include <string>

namespace korvane
{

// Text and bytes in one place, of which one is seen.
class file_content_panel : public window
{
public:
    ~file_content_panel() override { destroy(); }

    [[nodiscard]] bool createIn(HWND parent, const hex_rows& rows, failure& why);
    void useFixedFont();
    void showText(bool is_text);
    bool isText() const { return m_is_text; }

    edit_box text;
    list_view bytes;

protected:
    bool onCreated() override { return true; }
    void onSize(int width, int height, size_change change) override;

private:
    bool m_is_text = true;
    std::optional<font> m_fixed_font; // for columns
};

class file_viewer : public file_window
{
public:
    explicit file_viewer(page_host& host);
    ~file_viewer() override { destroy(); }

    bool isLoading() const { return m_opening.isRunning() || m_reading.isRunning() || m_finding.isRunning(); }
    std::string status() const { return m_status.text(); }

protected:
    std::optional<layout> onFill(failure& why) override;
    void onShown() override;
    void onDestroyed() override;
    void onDpiChanged(unsigned dpi) override;
    LRESULT handleMessage(UINT message, WPARAM wparam, LPARAM lparam) override;

private:
    struct content
    {
        game_file file;
        file_bytes bytes;
        std::string text;     // as it is shown; of a large file its beginning
        std::string encoding; // empty: these bytes are no text
        bool is_whole = false;
        failure why; // set: the file cannot be read
    };

    void load() override;
    void take(std::shared_ptr<const content> read);
    void showForm(bool is_text);
    void showStatus(const std::string& addition = {});
    void readWanted();
    void findNext();
    void findInText();
    void findInBytes();
    void goTo();

    hex_rows m_rows;
    std::shared_ptr<const content> m_po_content; // null: not read yet

    field_name m_form_name, m_find_name, m_position_name;
    combo_box m_form;
    filter_field m_find, m_position;
    button m_next;
    file_content_panel m_content;
    label m_status;
    button m_close;
    background_task m_opening, m_reading, m_finding; // the last members: their work ends first
};

} // namespace korvane
