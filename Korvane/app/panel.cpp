#include "Korvane/app/panel.h"

#include "Korvane/app/command_ids.h"

namespace korvane
{

namespace
{

constexpr int padding = 10;
constexpr int gap = 6;
constexpr int field_borders = 4; // pixels at every density

BOOL CALLBACK setFontOf(HWND child, LPARAM font_handle)
{
    SendMessageW(child, WM_SETFONT, static_cast<WPARAM>(font_handle), TRUE);
    return TRUE;
}

} // namespace

bool panel::createIn(HWND parent, std::string_view caption, failure& why)
{
    m_caption = caption;
    window_settings settings;
    settings.style = WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS;
    settings.extended_style = WS_EX_CONTROLPARENT;
    settings.x = settings.y = settings.width = settings.height = 0;
    settings.parent = parent;
    return create(settings, why);
}

bool panel::onCreated()
{
    return m_frame.create(handle(), control_frame, m_caption) && createFields();
}

void panel::setFont(const font& used)
{
    m_po_font = &used;
    EnumChildWindows(handle(), &setFontOf, reinterpret_cast<LPARAM>(used.handle()));
    const RECT client = clientRectangle();
    onSize(client.right, client.bottom, size_change::restored);
}

int panel::rowHeight() const
{
    const int text = m_po_font != nullptr ? m_po_font->height() : scaled(13);
    return text + scaled(4) + field_borders;
}

int panel::firstRow() const
{
    return (m_po_font != nullptr ? m_po_font->height() : scaled(13)) + scaled(gap);
}

int panel::preferredHeight() const
{
    return firstRow() + m_rows * rowHeight() + (m_rows - 1) * scaled(gap) + scaled(padding);
}

int panel::nameColumn() const
{
    const int pixels = m_po_font != nullptr ? m_po_font->widthOf("Material String - and Id Number: ") : scaled(170);
    return MulDiv(pixels, 96, static_cast<int>(dpi())) + 4;
}

void panel::place(int x, int y, int width, int height)
{
    SetWindowPos(handle(), nullptr, x, y, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
}

void panel::onSize(int width, int height, size_change)
{
    if (m_po_font == nullptr)
        return;
    m_frame.place(0, 0, width, height);
    placeFields();
    invalidate();
}

void panel::placeRow(int row, std::initializer_list<cell> cells)
{
    int rest = clientRectangle().right - 2 * scaled(padding) - static_cast<int>(cells.size() - 1) * scaled(gap);
    int shares = 0;
    for (const cell& entry : cells)
    {
        rest -= entry.width != 0 ? scaled(entry.width) : 0;
        shares += entry.width != 0 ? 0 : entry.share;
    }
    int x = scaled(padding);
    const int y = firstRow() + row * (rowHeight() + scaled(gap));
    for (const cell& entry : cells)
    {
        const int width = entry.width != 0 ? scaled(entry.width) : rest > 0 ? rest * entry.share / shares : 0;
        entry.what->place(x, y, width, rowHeight());
        x += width + scaled(gap);
    }
}

void panel::setFieldColour(const control& field, std::optional<COLORREF> colour)
{
    m_colours.erase(field.handle());
    if (colour)
        m_colours.emplace(field.handle(), field_colour{*colour, unique_brush(CreateSolidBrush(*colour))});
    InvalidateRect(field.handle(), nullptr, TRUE);
}

HBRUSH panel::onControlColour(HDC context, HWND control)
{
    const auto found = m_colours.find(control);
    if (found == m_colours.end())
        return nullptr;
    SetBkColor(context, found->second.colour);
    return found->second.brush.get();
}

} // namespace korvane
