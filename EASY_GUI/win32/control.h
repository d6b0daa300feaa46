#pragma once

// The base of the system's own controls: a child window that a window or panel owns as a member. The parent's
// destruction takes the control's window along; the object then is empty and may be created again. Commands of a
// control arrive at its parent's onCommand; the top-level window hears of the focus (onControlFocused). Window thread
// only. Texts are UTF-8, sizes pixels. In the text of a button, a frame and a name '&' stands before the mnemonic.

#include "EASY_GUI/win32/font.h"

#include <string>
#include <string_view>
#include <windows.h>

namespace korvane
{

class control
{
public:
    control(const control&) = delete;
    control& operator=(const control&) = delete;

    virtual ~control();

    HWND handle() const { return m_handle; }
    void setText(std::string_view text);
    [[nodiscard]] std::string text() const;
    void setFont(const font& used);
    virtual void place(int x, int y, int width, int height);
    void setEnabled(bool is_enabled); // the focus goes on to the next control when it cannot stay
    void setTabStop(bool is_wanted);  // whether Tab goes there
    bool isEnabled() const { return IsWindowEnabled(m_handle) != 0; }

protected:
    control() = default;

    // False when the system refuses the window.
    [[nodiscard]] bool createControl(const wchar_t* class_name, HWND parent, int id, std::string_view text, DWORD style,
                                     DWORD extended_style = 0);
    LRESULT send(UINT message, WPARAM wparam = 0, LPARAM lparam = 0) const
    {
        return SendMessageW(m_handle, message, wparam, lparam);
    }

private:
    static LRESULT CALLBACK watch(HWND handle, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR id, DWORD_PTR self);

    HWND m_handle = nullptr;
};

} // namespace korvane
