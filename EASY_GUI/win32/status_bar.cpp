#include "EASY_GUI/win32/status_bar.h"

#include "EASY_GUI/win32/wide_text.h"

#include <algorithm>
#include <commctrl.h>
#include <windowsx.h>

namespace korvane
{

namespace
{

constexpr int text_margin = 4; // pixels on each side of a part's text, at 96 dots per inch
constexpr int borders = 3;     // around the text, above and below

} // namespace

bool status_bar::create(HWND parent, int id, std::span<const int> widths)
{
    m_widths.assign(widths.begin(), widths.end());
    m_texts.assign(m_widths.size(), {});
    // Its place is the owner's business: the bar's own idea of it knows only the lower edge.
    return createControl(STATUSCLASSNAMEW, parent, id, {}, CCS_NOPARENTALIGN | CCS_NORESIZE | SBARS_SIZEGRIP) &&
           m_progress.create(handle(), 0) && (m_progress.setVisible(false), true);
}

int status_bar::preferredHeight() const
{
    const HDC context = GetDC(handle());
    const HGDIOBJ former = SelectObject(context, reinterpret_cast<HGDIOBJ>(send(WM_GETFONT)));
    TEXTMETRICW metrics{};
    GetTextMetricsW(context, &metrics);
    SelectObject(context, former);
    ReleaseDC(handle(), context);
    return metrics.tmHeight + 2 * scaled(borders) + 2;
}

void status_bar::place(int x, int y, int width, int height)
{
    control::place(x, y, width, height);
    layOut();
}

void status_bar::layOut()
{
    RECT client{};
    GetClientRect(handle(), &client);
    int rest = client.right - GetSystemMetrics(SM_CXVSCROLL); // the grip
    int shares = 0;
    for (const int width : m_widths)
    {
        rest -= scaled(width);
        shares += width == 0 ? 1 : 0;
    }
    std::vector<int> ends;
    int end = 0;
    for (const int width : m_widths)
    {
        end += width != 0 ? scaled(width) : std::max(rest, 0) / std::max(shares, 1);
        ends.push_back(end);
    }
    if (!ends.empty())
        ends.back() = -1; // to the right edge
    send(SB_SETPARTS, ends.size(), reinterpret_cast<LPARAM>(ends.data()));
    for (std::size_t part = 0; part < m_texts.size(); ++part)
        showText(part);
    const RECT last = partRectangle(m_widths.size() - 1);
    const int gap = scaled(2);
    const int right = std::min(last.right, client.right - static_cast<LONG>(GetSystemMetrics(SM_CXVSCROLL)));
    m_progress.place(last.left + gap, last.top + gap, right - last.left - 2 * gap, last.bottom - last.top - 2 * gap);
}

RECT status_bar::partRectangle(std::size_t part) const
{
    RECT area{};
    send(SB_GETRECT, part, reinterpret_cast<LPARAM>(&area));
    return area;
}

void status_bar::setPart(std::size_t part, std::string_view text)
{
    if (m_texts.at(part) == text)
        return;
    m_texts[part] = text;
    showText(part);
}

// The system cuts a text off in the middle of a letter.
void status_bar::showText(std::size_t part)
{
    constexpr std::size_t ellipsis_room = 4; // what DrawText may write behind the text
    std::wstring text = toWide(m_texts[part]);
    const std::size_t length = text.size();
    text.resize(length + ellipsis_room);
    RECT area = partRectangle(part);
    area.right -= 2 * scaled(text_margin);
    const HDC context = GetDC(handle());
    const HGDIOBJ former = SelectObject(context, reinterpret_cast<HGDIOBJ>(send(WM_GETFONT)));
    DrawTextW(context, text.data(), static_cast<int>(length), &area,
              DT_CALCRECT | DT_END_ELLIPSIS | DT_MODIFYSTRING | DT_SINGLELINE | DT_NOPREFIX);
    SelectObject(context, former);
    ReleaseDC(handle(), context);
    send(SB_SETTEXTW, part, reinterpret_cast<LPARAM>(text.c_str()));
}

std::size_t status_bar::partAt(POINT at) const
{
    std::size_t part = 0;
    while (part + 1 < m_widths.size() && at.x >= partRectangle(part).right)
        ++part;
    return part;
}

std::string status_bar::tipAt(POINT at) const
{
    const std::size_t part = partAt(at);
    const RECT area = partRectangle(part);
    return widthOf(m_texts[part]) > area.right - area.left - 2 * scaled(text_margin) ? m_texts[part] : std::string();
}

// All parts, for programs that read the screen aloud: the system knows only the first.
std::wstring status_bar::wholeText() const
{
    std::wstring whole;
    for (const std::string& text : m_texts)
        whole += (whole.empty() || text.empty() ? L"" : L" | ") + toWide(text);
    return whole;
}

LRESULT status_bar::handleMessage(UINT message, WPARAM wparam, LPARAM lparam)
{
    if (message == WM_GETTEXTLENGTH)
        return static_cast<LRESULT>(wholeText().size());
    if (message == WM_GETTEXT && wparam > 0)
    {
        const std::wstring whole = wholeText().substr(0, wparam - 1);
        std::copy_n(whole.c_str(), whole.size() + 1, reinterpret_cast<wchar_t*>(lparam));
        return static_cast<LRESULT>(whole.size());
    }
    if (message == WM_MOUSEMOVE)
        if (const std::size_t part = partAt({GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)}); part != m_pointed_at)
        {
            m_pointed_at = part;
            restartTip();
        }
    return control::handleMessage(message, wparam, lparam);
}

void status_bar::showProgress(bool is_shown)
{
    m_progress.setVisible(is_shown);
}

} // namespace korvane
