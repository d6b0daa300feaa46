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

    std::function<void()> onChange; // the text, by the person; setText() calls nothing

    [[nodiscard]] bool create(HWND parent, int id, access wanted)
    {
        const DWORD style = ES_LEFT | ES_AUTOHSCROLL | WS_TABSTOP;
        return createControl(L"EDIT", parent, id, {}, wanted == access::read_only ? style | ES_READONLY : style,
                             WS_EX_CLIENTEDGE);
    }
    void setText(std::string_view text) override
    {
        m_is_set = true;
        control::setText(text);
        m_is_set = false;
    }
    void showEnd() // of a text that is too long, and put the caret there
    {
        const int length = GetWindowTextLengthW(handle());
        send(EM_SETSEL, static_cast<WPARAM>(length), length);
        send(EM_SCROLLCARET);
    }

protected:
    bool onNotified(int code) override { return code == EN_CHANGE && !m_is_set && tell(onChange); }
    bool isTextClipped() const override
    {
        RECT area{};
        send(EM_GETRECT, 0, reinterpret_cast<LPARAM>(&area));
        return widthOf(text()) > area.right - area.left;
    }

private:
    bool m_is_set = false; // just now, by the program
};

} // namespace korvane
