#include "Korvane/app/panel_column.h"

#include <algorithm>
#include <utility>

namespace korvane
{

namespace
{

constexpr int panel_margin = 8; // at 96 dots per inch
constexpr int scroll_step = 29; // a row of fields

SCROLLINFO scrollState(HWND window)
{
    SCROLLINFO state{};
    state.cbSize = sizeof(state);
    state.fMask = SIF_ALL;
    GetScrollInfo(window, SB_VERT, &state);
    return state;
}

} // namespace

void panel_column::setFont(const font& used)
{
    for (column_part* const part : m_parts)
    {
        part->setFont(used);
        window::answerOthers();
    }
}

int panel_column::contentHeight() const
{
    int height = m_owner.scaled(panel_margin);
    for (const column_part* const part : m_parts)
        height += part->preferredHeight() + m_owner.scaled(panel_margin);
    return height;
}

void panel_column::layOut()
{
    SCROLLINFO range{};
    range.cbSize = sizeof(range);
    range.fMask = SIF_RANGE | SIF_PAGE;
    range.nMax = contentHeight() - 1;
    range.nPage = static_cast<UINT>(m_owner.clientRectangle().bottom);
    SetScrollInfo(m_owner.handle(), SB_VERT, &range, TRUE); // hides the bar when everything fits
    const RECT client = m_owner.clientRectangle();
    const int border = m_owner.scaled(panel_margin);
    const int width = client.right - 2 * border;
    int y = border - GetScrollPos(m_owner.handle(), SB_VERT);
    for (column_part* const part : m_parts)
    {
        const int height = part->preferredHeight();
        part->place(border, y, width, height);
        y += height + border;
    }
}

void panel_column::scroll(int request)
{
    const SCROLLINFO state = scrollState(m_owner.handle());
    switch (request)
    {
    case SB_LINEUP:
        return scrollTo(state.nPos - m_owner.scaled(scroll_step));
    case SB_LINEDOWN:
        return scrollTo(state.nPos + m_owner.scaled(scroll_step));
    case SB_PAGEUP:
        return scrollTo(state.nPos - static_cast<int>(state.nPage));
    case SB_PAGEDOWN:
        return scrollTo(state.nPos + static_cast<int>(state.nPage));
    case SB_TOP:
        return scrollTo(state.nMin);
    case SB_BOTTOM:
        return scrollTo(state.nMax);
    case SB_THUMBTRACK:
    case SB_THUMBPOSITION:
        return scrollTo(state.nTrackPos);
    default:
        return;
    }
}

void panel_column::scrollByWheel(int delta)
{
    scrollTo(scrollState(m_owner.handle()).nPos - MulDiv(delta, 3 * m_owner.scaled(scroll_step), WHEEL_DELTA));
}

void panel_column::scrollInto(HWND control)
{
    RECT place{};
    GetWindowRect(control, &place);
    MapWindowPoints(nullptr, m_owner.handle(), reinterpret_cast<POINT*>(&place), 2);
    const int border = m_owner.scaled(panel_margin);
    const LONG below = place.bottom + border - m_owner.clientRectangle().bottom;
    const LONG above = place.top - border;
    if (above < 0 || below > 0)
        scrollTo(scrollState(m_owner.handle()).nPos + (above < 0 ? above : below));
}

void panel_column::scrollTo(int position)
{
    SetScrollPos(m_owner.handle(), SB_VERT, position, TRUE); // limits the position to the range
    layOut();
}

} // namespace korvane
