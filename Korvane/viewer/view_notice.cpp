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

bool view_notice::cover(HWND parent, std::string text)
{
    m_text = std::move(text);
    if (isOpen())
    {
        invalidate();
        return true;
    }
    RECT area{};
    GetClientRect(parent, &area);
    window_settings settings;
    settings.title = m_text; // read by screen readers and tests
    settings.style = WS_CHILD | WS_VISIBLE;
    settings.x = settings.y = 0;
    settings.width = area.right;
    settings.height = area.bottom;
    settings.parent = parent;
    settings.is_opaque = true;
    failure why; // it would only repeat that there is no window
    return create(settings, why);
}

void view_notice::fit()
{
    if (!isOpen())
        return;
    RECT area{};
    GetClientRect(GetParent(handle()), &area);
    SetWindowPos(handle(), HWND_TOP, 0, 0, area.right, area.bottom, SWP_NOACTIVATE);
    invalidate();
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
