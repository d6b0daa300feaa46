#include "EASY_GUI/win32/tool_tip.h"

#include <commctrl.h>

namespace korvane
{

tool_tip::tool_tip(HWND owner, unsigned dpi)
    : m_handle(CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_NOPREFIX | TTS_ALWAYSTIP,
                               CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, owner, nullptr,
                               GetModuleHandleW(nullptr), nullptr))
{
    constexpr int shown_for = 30000; // milliseconds: time to read a path
    SendMessageW(m_handle, TTM_SETDELAYTIME, TTDT_AUTOPOP, shown_for);
    setDpi(dpi);
}

tool_tip::~tool_tip()
{
    if (IsWindow(m_handle))
        DestroyWindow(m_handle);
}

void tool_tip::setDpi(unsigned dpi)
{
    constexpr int widest = 600; // then the lines break, at 96 dots per inch
    m_font = font(dpi, font::weight::regular);
    SendMessageW(m_handle, WM_SETFONT, reinterpret_cast<WPARAM>(m_font.handle()), FALSE);
    SendMessageW(m_handle, TTM_SETMAXTIPWIDTH, 0, MulDiv(widest, static_cast<int>(dpi), 96));
}

void tool_tip::send(UINT message, HWND control)
{
    TTTOOLINFOW tool{};
    tool.cbSize = sizeof tool;
    tool.uFlags = TTF_IDISHWND;
    tool.hwnd = GetParent(control);
    tool.uId = reinterpret_cast<UINT_PTR>(control);
    tool.lpszText = LPSTR_TEXTCALLBACKW;
    SendMessageW(m_handle, message, 0, reinterpret_cast<LPARAM>(&tool));
}

void tool_tip::watch(HWND control)
{
    send(TTM_ADDTOOLW, control);
}

void tool_tip::forget(HWND control)
{
    send(TTM_DELTOOLW, control);
}

void tool_tip::hear(HWND control, UINT message, WPARAM wparam, LPARAM lparam)
{
    MSG heard{};
    heard.hwnd = control;
    heard.message = message;
    heard.wParam = wparam;
    heard.lParam = lparam;
    heard.time = static_cast<DWORD>(GetMessageTime());
    GetCursorPos(&heard.pt);
    SendMessageW(m_handle, TTM_RELAYEVENT, 0, reinterpret_cast<LPARAM>(&heard));
}

// A tooltip never changes its text while the mouse stays in one control, unless the control is new to it.
void tool_tip::restart(HWND control)
{
    forget(control);
    watch(control);
}

} // namespace korvane
