#pragma once

// The base of every window of the program: one window procedure receives the messages, finds the object that owns the
// handle and calls the member handler. A class derives from window, overrides the handlers that it needs and calls
// create(). Windows and their handlers belong to the thread that created them. Sizes are pixels; scaled() turns the
// sizes of a layout made for 96 dots per inch into the pixels of the window's monitor. Texts are UTF-8.
//
// Ownership: the object owns the handle. Destroying the object destroys the window; the window may also go first (the
// user closes it), after which handle() is null and create() may be called again. A derived class whose handlers use
// its own members calls destroy() in its destructor: the base destructor no longer reaches derived handlers.

#include "EASY_GUI/services/failure.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>
#include <windows.h>

namespace korvane
{

class tool_tip;

struct window_settings
{
    std::string title;
    DWORD style = WS_OVERLAPPEDWINDOW;
    DWORD extended_style = 0;
    int x = CW_USEDEFAULT; // outer rectangle, screen pixels
    int y = CW_USEDEFAULT;
    int width = CW_USEDEFAULT;
    int height = CW_USEDEFAULT;
    HWND parent = nullptr;            // owner of a top-level window, parent of a WS_CHILD one
    WORD icon = 0;                    // resource number of the icon; 0: the system's default icon
    bool is_opaque = false;           // true: the background is never erased (the window draws every pixel itself)
    bool wants_repeat_clicks = false; // true: double clicks arrive as onMouseButton with is_double set
};

enum class mouse_button
{
    left,
    right,
    middle
};

struct mouse_event
{
    POINT at{};                               // client pixels
    WPARAM keys = 0;                          // MK_LBUTTON, MK_CONTROL, ...
    mouse_button button = mouse_button::left; // of a press or release
    bool is_down = false;
    bool is_double = false;
};

enum class size_change
{
    restored,
    minimised,
    maximised
};

class window
{
public:
    window();
    window(const window&) = delete;
    window& operator=(const window&) = delete;
    virtual ~window();

    [[nodiscard]] bool create(const window_settings& settings, failure& why);
    // A child window without a size yet; style and extended_style besides WS_CHILD.
    [[nodiscard]] bool createChild(HWND parent, DWORD style, DWORD extended_style, failure& why,
                                   bool is_opaque = false);
    void destroy(); // sends WM_DESTROY at once; does nothing without a window

    HWND handle() const { return m_handle; }
    bool isOpen() const { return m_handle != nullptr; }

    void show(int how = SW_SHOW);
    void setTitle(std::string_view title);
    [[nodiscard]] std::string title() const;
    RECT clientRectangle() const;
    void invalidate();

    // Of the monitor that shows the top-level window around this one; the system's while there is no window.
    unsigned dpi() const;
    int scaled(int pixels_at_96) const { return MulDiv(pixels_at_96, static_cast<int>(dpi()), 96); }

    // Of the monitor that shows a window, without its task bar; null: of the first monitor. Screen pixels.
    static RECT workArea(HWND shown);
    // Lets the messages in that other programs and threads have sent to the windows of this thread and wait for,
    // nothing from the queue. For what takes long with many controls, so that the window answers meanwhile.
    static void answerOthers();

    tool_tip& tips(); // of all controls in this top-level window

    // The object that owns the handle; null for windows that are not of this class.
    static window* fromHandle(HWND handle);
    // True when the keys of a top-level window are looked up in this one's table of shortcuts (message_loop.h).
    virtual bool takesShortcutsOf(HWND top) const { return top == m_handle; }

protected:
    // Handlers. The defaults do what Windows does by default. A handler that throws is reported in a message box and
    // the message counts as handled: no exception passes through the system's code.
    virtual bool onCreated() { return true; } // WM_CREATE, handle() is valid; false gives creation up
    virtual void onClose() { destroy(); }     // WM_CLOSE
    virtual void onDestroyed() {}             // WM_DESTROY; the handle is still valid, children too
    virtual void onSize(int /*width*/, int /*height*/, size_change /*change*/) {} // client pixels
    // A command of a menu or shortcut, or of a control that has no handler for it. True: handled.
    virtual bool onCommand(int /*id*/, int /*notification*/, HWND /*control*/) { return false; }
    virtual bool onKeyDown(unsigned /*virtual_key*/, bool /*is_repeat*/) { return false; }   // true: handled
    virtual bool onMouseWheel(int /*delta*/, const mouse_event& /*event*/) { return false; } // WHEEL_DELTA per notch
    virtual bool onMouseButton(const mouse_event& /*event*/) { return false; }
    virtual bool onMouseMove(const mouse_event& /*event*/) { return false; }
    virtual void onCaptureLost() {}                   // WM_CAPTURECHANGED to another window
    virtual bool onPaint() { return false; }          // true: handled and validated (BeginPaint or ValidateRect)
    virtual void onVerticalScroll(int /*request*/) {} // SB_LINEUP, SB_THUMBTRACK, ...
    virtual HBRUSH onControlColour(HDC, HWND /*control*/) { return nullptr; } // null: the system's colours
    virtual void onMinimumSize(SIZE& /*outer*/) {}                            // lower limit of the outer size
    virtual void onFilesDropped(const std::vector<std::string>& /*paths*/) {}
    // The window moved to a monitor of another density. The window was moved to the suggested rectangle already.
    virtual void onDpiChanged(unsigned /*dpi*/) {}
    // The focus came to a control of this window, or of a window in it. The default remembers it: a top-level window
    // with WS_EX_CONTROLPARENT gives the focus there whenever it gets it itself, which is when it was activated again,
    // and else to its first control.
    virtual void onControlFocused(HWND control) { m_focused = control; }
    static void tellFocused(HWND control); // all windows around it
    // Now, or when the window is activated the next time.
    void focusWhenActive(HWND control);
    // Everything else, and the whole table of handlers: override to see messages that have no handler, and call this.
    virtual LRESULT handleMessage(UINT message, WPARAM wparam, LPARAM lparam);

private:
    friend class control; // says which one has the focus
    static LRESULT CALLBACK windowProcedure(HWND handle, UINT message, WPARAM wparam, LPARAM lparam);
    static ATOM classFor(const window_settings& settings);
    bool handOn(UINT message, WPARAM wparam, LPARAM lparam, LRESULT& result);
    bool handleMouse(UINT message, WPARAM wparam, LPARAM lparam, LRESULT& result);
    bool handleGeometry(UINT message, WPARAM wparam, LPARAM lparam);
    LRESULT defaultResult(UINT message, WPARAM wparam, LPARAM lparam) const;
    bool hasControls() const { return (GetWindowLongPtrW(m_handle, GWL_EXSTYLE) & WS_EX_CONTROLPARENT) != 0; }
    bool focusControl();
    void focusNextControl(WPARAM wparam, LPARAM lparam);
    void detach();

    HWND m_handle = nullptr;
    HWND m_focused = nullptr; // control that has, or had, the focus
    std::unique_ptr<tool_tip> m_po_tips;
    unsigned m_dpi = 0; // of the last WM_DPICHANGED; 0: none came, the system knows it
};

} // namespace korvane
