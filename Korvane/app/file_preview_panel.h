#pragma once

// What the chosen file of the archives looks like: a picture, a text about it, or for models both, and a line in words.
// Workers make them, the text first; of several files the newest one wins, so that whoever walks through a list never
// waits. Window thread.

#include "EASY_GUI/win32/background_task.h"
#include "EASY_GUI/win32/edit_box.h"
#include "EASY_GUI/win32/image_view.h"
#include "EASY_GUI/win32/label.h"
#include "EASY_GUI/win32/layout.h"
#include "EASY_GUI/win32/window.h"
#include "Korvane/jobs/file_preview.h"
#include "Korvane/jobs/scene_preview.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace korvane
{

class file_preview_panel : public window
{
public:
    std::function<void()> onOpen; // a double click on the picture

    // Who draws models; null: nobody does.
    file_preview_panel(const ui_thread& thread, std::shared_ptr<scene_pictures> pictures);
    ~file_preview_panel() override { destroy(); }

    [[nodiscard]] bool createIn(HWND parent, failure& why);
    void setFont(const font& used);
    void show(const game_file& file, std::shared_ptr<const game_data> game); // the one that the file is of
    void showNothing(const std::string& text);
    bool isLoading() const { return m_loading.isRunning() || m_drawing.isRunning(); }
    bool hasPicture() const { return m_image.hasPicture(); }

protected:
    bool onCreated() override;
    void onSize(int width, int height, size_change change) override;

private:
    void take(const file_preview& made);
    void draw(const game_file& file, std::shared_ptr<const game_data> game);
    void takeDrawn(const scene_preview& made);
    void layOut();

    image_view m_image;
    edit_box m_text;
    text_block m_caption;
    std::optional<font> m_fixed_font; // for columns
    const font* m_po_font = nullptr;
    bool m_is_text = false;
    bool m_is_image = true;
    std::shared_ptr<scene_pictures> m_po_pictures;
    background_task m_loading, m_drawing; // the last members: their work ends first
};

} // namespace korvane
