#pragma once

// What a texture looks like, beside the rows: the picture, the choice of channels, and format and sizes in words. It is
// decoded by a worker; of several requests the newest one wins. Window thread.

#include "EASY_GUI/win32/background_task.h"
#include "EASY_GUI/win32/combo_box.h"
#include "EASY_GUI/win32/image_view.h"
#include "EASY_GUI/win32/label.h"
#include "EASY_GUI/win32/layout.h"
#include "EASY_GUI/win32/window.h"
#include "Korvane/jobs/texture_preview.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace korvane
{

class texture_preview_panel : public window
{
public:
    std::function<void()> onOpen; // a double click on the picture

    explicit texture_preview_panel(const ui_thread& thread);
    ~texture_preview_panel() override { destroy(); }

    [[nodiscard]] bool createIn(HWND parent, failure& why);
    void setFont(const font& used);
    // The same as before is not read again, unless it is asked for.
    void show(const texture_preview_request& wanted, bool reads_again);
    void showNothing(const std::string& text);
    std::string text() const { return m_text.text(); }
    bool isLoading() const { return m_loading.isRunning(); }

protected:
    bool onCreated() override;
    void onSize(int width, int height, size_change change) override;

private:
    void take(texture_preview made);
    void showChosen();
    void layOut();

    combo_box m_channels;
    image_view m_image;
    text_block m_text;
    std::optional<layout> m_layout;
    const font* m_po_font = nullptr;
    texture_preview_request m_wanted; // of what is shown or loaded; no game: nothing is
    texture_preview m_made;
    background_task m_loading; // the last member: its work ends first
};

} // namespace korvane
