#pragma once

// A text field of one line, or of many with scroll bars. A read-only one can still be scrolled, selected and copied
// from.

#include "EASY_GUI/win32/control.h"
#include "EASY_GUI/win32/wide_text.h"

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
        m_has_lines = false;
        return createControl(L"EDIT", parent, id, {}, ES_LEFT | ES_AUTOHSCROLL | WS_TABSTOP | readOnly(wanted),
                             WS_EX_CLIENTEDGE);
    }
    enum class line_breaks
    {
        as_given,
        where_needed // too
    };
    // Line ends are "\r\n".
    [[nodiscard]] bool createLines(HWND parent, int id, access wanted, line_breaks breaks = line_breaks::as_given)
    {
        m_has_lines = true;
        const DWORD style = ES_LEFT | ES_MULTILINE | ES_AUTOVSCROLL | WS_VSCROLL | WS_TABSTOP | readOnly(wanted) |
                            (breaks == line_breaks::as_given ? ES_AUTOHSCROLL | WS_HSCROLL : 0u);
        if (!createControl(L"EDIT", parent, id, {}, style, WS_EX_CLIENTEDGE))
            return false;
        send(EM_SETLIMITTEXT, 0); // as much as there is room for
        return true;
    }
    bool fillsHeight() const override { return m_has_lines; }
    void setText(std::string_view text) override
    {
        m_is_set = true;
        control::setText(text);
        m_is_set = false;
    }
    void focusAll() // so that typing replaces what is there
    {
        focus();
        send(EM_SETSEL, 0, -1);
    }
    void append(std::string_view text) // and show the end
    {
        showEnd();
        m_is_set = true;
        send(EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(toWide(text).c_str()));
        m_is_set = false;
    }
    void showEnd() // of a text that is too long, and put the caret there
    {
        send(EM_SETSEL, 0, 0); // first back to the beginning: a field that has become wider would stay scrolled
        send(EM_SCROLLCARET);
        const int length = GetWindowTextLengthW(handle());
        send(EM_SETSEL, static_cast<WPARAM>(length), length);
        send(EM_SCROLLCARET);
    }

protected:
    bool onNotified(int code) override { return code == EN_CHANGE && !m_is_set && tell(onChange); }
    bool isTextClipped() const override
    {
        if (m_has_lines)
            return false;
        RECT area{};
        send(EM_GETRECT, 0, reinterpret_cast<LPARAM>(&area));
        return widthOf(text()) > area.right - area.left;
    }

    LRESULT handleMessage(UINT message, WPARAM wparam, LPARAM lparam) override
    {
        constexpr WPARAM ctrl_a = 1;
        if (m_has_lines && message == WM_CHAR && wparam == ctrl_a)
            return send(EM_SETSEL, 0, -1), 0; // which fields of many lines do not do on every system
        const LRESULT result = control::handleMessage(message, wparam, lparam);
        if (!m_has_lines || message != WM_GETDLGCODE)
            return result;
        const bool is_new_line = isAboutEnter(lparam) && (GetWindowLongPtrW(handle(), GWL_STYLE) & ES_READONLY) == 0;
        return is_new_line ? result : result & ~LRESULT{DLGC_WANTTAB | DLGC_WANTALLKEYS}; // those are the dialog's
    }

private:
    static constexpr DWORD readOnly(access wanted) { return wanted == access::read_only ? ES_READONLY : 0u; }

    bool m_has_lines = false;
    bool m_is_set = false; // just now, by the program
};

} // namespace korvane
