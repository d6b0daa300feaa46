#include "EASY_GUI/win32/list_box.h"

#include "EASY_GUI/win32/wide_text.h"

#include <windowsx.h>

namespace korvane
{

bool list_box::create(HWND parent, int id)
{
    return createControl(L"LISTBOX", parent, id, {}, LBS_NOTIFY | LBS_NOINTEGRALHEIGHT | WS_VSCROLL | WS_TABSTOP,
                         WS_EX_CLIENTEDGE);
}

void list_box::clear()
{
    send(LB_RESETCONTENT);
}

void list_box::add(std::string_view text)
{
    send(LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(toWide(text).c_str()));
}

int list_box::count() const
{
    return static_cast<int>(send(LB_GETCOUNT));
}

std::string list_box::textAt(int position) const
{
    const LRESULT length = send(LB_GETTEXTLEN, static_cast<WPARAM>(position));
    if (length < 0)
        return {};
    std::wstring text(static_cast<std::size_t>(length) + 1, L'\0');
    send(LB_GETTEXT, static_cast<WPARAM>(position), reinterpret_cast<LPARAM>(text.data()));
    text.pop_back();
    return fromWide(text);
}

void list_box::select(int position)
{
    send(LB_SETCURSEL, static_cast<WPARAM>(position));
}

int list_box::selected() const
{
    return static_cast<int>(send(LB_GETCURSEL));
}

bool list_box::onNotified(int code)
{
    return (code == LBN_SELCHANGE && tell(onSelect, selected())) ||
           (code == LBN_DBLCLK && selected() >= 0 && tell(onActivate, selected()));
}

LRESULT list_box::handleMessage(UINT message, WPARAM wparam, LPARAM lparam)
{
    if (message == WM_GETDLGCODE && isAboutEnter(lparam) && onActivate && selected() >= 0)
        return control::handleMessage(message, wparam, lparam) | DLGC_WANTMESSAGE;
    if (message == WM_KEYDOWN && wparam == VK_RETURN && selected() >= 0 && tell(onActivate, selected()))
        return 0;
    if (message == WM_MOUSEMOVE)
        if (const int line = lineAt({GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)}); line != m_pointed_at)
        {
            m_pointed_at = line;
            restartTip();
        }
    return control::handleMessage(message, wparam, lparam);
}

int list_box::lineAt(POINT at) const
{
    const LRESULT found = send(LB_ITEMFROMPOINT, 0, MAKELPARAM(at.x, at.y));
    return HIWORD(found) != 0 || LOWORD(found) >= count() ? -1 : LOWORD(found);
}

std::string list_box::tipAt(POINT at) const
{
    const int line = lineAt(at);
    const std::string text = line < 0 ? std::string() : textAt(line);
    return widthOf(text) + scaled(4) > clientWidth() ? text : control::tipAt(at);
}

} // namespace korvane
