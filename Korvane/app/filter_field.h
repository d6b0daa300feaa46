#pragma once

// A field above a list: typing in it filters; arrows and Enter act in the list, so that the hands stay where they are.

#include "EASY_GUI/win32/edit_box.h"

#include <functional>

namespace korvane
{

class filter_field : public edit_box
{
public:
    std::function<bool(unsigned virtual_key)> onKey; // true: handled

protected:
    LRESULT handleMessage(UINT message, WPARAM wparam, LPARAM lparam) override
    {
        if (message == WM_GETDLGCODE && isAboutEnter(lparam))
            return edit_box::handleMessage(message, wparam, lparam) | DLGC_WANTMESSAGE;
        if (message == WM_CHAR && wparam == VK_RETURN)
            return 0; // it would beep
        if (message == WM_KEYDOWN)
            if (const auto act = onKey; act && act(static_cast<unsigned>(wparam)))
                return 0;
        return edit_box::handleMessage(message, wparam, lparam);
    }
};

} // namespace korvane
