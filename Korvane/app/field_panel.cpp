#include "Korvane/app/field_panel.h"

#include "EASY_GUI/win32/label.h"
#include "EASY_GUI/win32/mark_colour.h"
#include "Korvane/app/command_ids.h"

#include <algorithm>
#include <utility>

namespace korvane
{

namespace
{

constexpr int padding = 10;
constexpr int gap = 6;
constexpr int field_borders = 4; // pixels at every density
constexpr std::string_view longest_name = "Material String - and Id Number: ";

BOOL CALLBACK setFontOf(HWND child, LPARAM font_handle)
{
    SendMessageW(child, WM_SETFONT, static_cast<WPARAM>(font_handle), TRUE);
    return TRUE;
}

} // namespace

field_panel::field_panel(std::string_view caption, field_rows rows, std::function<void(int id)> acted)
    : m_caption(caption)
    , m_rows(std::move(rows))
    , m_acted(std::move(acted))
{
}

bool field_panel::createIn(HWND parent, failure& why)
{
    m_failure = {};
    if (createChild(parent, WS_VISIBLE | WS_CLIPSIBLINGS, WS_EX_CONTROLPARENT, why))
        return true;
    why.what = "the panel \"" + m_caption + "\" could not be created: " + (m_failure ? m_failure : why).what;
    return false;
}

bool field_panel::onCreated()
{
    m_controls.clear();
    m_by_id.clear();
    m_paths.clear();
    if (!m_frame.create(handle(), control_frame, m_caption))
        return fail(m_failure, failure_kind::refused, "its frame (error " + std::to_string(GetLastError()) + ")");
    for (const std::vector<panel_field>& row : m_rows)
        for (const panel_field& field : row)
            if (!createField(field))
                return fail(m_failure, failure_kind::refused,
                            "field " + std::to_string(field.id) + " " + std::string(field.text) + " (error " +
                                std::to_string(GetLastError()) + ")");
    return true;
}

bool field_panel::createField(const panel_field& field)
{
    const auto act = [this, id = field.id] {
        if (m_acted)
            m_acted(id);
    };
    const auto made = [&]<typename Control>(std::unique_ptr<Control> fresh, auto... arguments) {
        Control& created = *fresh;
        if constexpr (std::is_same_v<Control, combo_box>)
            created.onSelect = [act](int) { act(); };
        if constexpr (std::is_same_v<Control, button>)
            created.onClick = act;
        if constexpr (std::is_same_v<Control, check_box>)
            created.onClick = [act](bool) { act(); };
        m_by_id[field.id] = fresh.get();
        m_controls.push_back(std::move(fresh));
        return created.create(handle(), arguments...);
    };
    switch (field.what)
    {
    case panel_field::kind::name:
        return made(std::make_unique<field_name>(), field.text);
    case panel_field::kind::text:
        return made(std::make_unique<edit_box>(), field.id, edit_box::access::read_only);
    case panel_field::kind::path:
        if (!made(std::make_unique<edit_box>(), field.id, edit_box::access::read_only))
            return false;
        m_paths[field.id] = static_cast<edit_box*>(m_by_id[field.id]);
        return true;
    case panel_field::kind::list:
        return made(std::make_unique<combo_box>(), field.id);
    case panel_field::kind::check:
        return made(std::make_unique<check_box>(), field.id, field.text);
    default:
        return made(std::make_unique<button>(), field.id, field.text);
    }
}

control& field_panel::at(int id) const
{
    return *m_by_id.at(id);
}

void field_panel::setText(int id, std::string_view text)
{
    at(id).setText(text);
    if (const auto path = m_paths.find(id); path != m_paths.end())
        path->second->showEnd();
}

void field_panel::setFont(const font& used)
{
    m_po_font = &used;
    EnumChildWindows(handle(), &setFontOf, reinterpret_cast<LPARAM>(used.handle()));
    const RECT client = clientRectangle();
    onSize(client.right, client.bottom, size_change::restored);
}

int field_panel::rowHeight() const
{
    const int text = m_po_font != nullptr ? m_po_font->height() : scaled(13);
    return text + scaled(4) + field_borders;
}

// A text stands at the upper edge of its field: only in a field that is just high enough it stands in the middle.
int field_panel::textHeight() const
{
    return std::min(rowHeight(), m_po_font->height() + 2 + field_borders);
}

int field_panel::firstRow() const
{
    return (m_po_font != nullptr ? m_po_font->height() : scaled(13)) + scaled(gap);
}

int field_panel::preferredHeight() const
{
    const int rows = static_cast<int>(m_rows.size());
    return firstRow() + rows * rowHeight() + (rows - 1) * scaled(gap) + scaled(padding);
}

int field_panel::widthOf(const panel_field& field) const
{
    return field.width == panel_field::name_width ? m_po_font->widthOf(longest_name) + scaled(4) : scaled(field.width);
}

void field_panel::place(int x, int y, int width, int height)
{
    SetWindowPos(handle(), nullptr, x, y, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
}

void field_panel::onSize(int width, int height, size_change)
{
    if (m_po_font == nullptr || width == 0) // without a place yet
        return;
    m_frame.place(0, 0, width, height);
    std::size_t first_control = 0;
    int y = firstRow();
    for (const std::vector<panel_field>& row : m_rows)
    {
        placeRow(row, first_control, y);
        first_control += row.size();
        y += rowHeight() + scaled(gap);
    }
    for (const auto& [id, path] : m_paths)
        path->showEnd();
    invalidate();
}

void field_panel::placeRow(const std::vector<panel_field>& row, std::size_t first_control, int y)
{
    int rest = clientRectangle().right - 2 * scaled(padding) - static_cast<int>(row.size() - 1) * scaled(gap);
    int shares = 0;
    for (const panel_field& field : row)
    {
        rest -= widthOf(field);
        shares += field.width == panel_field::rest ? field.share : 0;
    }
    int x = scaled(padding);
    for (std::size_t i = 0; i < row.size(); ++i)
    {
        const bool is_share = row[i].width == panel_field::rest;
        const int width = !is_share ? widthOf(row[i]) : rest > 0 ? rest * row[i].share / shares : 0;
        const bool is_text = row[i].what == panel_field::kind::text || row[i].what == panel_field::kind::path;
        const int height = is_text ? textHeight() : rowHeight();
        m_controls[first_control + i]->place(x, y + (rowHeight() - height) / 2, width, height);
        x += width + scaled(gap);
    }
}

void field_panel::setColour(int id, const std::optional<rgb_colour>& colour)
{
    const HWND field = at(id).handle();
    m_colours.erase(field);
    if (colour)
    {
        const COLORREF value = RGB(colour->red, colour->green, colour->blue);
        m_colours.emplace(field, field_colour{value, unique_brush(CreateSolidBrush(value))});
    }
    InvalidateRect(field, nullptr, TRUE);
}

HBRUSH field_panel::onControlColour(HDC context, HWND control)
{
    const auto found = m_colours.find(control);
    if (found == m_colours.end() || isHighContrast())
        return nullptr;
    SetBkColor(context, found->second.colour);
    SetTextColor(context, RGB(0, 0, 0)); // the colour is a light one, whatever the system's are
    return found->second.brush.get();
}

combo_box& field_panel::list(int id) const
{
    return static_cast<combo_box&>(at(id));
}

check_box& field_panel::check(int id) const
{
    return static_cast<check_box&>(at(id));
}

} // namespace korvane
