#include "Korvane/app/texture_window.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/app/command_ids.h"

#include <cmath>
#include <string_view>
#include <utility>
#include <vector>

namespace korvane
{

namespace
{

void fill(combo_box& box, const std::vector<std::string>& entries, int chosen)
{
    box.clear();
    for (const std::string& each : entries)
        box.add(each);
    box.select(chosen < static_cast<int>(entries.size()) ? std::max(chosen, 0) : 0);
    box.setEnabled(entries.size() > 1);
}

} // namespace

texture_window::texture_window(page_host& host)
    : file_window(host, {"View Texture", {720, 560}, true, helpContext(help_topic::archives)})
    , m_opening(host.thread(),
                {{}, {}, [this](const std::string& what) { m_image.setEmpty("Cannot be shown: " + what); }})
    , m_decoding(host.thread(),
                 {{}, {}, [this](const std::string& what) { m_image.setEmpty("Cannot be shown: " + what); }})
{
}

std::optional<layout> texture_window::onFill(failure& why)
{
    if (!m_channels_name.create(handle(), "&Channels:") || !m_channels.create(handle(), control_texture_channels) ||
        !m_level_name.create(handle(), "&Mip map:") || !m_level.create(handle(), control_texture_level) ||
        !m_surface_name.create(handle(), "&Surface:") || !m_surface.create(handle(), control_texture_surface) ||
        !m_image.createIn(handle(), why, image_view::use::zoom) ||
        !m_fit.create(handle(), control_texture_fit, "&Fit") ||
        !m_actual.create(handle(), control_texture_actual, "&Actual Size") ||
        !m_text.create(handle(), control_texture_text) || !m_pixel.create(handle(), control_texture_pixel) ||
        !m_close.create(handle(), control_dialog_close, "Close"))
        return std::nullopt;
    for (const auto& [text, channels] : channel_choices)
        m_channels.add(text);
    m_channels.select(0);
    m_channels.setTip("Transparent places are seen as a checkerboard, unless one channel alone is shown");
    m_surface.setTip("Faces of a cube map and layers of an array");
    m_fit.setTip("All of the texture, as large as the window (0)");
    m_actual.setTip(
        "A pixel of the texture is a pixel of the screen (1). The wheel, + and - zoom, arrows and dragging move");
    m_channels.onSelect = m_level.onSelect = m_surface.onSelect = [this](int) { decode(); };
    m_fit.onClick = [this] { m_image.fit(); };
    m_actual.onClick = [this] { m_image.showActualSize(); };
    m_image.onZoomed = [this] { showText(); };
    m_image.onPointed = [this](const std::optional<POINT>& at) {
        m_pixel.setText(at && m_po_decoded ? pixelText(*m_po_decoded, at->x, at->y) : "");
    };
    m_close.onClick = [this] { onCancel(); };
    using way = layout::direction;
    layout rows(way::down);
    rows.setMargins(10);
    rows.add(layout(way::across)
                 .add(m_channels_name)
                 .add(m_channels, share(3, 110))
                 .add(m_level_name)
                 .add(m_level, share(3, 110))
                 .add(m_surface_name)
                 .add(m_surface, share(2, 90)));
    rows.add(m_image, share(1, 160));
    rows.add(layout(way::across).add(m_text, share(1, 200)).add(m_pixel, share(1, 160)));
    rows.add(layout(way::across).add(m_fit).add(m_actual).add(share(1)).add(m_close));
    return rows;
}

void texture_window::onShown()
{
    SetFocus(m_image.handle());
}

void texture_window::onDestroyed()
{
    m_opening.stop();
    m_decoding.stop();
    m_po_texture = nullptr;
    m_po_decoded = nullptr;
    m_image.setEmpty({});
    file_window::onDestroyed();
}

void texture_window::load()
{
    m_decoding.stop();
    m_po_texture = nullptr;
    m_po_decoded = nullptr;
    m_decoded_level = m_decoded_surface = -1;
    m_image.setEmpty("Reading...");
    m_text.setText("");
    m_pixel.setText("");
    fill(m_level, {}, 0);
    fill(m_surface, {}, 0);
    m_opening.start([this, file = file()](const work_port&) -> background_task::answer {
        auto opened = std::make_shared<looked_texture>();
        failure why;
        if (opened->open(file, why))
            return [this, opened] { take(opened); };
        return [this, why] { showFailure(why); };
    });
}

void texture_window::take(std::shared_ptr<const looked_texture> opened)
{
    m_po_texture = std::move(opened);
    fill(m_level, m_po_texture->levels(), 0);
    fill(m_surface, m_po_texture->surfaces(), 0);
    decode();
}

// The channels of a picture that is decoded already are chosen without decoding it again.
void texture_window::decode()
{
    if (m_po_texture == nullptr)
        return;
    const int level = m_level.selected();
    const int surface = m_surface.selected();
    const auto channels = channel_choices[static_cast<std::size_t>(std::max(m_channels.selected(), 0))].second;
    const bool is_known = m_po_decoded && level == m_decoded_level && surface == m_decoded_surface;
    m_decoding.start([this, texture = m_po_texture, known = is_known ? m_po_decoded : nullptr, level, surface,
                      channels](const work_port&) -> background_task::answer {
        shown_pixels made;
        made.decoded =
            known ? known
                  : texture->decode(static_cast<std::size_t>(surface), static_cast<std::size_t>(level), made.why);
        if (made.decoded)
            made.shown = channels == preview_channels::all
                             ? made.decoded
                             : std::make_shared<const picture>(showChannels(*made.decoded, channels));
        return [this, made, level, surface] {
            m_decoded_level = level;
            m_decoded_surface = surface;
            take(made);
        };
    });
}

void texture_window::take(const shown_pixels& made)
{
    m_po_decoded = made.decoded;
    if (!made.shown)
        return showFailure(made.why);
    m_image.setPicture(static_cast<int>(made.shown->width()), static_cast<int>(made.shown->height()),
                       std::as_bytes(made.shown->pixels()), made.shown);
    showText();
}

void texture_window::showText()
{
    if (m_po_texture && m_po_decoded)
        m_text.setText(m_po_texture->text() + "; shown at " +
                       grouped(static_cast<std::size_t>(std::lround(m_image.scale() * 100))) + " %");
}

void texture_window::showFailure(const failure& why)
{
    m_image.setEmpty("This texture cannot be shown: " + displayText(describe(why)));
    m_text.setText("");
}

} // namespace korvane
