#pragma once

// What the chosen file of the archives looks like: a picture, or a text about it, and a line in words. It is made by a
// worker; of several files the newest one wins, so that whoever walks through a list never waits. Window thread.

#include "EASY_GUI/win32/background_task.h"
#include "EASY_GUI/win32/edit_box.h"
#include "EASY_GUI/win32/image_view.h"
#include "EASY_GUI/win32/label.h"
#include "EASY_GUI/win32/layout.h"
#include "EASY_GUI/win32/window.h"
#include "Korvane/jobs/file_preview.h"

#include <optional>
#include <string>

namespace korvane
{

class file_preview_panel : public window
{
public:
    explicit file_preview_panel(const ui_thread& thread);
    ~file_preview_panel() override { destroy(); }

    [[nodiscard]] bool createIn(HWND parent, failure& why);
    void setFont(const font& used);
    void show(const game_file& file);
    void showNothing(const std::string& text);
    bool isLoading() const { return m_loading.isRunning(); }

protected:
    bool onCreated() override;
    void onSize(int width, int height, size_change change) override;

private:
    void take(const file_preview& made);
    void layOut();

    image_view m_image;
    edit_box m_text;
    text_block m_caption;
    std::optional<font> m_fixed_font; // for columns
    const font* m_po_font = nullptr;
    bool m_is_text = false;
    background_task m_loading; // the last member: its work ends first
};

} // namespace korvane
