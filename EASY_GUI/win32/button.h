#pragma once

// A push button; its press arrives at the parent's onCommand with BN_CLICKED. And the frame with a caption that holds
// related controls together.

#include "EASY_GUI/win32/control.h"

namespace korvane
{

class button : public control
{
public:
    [[nodiscard]] bool create(HWND parent, int id, std::string_view text)
    {
        return createControl(L"BUTTON", parent, id, text, BS_PUSHBUTTON | WS_TABSTOP);
    }
};

class group_frame : public control
{
public:
    [[nodiscard]] bool create(HWND parent, int id, std::string_view text)
    {
        // Transparent, because a frame does not paint its inside.
        return createControl(L"BUTTON", parent, id, text, BS_GROUPBOX, WS_EX_TRANSPARENT);
    }
};

} // namespace korvane
