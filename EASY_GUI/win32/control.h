#pragma once

// The base of the system's own controls: a child window that a window or panel owns as a member. The parent's
// destruction takes the control's window along; the object then is empty and may be created again. What the person does
// with a control comes back to it: it calls its handler (onClick, onSelect, ...), which may destroy it. What it has no
// handler for arrives at the parent's onCommand. The windows around it hear of the focus (onControlFocused). Window
// thread only. Texts are UTF-8, sizes pixels. In the text of a button, a frame and a name '&' stands before the
// mnemonic.

#include "EASY_GUI/win32/font.h"

#include <functional>
#include <string>
#include <string_view>
#include <type_traits>
#include <windows.h>

namespace korvane
{

class control
{
public:
    control(const control&) = delete;
    control& operator=(const control&) = delete;

    virtual ~control();

    // The object that owns a control's window; null for windows that are not of this class.
    static control* fromHandle(HWND handle);

    HWND handle() const { return m_handle; }
    virtual void setText(std::string_view text); // calls no handler
    [[nodiscard]] std::string text() const;
    void setFont(const font& used);
    virtual void place(int x, int y, int width, int height);
    void setEnabled(bool is_enabled); // the focus goes on to the next control when it cannot stay
    void setTabStop(bool is_wanted);  // whether Tab goes there
    bool isEnabled() const { return IsWindowEnabled(m_handle) != 0; }
    void setVisible(bool is_visible) { ShowWindow(m_handle, is_visible ? SW_SHOWNA : SW_HIDE); }
    // What a layout gives it where it is to be as large as it needs, for the font and density that it has: pixels.
    virtual SIZE naturalSize() const;
    virtual bool fillsHeight() const { return false; } // false: one line, in the middle of a higher row
    void focus() { SetFocus(m_handle); }
    // Shown while the mouse rests on the control, below its text where that does not fit; empty: only that text.
    void setTip(std::string_view text);

protected:
    control() = default;

    // False when the system refuses the window.
    [[nodiscard]] bool createControl(const wchar_t* class_name, HWND parent, int id, std::string_view text, DWORD style,
                                     DWORD extended_style = 0);
    LRESULT send(UINT message, WPARAM wparam = 0, LPARAM lparam = 0) const
    {
        return SendMessageW(m_handle, message, wparam, lparam);
    }

    // What the system tells the parent of this control, which hands it on. False: nothing was called, the parent may
    // act.
    virtual bool onNotified(int /*code*/) { return false; }                          // WM_COMMAND
    virtual bool onNotify(NMHDR& /*message*/, LRESULT& /*result*/) { return false; } // WM_NOTIFY
    virtual bool onScrolled(int /*request*/) { return false; }                       // WM_HSCROLL, WM_VSCROLL
    // The control's own messages: override to see them, and call this. A message that calls a handler may end with the
    // object gone.
    virtual LRESULT handleMessage(UINT message, WPARAM wparam, LPARAM lparam);
    virtual bool isTextClipped() const { return false; }
    // What is to be said about the point (client pixels), UTF-8; empty: nothing.
    virtual std::string tipAt(POINT at) const;
    void restartTip();                                                   // the mouse came to something else in here
    int widthOf(std::string_view text, bool has_mnemonic = false) const; // pixels, in the control's font
    int clientWidth() const;
    int lineHeight() const; // pixels, of the control's font
    int scaled(int pixels_at_96) const;
    // For a control that acts on Enter itself: whether a WM_GETDLGCODE asks about that key.
    static bool isAboutEnter(LPARAM lparam);
    // Calls the handler, if there is one; the control may be gone afterwards.
    template <typename... Arguments>
    static bool tell(const std::function<void(Arguments...)>& handler, std::type_identity_t<Arguments>... arguments)
    {
        const auto kept = handler; // which lies in the control
        if (kept)
            kept(arguments...);
        return kept != nullptr;
    }

private:
    friend class window;                // hands on what the control tells its parent
    void giveTip(NMHDR& message) const; // TTN_GETDISPINFO
    void release();
    static LRESULT CALLBACK watch(HWND handle, UINT message, WPARAM wparam, LPARAM lparam);

    HWND m_handle = nullptr;
    WNDPROC m_system_procedure = nullptr;
    std::string m_tip;
};

} // namespace korvane
