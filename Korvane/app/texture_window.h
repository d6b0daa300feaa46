#pragma once

// A texture in a window of its own, beside the main window: its channels, mip levels and surfaces, zoomed and moved. It
// shows one texture at a time. A worker reads and decodes. Window thread.

#include "EASY_GUI/win32/background_task.h"
#include "EASY_GUI/win32/combo_box.h"
#include "EASY_GUI/win32/image_view.h"
#include "EASY_GUI/win32/label.h"
#include "Korvane/app/file_window.h"
#include "Korvane/jobs/texture_look.h"

#include <memory>
#include <optional>
#include <string>

namespace korvane
{

class texture_window : public file_window
{
public:
    explicit texture_window(page_host& host);
    ~texture_window() override { destroy(); }

    bool isLoading() const { return m_opening.isRunning() || m_decoding.isRunning(); }
    std::string status() const { return m_text.text(); }
    double scale() const { return m_image.scale(); }

protected:
    std::optional<layout> onFill(failure& why) override;
    void onShown() override;
    void onDestroyed() override;

private:
    struct shown_pixels
    {
        std::shared_ptr<const picture> decoded; // what the file says
        std::shared_ptr<const picture> shown;   // in the chosen channels
        failure why;                            // set: there is nothing to show
    };

    void load() override;
    void take(std::shared_ptr<const looked_texture> opened);
    void decode();
    void take(const shown_pixels& made);
    void showText();
    void showFailure(const failure& why);

    std::shared_ptr<const looked_texture> m_po_texture; // null: not read yet
    std::shared_ptr<const picture> m_po_decoded;        // what is shown; null: nothing
    int m_decoded_level = -1, m_decoded_surface = -1;

    field_name m_channels_name, m_level_name, m_surface_name;
    combo_box m_channels, m_level, m_surface;
    button m_fit, m_actual;
    image_view m_image;
    label m_text, m_pixel;
    button m_close;
    background_task m_opening, m_decoding; // the last members: their work ends first
};

} // namespace korvane
