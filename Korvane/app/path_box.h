#pragma once

// A field for a path that a person types: Enter, or leaving the field, takes what was typed; Escape gives the former
// text back.

#include "EASY_GUI/win32/edit_box.h"

namespace korvane
{

class path_box : public edit_box
{
public:
    std::function<void()> onTyped; // there is another text than setText() put here
    std::function<bool()> onPaste; // true: handled, the text does not go into the field

    void setText(std::string_view wanted) override
    {
        edit_box::setText(wanted);
        m_former = text();
    }
    bool isTyped() const { return text() != m_former; }
    // Before a command looks at the document, too.
    void take()
    {
        if (isTyped())
            tell(onTyped);
    }

protected:
    bool onNotified(int code) override
    {
        if (code == EN_KILLFOCUS)
            take();
        return edit_box::onNotified(code);
    }
    LRESULT handleMessage(UINT message, WPARAM wparam, LPARAM lparam) override
    {
        const bool is_enter = wparam == VK_RETURN;
        const bool is_own = is_enter || wparam == VK_ESCAPE;
        if (message == WM_CONTEXTMENU) // the row's, not that of text fields
            return SendMessageW(GetParent(handle()), message, wparam, lparam);
        if (message == WM_PASTE && onPaste && onPaste())
            return 0;
        if (message == WM_GETDLGCODE && lparam != 0 && is_own && isTyped())
            return edit_box::handleMessage(message, wparam, lparam) | DLGC_WANTMESSAGE;
        if (message == WM_CHAR && is_own)
            return 0; // it would beep
        if (message != WM_KEYDOWN || !is_own)
            return edit_box::handleMessage(message, wparam, lparam);
        if (is_enter)
            return take(), 0; // the field may be gone now
        setText(m_former.c_str());
        send(EM_SETSEL, 0, -1);
        return 0;
    }

private:
    std::string m_former;
};

} // namespace korvane
