#include "EASY_GUI/win32/control.h"

#include "EASY_GUI/win32/tool_tip.h"
#include "EASY_GUI/win32/wide_text.h"
#include "EASY_GUI/win32/window.h"

#include <commctrl.h>
#include <unordered_map>

namespace korvane
{

namespace
{

// Of this thread, as those of window.
std::unordered_map<HWND, control*>& controlsByHandle()
{
    static thread_local std::unordered_map<HWND, control*> controls;
    return controls;
}

// Of the top-level window, if a window of this program is the parent, which hears of them.
tool_tip* tipsAround(HWND control)
{
    window* const top = window::fromHandle(GetAncestor(control, GA_ROOT));
    return top != nullptr && window::fromHandle(GetParent(control)) != nullptr ? &top->tips() : nullptr;
}

void loadControlClasses()
{
    INITCOMMONCONTROLSEX wanted{};
    wanted.dwSize = sizeof wanted;
    wanted.dwICC = ICC_STANDARD_CLASSES | ICC_LISTVIEW_CLASSES | ICC_TREEVIEW_CLASSES | ICC_BAR_CLASSES |
                   ICC_TAB_CLASSES | ICC_PROGRESS_CLASS;
    static const bool are_loaded = InitCommonControlsEx(&wanted) != FALSE;
    static_cast<void>(are_loaded); // what is missing shows when a control of it is created
}

} // namespace

control::~control()
{
    if (m_handle == nullptr)
        return;
    const HWND handle = m_handle;
    if (tool_tip* const tips = tipsAround(handle))
        tips->forget(handle);
    release();
    DestroyWindow(handle);
}

// From here on the system's own procedure gets the messages.
void control::release()
{
    controlsByHandle().erase(m_handle);
    SetWindowLongPtrW(m_handle, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(m_system_procedure));
    m_handle = nullptr;
}

LRESULT CALLBACK control::watch(HWND handle, UINT message, WPARAM wparam, LPARAM lparam)
{
    control* const target = fromHandle(handle);
    if (target == nullptr)
        return DefWindowProcW(handle, message, wparam, lparam);
    if (message == WM_DESTROY)
        if (tool_tip* const tips = tipsAround(handle))
            tips->forget(handle);
    if (message == WM_NCDESTROY)
    {
        const WNDPROC system_procedure = target->m_system_procedure;
        target->release();
        return CallWindowProcW(system_procedure, handle, message, wparam, lparam);
    }
    if (message >= WM_MOUSEMOVE && message <= WM_MBUTTONUP)
        if (tool_tip* const tips = tipsAround(handle))
            tips->hear(handle, message, wparam, lparam);
    const LRESULT result = target->handleMessage(message, wparam, lparam);
    if (message == WM_SETFOCUS)
        window::tellFocused(handle);
    return result;
}

// Alt+F4 closes the window, whichever control has the focus: some systems' lists and trees keep it to themselves.
LRESULT control::handleMessage(UINT message, WPARAM wparam, LPARAM lparam)
{
    if (message == WM_SYSKEYDOWN && wparam == VK_F4)
        return DefWindowProcW(m_handle, message, wparam, lparam);
    return CallWindowProcW(m_system_procedure, m_handle, message, wparam, lparam);
}

control* control::fromHandle(HWND handle)
{
    const auto& controls = controlsByHandle();
    const auto found = controls.find(handle);
    return found == controls.end() ? nullptr : found->second;
}

bool control::createControl(const wchar_t* class_name, HWND parent, int id, std::string_view text, DWORD style,
                            DWORD extended_style)
{
    loadControlClasses();
    m_handle =
        CreateWindowExW(extended_style, class_name, toWide(text).c_str(), style | WS_CHILD | WS_VISIBLE, 0, 0, 0, 0,
                        parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleW(nullptr), nullptr);
    if (m_handle == nullptr)
        return false;
    controlsByHandle()[m_handle] = this;
    // Not through the common controls' list of procedures, which asks the system for it again with each message: that
    // was most of what showing a page took.
    m_system_procedure = reinterpret_cast<WNDPROC>(GetWindowLongPtrW(m_handle, GWLP_WNDPROC));
    SetWindowLongPtrW(m_handle, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&control::watch));
    if (tool_tip* const tips = tipsAround(m_handle))
        tips->watch(m_handle);
    return true;
}

