#pragma once

// A bar between two panes that stand side by side: the mouse moves it. Whoever owns it lays the panes out. Window
// thread only.

#include "EASY_GUI/win32/window.h"

#include <functional>

namespace korvane
{

class splitter : public window
{
public:
    static constexpr int width = 8; // at 96 dots per inch

    ~splitter() override { destroy(); }

    std::function<void(int pixels)> onMove; // to the right since the last call; less than nothing: to the left

    [[nodiscard]] bool createIn(HWND parent, failure& why) { return createChild(parent, WS_VISIBLE, 0, why); }

protected:
    bool onMouseButton(const mouse_event& event) override
    {
        if (event.button != mouse_button::left)
            return false;
        m_is_held = event.is_down;
        m_from = event.at.x;
        event.is_down ? static_cast<void>(SetCapture(handle())) : static_cast<void>(ReleaseCapture());
        return true;
    }
    bool onMouseMove(const mouse_event& event) override
    {
        if (m_is_held && event.at.x != m_from && onMove)
            onMove(event.at.x - m_from); // the bar follows, so that the mouse is where it was on it
        return true;
    }
    void onCaptureLost() override { m_is_held = false; }
    LRESULT handleMessage(UINT message, WPARAM wparam, LPARAM lparam) override
    {
        if (message != WM_SETCURSOR)
            return window::handleMessage(message, wparam, lparam);
        SetCursor(LoadCursorW(nullptr, IDC_SIZEWE));
        return TRUE;
    }

private:
    bool m_is_held = false;
    LONG m_from = 0; // client pixels
};

} // namespace korvane
