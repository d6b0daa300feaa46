#include "Korvane/app/file_preview_panel.h"

#include "Korvane/app/command_ids.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace korvane
{

file_preview_panel::file_preview_panel(const ui_thread& thread, std::shared_ptr<scene_pictures> pictures)
    : m_po_pictures(std::move(pictures))
    , m_loading(thread, {{}, {}, [this](const std::string& what) { showNothing("No preview: " + what); }})
    , m_drawing(thread, {{}, {}, [this](const std::string& what) { m_image.setEmpty("No picture: " + what); }})
{
}

bool file_preview_panel::createIn(HWND parent, failure& why)
{
    return createChild(parent, WS_CLIPCHILDREN, WS_EX_CONTROLPARENT, why);
}

bool file_preview_panel::onCreated()
{
    failure why;
    if (!m_image.createIn(handle(), why) ||
        !m_text.createLines(handle(), control_archive_text, edit_box::access::read_only) ||
        !m_caption.create(handle(), control_archive_caption))
        return false;
    m_text.setVisible(false);
    m_image.onDoubleClick = [this] {
        if (const auto opened = onOpen; opened && m_image.hasPicture())
            opened();
    };
    return true;
}

void file_preview_panel::setFont(const font& used)
{
    m_po_font = &used;
    m_fixed_font.emplace(dpi(), font::weight::fixed_width);
    m_text.setFont(*m_fixed_font);
    m_caption.setFont(used);
    SendMessageW(m_image.handle(), WM_SETFONT, reinterpret_cast<WPARAM>(used.handle()), TRUE);
    layOut();
}

void file_preview_panel::onSize(int, int, size_change)
{
    layOut();
}

void file_preview_panel::layOut()
{
    if (m_po_font == nullptr)
        return;
    layout rows(layout::direction::down, 4);
    if (m_is_image)
        rows.add(m_image, share(m_is_text ? 3 : 1, 40));
    if (m_is_text)
        rows.add(m_text, share(m_is_image ? 2 : 1, 40));
    rows.add(m_caption, lines(3));
    rows.place(clientRectangle(), *m_po_font, dpi());
}

void file_preview_panel::show(const game_file& file, std::shared_ptr<const game_data> game)
{
    m_drawing.stop();
    m_loading.start([this, file, game](const work_port& port) {
        auto made = std::make_shared<file_preview>(previewFile(file, port));
        return background_task::answer([this, file, game, made] {
            m_is_image = made->text.empty() || (m_po_pictures && isDrawable(file));
            take(*made);
            if (m_is_image && m_is_text)
                draw(file, game);
        });
    });
}

void file_preview_panel::showNothing(const std::string& text)
{
    m_loading.stop();
    m_drawing.stop();
    file_preview nothing;
    nothing.caption = text;
    m_is_image = true;
    take(nothing);
}

void file_preview_panel::take(const file_preview& made)
{
    m_is_text = !made.text.empty();
    m_text.setText(made.text);
    m_caption.setText(made.caption);
    if (made.pixels.pixelCount() > 0)
        m_image.setPicture(static_cast<int>(made.pixels.width()), static_cast<int>(made.pixels.height()),
                           std::as_bytes(made.pixels.pixels()));
    else
        m_image.setEmpty("");
    m_text.setVisible(m_is_text);
    ShowWindow(m_image.handle(), m_is_image ? SW_SHOWNA : SW_HIDE);
    layOut();
}

void file_preview_panel::draw(const game_file& file, std::shared_ptr<const game_data> game)
{
    constexpr LONG least = 32, most = 1024;
    const RECT place = m_image.clientRectangle();
    const auto width = static_cast<std::uint32_t>(std::clamp(place.right, least, most));
    const auto height = static_cast<std::uint32_t>(std::clamp(place.bottom, least, most));
    m_image.setEmpty("Drawing...");
    m_drawing.start(
        [this, file, game = std::move(game), pictures = m_po_pictures, width, height](const work_port& port) {
            auto made = std::make_shared<scene_preview>(drawPreview(file, game, *pictures, width, height, port));
            return background_task::answer([this, made] { takeDrawn(*made); });
        });
}

void file_preview_panel::takeDrawn(const scene_preview& made)
{
    if (made.pixels.pixelCount() == 0)
        return m_image.setEmpty(made.text);
    m_image.setPicture(static_cast<int>(made.pixels.width()), static_cast<int>(made.pixels.height()),
                       std::as_bytes(made.pixels.pixels()));
    m_caption.setText(made.text + "\r\n" + m_caption.text());
}

} // namespace korvane
