#pragma once

// A real window for controls, with what they say written down, and keys as the person presses them.

#include "EASY_GUI/win32/control.h"
#include "EASY_GUI/win32/wide_text.h"
#include "EASY_GUI/win32/window.h"

#include <gtest/gtest.h>

#include <commctrl.h>
#include <string>

namespace korvane::test
{

class control_test : public testing::Test, public window
{
protected:
    void SetUp() override
    {
        window_settings settings;
        settings.style = WS_POPUP | WS_VISIBLE;
        settings.extended_style = WS_EX_CONTROLPARENT;
        settings.x = settings.y = 40;
        settings.width = settings.height = 400;
        failure why;
        ASSERT_TRUE(create(settings, why)) << describe(why);
    }
    bool onCommand(int id, int notification, HWND) override
    {
        if (notification == BN_CLICKED)
            m_heard += "window:" + std::to_string(id) + " ";
        return true;
    }
    static void pump()
    {
        MSG message{};
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
    static void key(const control& to, WPARAM virtual_key)
    {
        SendMessageW(to.handle(), WM_KEYDOWN, virtual_key, 1);
        SendMessageW(to.handle(), WM_KEYUP, virtual_key, 1);
    }
    static void click(const control& on, POINT at, UINT message = WM_LBUTTONDOWN)
    {
        const LPARAM point = MAKELPARAM(at.x, at.y);
        PostMessageW(on.handle(), WM_LBUTTONUP, 0, point); // a control may wait for it in a loop of its own
        SendMessageW(on.handle(), message, MK_LBUTTON, point);
        pump();
    }
    // What the tooltip of the control would show at the point.
    static std::string tipOf(const control& of, POINT at)
    {
        ClientToScreen(of.handle(), &at);
        SetCursorPos(at.x, at.y);
        NMTTDISPINFOW asked{};
        asked.hdr.code = TTN_GETDISPINFOW;
        asked.hdr.idFrom = reinterpret_cast<UINT_PTR>(of.handle());
        SendMessageW(GetParent(of.handle()), WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&asked));
        return asked.lpszText != nullptr ? fromWide(asked.lpszText) : std::string();
    }

    std::string m_heard; // by the handlers, and by the window
};

} // namespace korvane::test
