#include "Korvane/viewer/view_notice.h"

#include "EASY_GUI/win32/dpi.h"
#include "EASY_GUI/win32/handle_policies.h"
#include "EASY_GUI/win32/wide_text.h"

#include <utility>

namespace korvane
{

namespace
{

constexpr COLORREF background = RGB(34, 34, 40);
constexpr COLORREF foreground = RGB(225, 225, 230);
constexpr int font_height = 18; // at 96 dots per inch

} // namespace

bool view_notice::cover(HWND owner, std::string text)
{
    m_text = std::move(text);
    window_settings settings;
    settings.title = m_text; // read by screen readers and tests
    settings.style = WS_POPUP;
    settings.extended_style = WS_EX_NOACTIVATE;
    settings.x = settings.y = settings.width = settings.height = 0;
    settings.parent = owner;
    settings.is_opaque = true;
    failure why; // it would only repeat that there is no window
    if (!isOpen() && !create(settings, why))
        return false;
    setTitle(m_text);
    fit();
    return true;
}

void view_notice::fit()
{
    if (!isOpen())
        return;
    const HWND owner = GetWindow(handle(), GW_OWNER);
    if (!IsWindowVisible(owner) || IsIconic(owner))
    {
        show(SW_HIDE);
        return;
    }
    RECT area{};
    GetClientRect(owner, &area);
    POINT corner{};
    ClientToScreen(owner, &corner);
    SetWindowPos(handle(), HWND_TOP, corner.x, corner.y, area.right, area.bottom, SWP_NOACTIVATE | SWP_SHOWWINDOW);
    invalidate();
}

bool view_notice::onKeyDown(unsigned virtual_key, bool)
{
    PostMessageW(GetWindow(handle(), GW_OWNER), WM_KEYDOWN, virtual_key, 0);
    return true;
}

bool view_notice::onMouseButton(const mouse_event&)
{
    const HWND owner = GetWindow(handle(), GW_OWNER);
    SetForegroundWindow(owner);
    SetFocus(owner);
    return true;
}

bool view_notice::onPaint()
{
    PAINTSTRUCT paint{};
    const HDC context = BeginPaint(handle(), &paint);
    const unique_brush brush(CreateSolidBrush(background));
    LOGFONTW wanted_font = messageFont(dpi());
    wanted_font.lfHeight = -scaled(font_height);
    const unique_font font(CreateFontIndirectW(&wanted_font));
    const std::wstring text = toWide(m_text);
    RECT area = clientRectangle();
    FillRect(context, &area, brush.get());
    InflateRect(&area, -scaled(font_height), 0);
    const HGDIOBJ former = SelectObject(context, font.get());
    SetBkMode(context, TRANSPARENT);
    SetTextColor(context, foreground);
    RECT needed = area;
    const int height = DrawTextW(context, text.c_str(), -1, &needed, DT_CENTER | DT_WORDBREAK | DT_CALCRECT);
    area.top += (area.bottom - area.top - height) / 2;
    DrawTextW(context, text.c_str(), -1, &area, DT_CENTER | DT_WORDBREAK);
    SelectObject(context, former);
    EndPaint(handle(), &paint);
    return true;
}

} // namespace korvane
