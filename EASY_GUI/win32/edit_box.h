#pragma once

// A one-line text field. A read-only one can still be scrolled, selected and copied from.

#include "EASY_GUI/win32/control.h"

namespace korvane
{

class edit_box : public control
{
public:
    enum class access
    {
        read_only,
        editable
    };

    [[nodiscard]] bool create(HWND parent, int id, access wanted)
    {
        const DWORD style = ES_LEFT | ES_AUTOHSCROLL | WS_TABSTOP;
        return createControl(L"EDIT", parent, id, {}, wanted == access::read_only ? style | ES_READONLY : style,
                             WS_EX_CLIENTEDGE);
    }
    void showEnd() // of a text that is too long, and put the caret there
    {
        const int length = GetWindowTextLengthW(handle());
        send(EM_SETSEL, static_cast<WPARAM>(length), length);
        send(EM_SCROLLCARET);
    }
};

} // namespace korvane
