#include "Korvane/app/empty_state.h"

#include "Korvane/app/command_ids.h"

#include <algorithm>
#include <utility>

namespace korvane
{

namespace
{

constexpr int state_margin = 24; // at 96 dots per inch
constexpr int button_gap = 8;

} // namespace

bool empty_state::createIn(HWND parent, failure& why)
{
    return createChild(parent, WS_CLIPCHILDREN, WS_EX_CONTROLPARENT, why);
}

bool empty_state::onCreated()
{
    bool is_whole = m_heading.create(handle(), 0);
    for (label& line : m_lines)
        is_whole = is_whole && line.create(handle(), 0);
    for (std::size_t i = 0; i < most_choices; ++i)
    {
        is_whole = is_whole && m_choices[i].create(handle(), control_empty_choice + static_cast<int>(i), "");
        m_choices[i].onClick = [this, i] {
            if (i >= m_content.choices.size())
                return;
            const std::function<void()> act = m_content.choices[i].act; // which may change the content
            act();
        };
    }
    return is_whole;
}

void empty_state::setContent(empty_content content)
{
    m_content = std::move(content);
    m_heading.setText(m_content.heading);
    for (std::size_t i = 0; i < most_lines; ++i)
        m_lines[i].setText(i < m_content.lines.size() ? m_content.lines[i] : std::string());
    for (std::size_t i = 0; i < most_choices; ++i)
    {
        const bool is_used = i < m_content.choices.size();
        if (is_used)
            m_choices[i].setText(m_content.choices[i].text);
        ShowWindow(m_choices[i].handle(), is_used ? SW_SHOWNA : SW_HIDE);
    }
    layOut();
}

void empty_state::setFont(const font& used)
{
    m_po_font = &used;
    font heading(dpi(), font::weight::bold);
    m_heading.setFont(heading);
    m_heading_font = std::move(heading);
    for (label& line : m_lines)
        line.setFont(used);
    for (button& choice : m_choices)
        choice.setFont(used);
    layOut();
}

void empty_state::showOver(bool is_wanted)
{
    RECT parent{};
    GetClientRect(GetParent(handle()), &parent);
    SetWindowPos(handle(), HWND_TOP, 0, 0, parent.right, parent.bottom,
                 SWP_NOACTIVATE | (is_wanted ? SWP_SHOWWINDOW : SWP_HIDEWINDOW));
}

void empty_state::onSize(int, int, size_change)
{
    layOut();
}

void empty_state::layOut()
{
    if (m_po_font == nullptr)
        return;
    const int margin = scaled(state_margin);
    const RECT client = clientRectangle();
    const int width = std::max(static_cast<int>(client.right) - 2 * margin, 0);
    const int line_height = m_po_font->height() + scaled(4);
    const int button_height = m_po_font->height() + scaled(13);
    const int whole = line_height * (2 + static_cast<int>(m_content.lines.size())) + scaled(16) + button_height;
    int y = std::max((static_cast<int>(client.bottom) - whole) / 3, margin);
    m_heading.place(margin, y, width, line_height);
    y += line_height + scaled(6);
    for (label& line : m_lines)
    {
        line.place(margin, y, width, line_height);
        y += &line < &m_lines[0] + m_content.lines.size() ? line_height : 0;
    }
    y += scaled(12);
    int x = margin;
    for (std::size_t i = 0; i < m_content.choices.size(); ++i)
    {
        const int button_width = m_po_font->widthOf(m_content.choices[i].text) + scaled(32);
        if (x > margin && x + button_width > client.right - margin)
        {
            x = margin;
            y += button_height + scaled(button_gap);
        }
        m_choices[i].place(x, y, button_width, button_height);
        x += button_width + scaled(button_gap);
    }
    // Lines that move take with them what was painted where they stood.
    RedrawWindow(handle(), nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

} // namespace korvane
