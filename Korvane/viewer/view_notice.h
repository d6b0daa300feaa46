#pragma once

// A text over the whole client area of another window, drawn with GDI: what the model view shows when there is no
// graphics device. A child window of its own, for a window that a swap chain has flipped into shows nothing of GDI any
// more. Keys stay with the parent. Window thread.

#include "EASY_GUI/win32/window.h"

#include <string>

namespace korvane
{

class view_notice : public window
{
public:
    ~view_notice() override { destroy(); }

    // Covers the parent's client area with a text of one or more lines ("\r\n"). False without a window.
    bool cover(HWND parent, std::string text);
    void fit(); // after the parent has changed its size

protected:
    bool onPaint() override;

private:
    std::string m_text;
};

} // namespace korvane
