#pragma once

// A text over the whole client area of another window, drawn with GDI: what the model view shows when there is no
// graphics device, or nothing to draw. A popup that the other window owns, for a window that a swap chain has flipped
// into shows nothing of GDI any more (and under Wine nothing of its children). Keys stay with the owner. Window thread.

#include "EASY_GUI/win32/window.h"

#include <string>

namespace korvane
{

class view_notice : public window
{
public:
    ~view_notice() override { destroy(); }

    // Covers the owner's client area with a text of one or more lines ("\r\n"). False without a window.
    bool cover(HWND owner, std::string text);
    void fit(); // after the owner was moved, sized, shown or hidden

protected:
    bool onPaint() override;
    bool onKeyDown(unsigned virtual_key, bool is_repeat) override;
    bool onMouseButton(const mouse_event& event) override;

private:
    std::string m_text;
};

} // namespace korvane
