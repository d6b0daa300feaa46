#pragma once

// The tooltips of a top-level window: one small window, which asks the control under the resting mouse what it has to
// say (control::tipAt) each time. Made by window when its first control is; controls announce themselves and hand it
// their mouse messages.

#include "EASY_GUI/win32/font.h"

#include <windows.h>

namespace korvane
{

class tool_tip
{
public:
    tool_tip(HWND owner, unsigned dpi); // goes with the owner
    tool_tip(const tool_tip&) = delete;
    tool_tip& operator=(const tool_tip&) = delete;
    ~tool_tip();

    void watch(HWND control);
    void forget(HWND control);
    void restart(HWND control); // hides the text; it comes back when the mouse rests again
    void hear(HWND control, UINT message, WPARAM wparam, LPARAM lparam); // each mouse message of a control
    void setDpi(unsigned dpi);

private:
    void send(UINT message, HWND control);

    HWND m_handle;
    font m_font;
};

} // namespace korvane
