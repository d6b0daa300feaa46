#include "Korvane/app/texture_preview_panel.h"

#include "Korvane/app/command_ids.h"

#include <string_view>
#include <utility>

namespace korvane
{

texture_preview_panel::texture_preview_panel(const ui_thread& thread)
    : m_loading(thread, {{}, {}, [this](const std::string& what) { showNothing("No preview: " + what); }})
{
}

bool texture_preview_panel::createIn(HWND parent, failure& why)
{
    return createChild(parent, WS_VISIBLE | WS_CLIPCHILDREN, WS_EX_CONTROLPARENT, why);
}

bool texture_preview_panel::onCreated()
{
    failure why;
    if (!m_channels.create(handle(), control_preview_channels) || !m_image.createIn(handle(), why) ||
        !m_text.create(handle(), control_preview_text))
        return false;
    m_image.onDoubleClick = [this] {
        if (const auto opened = onOpen; opened && m_image.hasPicture())
            opened();
    };
    for (const auto& [text, channels] : channel_choices)
        m_channels.add(text);
    m_channels.select(0);
    m_channels.onSelect = [this](int) { showChosen(); };
    m_channels.setTip("Which channels of the texture are shown");
    layout rows(layout::direction::down, 4);
    rows.add(m_channels).add(m_image, share(1, 40)).add(m_text, lines(3));
    m_layout = std::move(rows);
    return true;
}

void texture_preview_panel::setFont(const font& used)
{
    m_po_font = &used;
    m_channels.setFont(used);
    m_text.setFont(used);
    SendMessageW(m_image.handle(), WM_SETFONT, reinterpret_cast<WPARAM>(used.handle()), TRUE);
    layOut();
}

void texture_preview_panel::onSize(int, int, size_change)
{
    layOut();
}

void texture_preview_panel::layOut()
{
    if (m_po_font != nullptr && m_layout)
        m_layout->place(clientRectangle(), *m_po_font, dpi());
}

void texture_preview_panel::show(const texture_preview_request& wanted, bool reads_again)
{
    if (!reads_again && wanted.game == m_wanted.game && wanted.path == m_wanted.path &&
        wanted.model_path == m_wanted.model_path)
        return;
    m_wanted = wanted;
    m_loading.start([this, wanted](const work_port& port) {
        auto made = std::make_shared<texture_preview>(makeTexturePreview(wanted, port));
        return background_task::answer([this, made] { take(std::move(*made)); });
    });
}

void texture_preview_panel::showNothing(const std::string& text)
{
    m_loading.stop();
    m_wanted = {};
    m_made = {};
    m_image.setEmpty(text);
    m_text.setText("");
    m_channels.setEnabled(false);
}

void texture_preview_panel::take(texture_preview made)
{
    m_made = std::move(made);
    m_text.setText(m_made.text);
    m_text.setTip(m_made.path);
    m_channels.setEnabled(m_made.pixels.pixelCount() > 0);
    showChosen();
}

void texture_preview_panel::showChosen()
{
    if (m_made.pixels.pixelCount() == 0)
        return m_image.setEmpty("No picture");
    const int chosen = m_channels.selected();
    const picture shown =
        showChannels(m_made.pixels, chosen < 0 ? preview_channels::all : channel_choices[chosen].second);
    m_image.setPicture(static_cast<int>(shown.width()), static_cast<int>(shown.height()),
                       std::as_bytes(shown.pixels()));
}

} // namespace korvane
