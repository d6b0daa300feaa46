#include "Korvane/app/texture_field.h"

#include "EASY_GUI/win32/mark_colour.h"
#include "Korvane/app/command_ids.h"
#include "Korvane/models/catalogue.h"

#include <algorithm>

namespace korvane
{

namespace
{

constexpr rgb_colour nowhere_colour{255, 205, 195}; // darker than that of rows whose file is there

unique_brush brushFor(const rgb_colour& colour)
{
    return unique_brush(CreateSolidBrush(RGB(colour.red, colour.green, colour.blue)));
}

} // namespace

bool texture_field::create(HWND parent, int row)
{
    if (!m_type.create(parent, control_texture_type + row) ||
        !m_directory.create(parent, control_texture_directory + row, edit_box::access::editable) ||
        !m_file.create(parent, control_texture_file + row, edit_box::access::editable) ||
        !m_choose.create(parent, control_texture_choose + row, "...."))
        return false;
    for (const named_number& type : textureTypes())
        m_type.add(type.name, type.number);
    m_type.setTabStop(false); // it only says something
    m_type.onSelect = [this](int) { m_type.select(m_content.type_position); };
    m_directory.onTyped = m_file.onTyped = [this] {
        if (onTyped)
            onTyped();
    };
    m_directory.onPaste = m_file.onPaste = [this] { return onPaste && onPaste(); };
    m_choose.onClick = [this] {
        if (onChoose)
            onChoose();
    };
    m_choose.setTip("Choose a DDS file for this texture");
    return true;
}

void texture_field::place(const RECT& where, const font& used, int gap, int type_width)
{
    constexpr LONG borders = 6; // of a text field, and its inner margin: higher ones have their text at the top
    const LONG height = where.bottom - where.top;
    const LONG text_height = std::min(height, used.height() + borders);
    const LONG text_top = where.top + (height - text_height) / 2;
    const LONG button_width = used.widthOf("....") + 4 * gap;
    const LONG rest = std::max(0L, where.right - where.left - type_width - button_width - 3 * gap);
    const LONG directory_width = rest * 11 / 20;
    LONG x = where.left;
    m_type.place(x, where.top, type_width, height);
    x += type_width + gap;
    m_directory.place(x, text_top, directory_width, text_height);
    x += directory_width + gap;
    m_file.place(x, text_top, rest - directory_width, text_height);
    m_choose.place(where.right - button_width, where.top, button_width, height);
    if (!m_directory.isTyped())
        m_directory.showEnd();
}

void texture_field::show(const texture_row_content& content, const texture_row_state& state)
{
    m_content = content;
    m_state = state;
    m_type.select(content.type_position);
    m_directory.setText(content.directory);
    m_file.setText(content.file);
    m_directory.showEnd();
    const bool is_nowhere = state.origin == texture_origin::nowhere;
    m_directory_brush = brushFor(content.directory_colour);
    m_file_brush = brushFor(is_nowhere ? nowhere_colour : content.file_colour);
    for (edit_box* const box : {static_cast<edit_box*>(&m_directory), static_cast<edit_box*>(&m_file)})
    {
        box->setTip(state.tip);
        box->setTabStop(content.is_used);
        SendMessageW(box->handle(), EM_SETREADONLY, content.is_used ? FALSE : TRUE, 0);
        InvalidateRect(box->handle(), nullptr, TRUE);
    }
    m_type.setTip(content.type_position < 0 ? content.type_name : "");
    m_type.setEnabled(content.is_used);
    m_choose.setEnabled(content.is_used);
    InvalidateRect(m_type.handle(), nullptr, TRUE);
}

std::string texture_field::directory() const
{
    std::string typed = m_directory.text();
    if (m_directory.isTyped() && !typed.empty() && typed.back() != '/' && typed.back() != '\\')
        typed += (typed + m_content.directory).find('\\') != std::string::npos ? '\\' : '/';
    return typed;
}

void texture_field::take()
{
    m_directory.take();
    m_file.take();
}

void texture_field::clearTyped()
{
    m_directory.setText(m_content.directory);
    m_file.setText(m_content.file);
}

bool texture_field::has(HWND control) const
{
    return control == m_type.handle() || control == m_directory.handle() || control == m_file.handle() ||
           control == m_choose.handle();
}

HBRUSH texture_field::brushOf(HWND control) const
{
    if (control == m_type.handle() || control == m_directory.handle())
        return m_directory_brush.get();
    return control == m_file.handle() ? m_file_brush.get() : nullptr;
}

HBRUSH texture_field::colour(HDC context, HWND control) const
{
    const HBRUSH brush = isHighContrast() ? nullptr : brushOf(control);
    const bool says_state = control == m_file.handle() && m_state.mark != row_mark::good;
    const auto marked = says_state ? textColour(m_state.mark) : std::nullopt;
    if (brush == nullptr)
        return nullptr;
    LOGBRUSH look{};
    GetObjectW(brush, sizeof look, &look);
    SetBkColor(context, look.lbColor);
    SetTextColor(context, marked ? *marked : RGB(0, 0, 0));
    return brush;
}

} // namespace korvane