std::string control::tipAt(POINT) const
{
    if (!isTextClipped())
        return m_tip;
    return m_tip.empty() ? text() : text() + "\r\n" + m_tip;
}

void control::giveTip(NMHDR& message) const
{
    POINT at{};
    GetCursorPos(&at);
    ScreenToClient(m_handle, &at);
    static thread_local std::wstring shown; // there is one tooltip at a time
    shown = toWide(tipAt(at));
    reinterpret_cast<NMTTDISPINFOW&>(message).lpszText = shown.data();
}

void control::setTip(std::string_view text)
{
    if (m_tip == text)
        return;
    m_tip = text;
    restartTip(); // it may be on the screen
}

void control::restartTip()
{
    if (tool_tip* const tips = tipsAround(m_handle))
        tips->restart(m_handle);
}

int control::widthOf(std::string_view text, bool has_mnemonic) const
{
    const std::wstring wide = toWide(text);
    RECT area{};
    const HDC context = GetDC(m_handle);
    const HGDIOBJ former = SelectObject(context, reinterpret_cast<HGDIOBJ>(send(WM_GETFONT)));
    DrawTextW(context, wide.c_str(), static_cast<int>(wide.size()), &area,
              DT_CALCRECT | DT_SINGLELINE | (has_mnemonic ? 0u : DT_NOPREFIX));
    if (former != nullptr)
        SelectObject(context, former);
    ReleaseDC(m_handle, context);
    return area.right;
}

int control::lineHeight() const
{
    TEXTMETRICW metrics{};
    const HDC context = GetDC(m_handle);
    const HGDIOBJ former = SelectObject(context, reinterpret_cast<HGDIOBJ>(send(WM_GETFONT)));
    GetTextMetricsW(context, &metrics);
    if (former != nullptr)
        SelectObject(context, former);
    ReleaseDC(m_handle, context);
    return metrics.tmHeight + metrics.tmExternalLeading;
}

SIZE control::naturalSize() const
{
    return {scaled(100), lineHeight() + scaled(4) + 4}; // with the borders of a field
}

int control::clientWidth() const
{
    RECT client{};
    GetClientRect(m_handle, &client);
    return client.right;
}

int control::scaled(int pixels_at_96) const
{
    const window* const top = window::fromHandle(GetAncestor(m_handle, GA_ROOT));
    return top != nullptr ? top->scaled(pixels_at_96) : pixels_at_96;
}

bool control::isAboutEnter(LPARAM lparam)
{
    const MSG* const asked = reinterpret_cast<const MSG*>(lparam);
    return asked != nullptr && asked->message == WM_KEYDOWN && asked->wParam == VK_RETURN;
}

void control::setText(std::string_view text)
{
    SetWindowTextW(m_handle, toWide(text).c_str());
}

std::string control::text() const
{
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(m_handle)) + 1, L'\0');
    text.resize(static_cast<std::size_t>(GetWindowTextW(m_handle, text.data(), static_cast<int>(text.size()))));
    return fromWide(text);
}

void control::setFont(const font& used)
{
    send(WM_SETFONT, reinterpret_cast<WPARAM>(used.handle()), TRUE);
}

void control::place(int x, int y, int width, int height)
{
    SetWindowPos(m_handle, nullptr, x, y, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
}

void control::setTabStop(bool is_wanted)
{
    const LONG_PTR style = GetWindowLongPtrW(m_handle, GWL_STYLE);
    SetWindowLongPtrW(m_handle, GWL_STYLE, is_wanted ? style | WS_TABSTOP : style & ~LONG_PTR{WS_TABSTOP});
}

void control::setEnabled(bool is_enabled)
{
    if (!is_enabled && GetFocus() == m_handle)
        SetFocus(GetNextDlgTabItem(GetAncestor(m_handle, GA_ROOT), m_handle, FALSE));
    EnableWindow(m_handle, is_enabled);
}

} // namespace korvane
