#include "EASY_GUI/win32/window.h"

#include "EASY_GUI/win32/control.h"
#include "EASY_GUI/win32/dpi.h"
#include "EASY_GUI/win32/tool_tip.h"
#include "EASY_GUI/win32/wide_text.h"

#include <commctrl.h>
#include <exception>
#include <shellapi.h>
#include <unordered_map>
#include <windowsx.h>

namespace korvane
{

namespace
{

// The windows of this thread. Messages of a handle that is not in here go to the system's default procedure.
std::unordered_map<HWND, window*>& windowsByHandle()
{
    static thread_local std::unordered_map<HWND, window*> windows;
    return windows;
}

void reportException(HWND handle, const char* what)
{
    const std::wstring text = toWide(std::string("The program could not finish this action: ") + what);
    MessageBoxW(handle, text.c_str(), L"Error!", MB_OK | MB_ICONERROR);
}

mouse_event mouseEvent(WPARAM wparam, LPARAM lparam)
{
    mouse_event event;
    event.at = {GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)};
    event.keys = GET_KEYSTATE_WPARAM(wparam);
    return event;
}

std::vector<std::string> droppedPaths(HDROP drop)
{
    std::vector<std::string> paths(DragQueryFileW(drop, 0xffffffff, nullptr, 0));
    for (UINT i = 0; i < paths.size(); ++i)
    {
        std::wstring path(DragQueryFileW(drop, i, nullptr, 0) + std::size_t{1}, L'\0');
        path.resize(DragQueryFileW(drop, i, path.data(), static_cast<UINT>(path.size())));
        paths[i] = fromWide(path);
    }
    DragFinish(drop);
    return paths;
}

// Null: there is none. (The system's own search does not end then.)
HWND firstTabStop(HWND window)
{
    HWND found = nullptr;
    EnumChildWindows(
        window,
        [](HWND child, LPARAM result) -> BOOL {
            const bool can_stop = (GetWindowLongPtrW(child, GWL_STYLE) & WS_TABSTOP) != 0 &&
                                  IsWindowEnabled(child) != 0 && IsWindowVisible(child) != 0;
            if (can_stop)
                *reinterpret_cast<HWND*>(result) = child;
            return !can_stop;
        },
        reinterpret_cast<LPARAM>(&found));
    return found;
}

size_change sizeChange(WPARAM wparam)
{
    return wparam == SIZE_MINIMIZED   ? size_change::minimised
           : wparam == SIZE_MAXIMIZED ? size_change::maximised
                                      : size_change::restored;
}

} // namespace

window::window() = default;

window::~window()
{
    // First no message reaches the object any more, then the window goes: derived handlers no longer exist here.
    const HWND handle = m_handle;
    detach();
    if (handle != nullptr)
        DestroyWindow(handle);
}

void window::detach()
{
    if (m_handle != nullptr)
        windowsByHandle().erase(m_handle);
    m_handle = nullptr;
    m_focused = nullptr;
    m_dpi = 0;
    m_po_tips.reset();
}

tool_tip& window::tips()
{
    if (m_po_tips == nullptr)
        m_po_tips = std::make_unique<tool_tip>(m_handle, dpi());
    return *m_po_tips;
}

window* window::fromHandle(HWND handle)
{
    const auto& windows = windowsByHandle();
    const auto found = windows.find(handle);
    return found == windows.end() ? nullptr : found->second;
}

void window::tellFocused(HWND control)
{
    for (HWND around = GetAncestor(control, GA_PARENT); around != nullptr; around = GetAncestor(around, GA_PARENT))
        if (window* const one = fromHandle(around); one != nullptr)
            one->onControlFocused(control);
}

void window::answerOthers()
{
    MSG message{};
    PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
}

RECT window::workArea(HWND shown)
{
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    if (GetMonitorInfoW(MonitorFromWindow(shown, MONITOR_DEFAULTTOPRIMARY), &monitor))
        return monitor.rcWork;
    return {0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
}

// One window class for each combination of what a class decides: background, double clicks and icon.
ATOM window::classFor(const window_settings& settings)
{
    static thread_local std::unordered_map<unsigned, ATOM> classes;
    const unsigned key = (settings.is_opaque ? 1u : 0u) | (settings.wants_repeat_clicks ? 2u : 0u) |
                         (static_cast<unsigned>(settings.icon) << 2);
    if (const auto found = classes.find(key); found != classes.end())
        return found->second;

    const HINSTANCE instance = GetModuleHandleW(nullptr);
    const std::wstring name = L"korvane_window_" + std::to_wstring(key) + L"_" + std::to_wstring(GetCurrentThreadId());
    const auto icon = [&](int metric) {
        const LPCWSTR resource = settings.icon != 0 ? MAKEINTRESOURCEW(settings.icon) : nullptr;
        const int size = GetSystemMetrics(metric);
        return resource != nullptr
                   ? static_cast<HICON>(LoadImageW(instance, resource, IMAGE_ICON, size, size, LR_SHARED))
                   : LoadIconW(nullptr, IDI_APPLICATION);
    };
    WNDCLASSEXW description{};
    description.cbSize = sizeof(description);
    description.style = settings.wants_repeat_clicks ? CS_DBLCLKS : 0u;
    description.lpfnWndProc = &window::windowProcedure;
    description.hInstance = instance;
    description.hIcon = icon(SM_CXICON);
    description.hIconSm = icon(SM_CXSMICON);
    description.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    description.hbrBackground = settings.is_opaque ? nullptr : GetSysColorBrush(COLOR_BTNFACE);
    description.lpszClassName = name.c_str();
    const ATOM atom = RegisterClassExW(&description);
    if (atom != 0)
        classes.emplace(key, atom);
    return atom;
}

bool window::create(const window_settings& settings, failure& why)
{
    if (m_handle != nullptr)
        return fail(why, failure_kind::refused, "the window is open already");
    const ATOM window_class = classFor(settings);
    const HWND handle = window_class == 0 ? nullptr
                                          : CreateWindowExW(settings.extended_style, MAKEINTATOM(window_class),
                                                            toWide(settings.title).c_str(), settings.style, settings.x,
                                                            settings.y, settings.width, settings.height,
                                                            settings.parent, nullptr, GetModuleHandleW(nullptr), this);
    if (handle == nullptr)
    {
        const DWORD code = GetLastError();
        detach();
        return fail(why, failure_kind::refused, "the window could not be created (error " + std::to_string(code) + ")");
    }
    return true;
}

bool window::createChild(HWND parent, DWORD style, DWORD extended_style, failure& why, bool is_opaque)
{
    window_settings settings;
    settings.style = WS_CHILD | style;
    settings.extended_style = extended_style;
    settings.x = settings.y = settings.width = settings.height = 0;
    settings.parent = parent;
    settings.is_opaque = is_opaque;
    return create(settings, why);
}

void window::destroy()
{
    if (m_handle != nullptr)
        DestroyWindow(m_handle);
}

void window::show(int how)
{
    ShowWindow(m_handle, how);
}

void window::setTitle(std::string_view title)
{
    SetWindowTextW(m_handle, toWide(title).c_str());
}

std::string window::title() const
{
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(m_handle)) + 1, L'\0');
    const int length = GetWindowTextW(m_handle, text.data(), static_cast<int>(text.size()));
    text.resize(static_cast<std::size_t>(length));
    return fromWide(text);
}

RECT window::clientRectangle() const
{
    RECT rectangle{};
    GetClientRect(m_handle, &rectangle);
    return rectangle;
}

void window::invalidate()
{
    InvalidateRect(m_handle, nullptr, TRUE);
}

unsigned window::dpi() const
{
    const window* const top = fromHandle(GetAncestor(m_handle, GA_ROOT));
    return top != nullptr && top->m_dpi != 0 ? top->m_dpi : dpiOf(m_handle);
}

LRESULT CALLBACK window::windowProcedure(HWND handle, UINT message, WPARAM wparam, LPARAM lparam)
{
    if (message == WM_NCCREATE)
    {
        auto* const creating = static_cast<window*>(reinterpret_cast<const CREATESTRUCTW*>(lparam)->lpCreateParams);
        creating->m_handle = handle;
        windowsByHandle()[handle] = creating;
    }
    window* const target = fromHandle(handle);
    if (target == nullptr)
        return DefWindowProcW(handle, message, wparam, lparam);
    try
    {
        const LRESULT result = target->handleMessage(message, wparam, lparam);
        // The last message of a window. The object may have gone while it was handled: look it up again.
        if (message == WM_NCDESTROY)
            if (window* const still = fromHandle(handle); still != nullptr)
                still->detach();
        return result;
    }
    catch (const std::exception& error)
    {
        reportException(handle, error.what());
    }
    catch (...)
    {
        reportException(handle, "unknown error");
    }
    return message == WM_CREATE ? -1 : 0;
}

LRESULT window::defaultResult(UINT message, WPARAM wparam, LPARAM lparam) const
{
    return DefWindowProcW(m_handle, message, wparam, lparam);
}

bool window::handleMouse(UINT message, WPARAM wparam, LPARAM lparam, LRESULT& result)
{
    result = 0;
    mouse_event event = mouseEvent(wparam, lparam);
    switch (message)
    {
    case WM_MOUSEMOVE:
        return onMouseMove(event);
    case WM_MOUSEWHEEL:
        ScreenToClient(m_handle, &event.at);
        return onMouseWheel(GET_WHEEL_DELTA_WPARAM(wparam), event);
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
    case WM_LBUTTONUP:
        event.button = mouse_button::left;
        break;
    case WM_RBUTTONDOWN:
    case WM_RBUTTONDBLCLK:
    case WM_RBUTTONUP:
        event.button = mouse_button::right;
        break;
    case WM_MBUTTONDOWN:
    case WM_MBUTTONDBLCLK:
    case WM_MBUTTONUP:
        event.button = mouse_button::middle;
        break;
    default:
        return false;
    }
    event.is_down = message != WM_LBUTTONUP && message != WM_RBUTTONUP && message != WM_MBUTTONUP;
    event.is_double = message == WM_LBUTTONDBLCLK || message == WM_RBUTTONDBLCLK || message == WM_MBUTTONDBLCLK;
    return onMouseButton(event);
}

void window::focusWhenActive(HWND control)
{
    m_focused = control;
    if (GetActiveWindow() == m_handle)
        SetFocus(control);
}

bool window::focusControl()
{
    const bool is_there = IsChild(m_handle, m_focused) && IsWindowEnabled(m_focused) && IsWindowVisible(m_focused);
    const HWND control = is_there ? m_focused : firstTabStop(m_handle);
    if (control == nullptr)
        return false;
    SetFocus(control);
    return true;
}

// As a dialog answers: mnemonics of names come this way, first to the name and then on to what is behind it.
void window::focusNextControl(WPARAM wparam, LPARAM lparam)
{
    const HWND next =
        LOWORD(lparam) != 0 ? reinterpret_cast<HWND>(wparam) : GetNextDlgTabItem(m_handle, GetFocus(), wparam != 0);
    if (next == nullptr)
        return;
    SetFocus(next);
    if ((SendMessageW(next, WM_GETDLGCODE, 0, 0) & DLGC_HASSETSEL) != 0)
        SendMessageW(next, EM_SETSEL, 0, -1);
}

bool window::handleGeometry(UINT message, WPARAM wparam, LPARAM lparam)
{
    switch (message)
    {
    case WM_SIZE:
        onSize(LOWORD(lparam), HIWORD(lparam), sizeChange(wparam));
        return true;
    case WM_GETMINMAXINFO:
    {
        auto& limits = *reinterpret_cast<MINMAXINFO*>(lparam);
        SIZE smallest{limits.ptMinTrackSize.x, limits.ptMinTrackSize.y};
        onMinimumSize(smallest);
        limits.ptMinTrackSize = {smallest.cx, smallest.cy};
        return true;
    }
    case WM_DPICHANGED:
    {
        m_dpi = HIWORD(wparam);
        const RECT& suggested = *reinterpret_cast<const RECT*>(lparam);
        SetWindowPos(m_handle, nullptr, suggested.left, suggested.top, suggested.right - suggested.left,
                     suggested.bottom - suggested.top, SWP_NOZORDER | SWP_NOACTIVATE);
        if (m_po_tips != nullptr)
            m_po_tips->setDpi(m_dpi);
        onDpiChanged(m_dpi);
        return true;
    }
    default:
        return false;
    }
}

// What a control tells its parent comes back to the control.
bool window::handOn(UINT message, WPARAM wparam, LPARAM lparam, LRESULT& result)
{
    if ((message != WM_COMMAND && message != WM_NOTIFY && message != WM_HSCROLL && message != WM_VSCROLL) ||
        lparam == 0)
        return false;
    NMHDR* const notice = message == WM_NOTIFY ? reinterpret_cast<NMHDR*>(lparam) : nullptr;
    if (notice != nullptr && notice->code == TTN_GETDISPINFOW) // sent by the tooltips, about a control
    {
        const control* const pointed_at = control::fromHandle(reinterpret_cast<HWND>(notice->idFrom));
        if (pointed_at != nullptr)
            pointed_at->giveTip(*notice);
        return pointed_at != nullptr;
    }
    control* const sender = control::fromHandle(notice != nullptr ? notice->hwndFrom : reinterpret_cast<HWND>(lparam));
    if (sender == nullptr)
        return false;
    switch (message)
    {
    case WM_COMMAND:
        return sender->onNotified(HIWORD(wparam));
    case WM_NOTIFY:
        return sender->onNotify(*notice, result);
    default:
        return sender->onScrolled(LOWORD(wparam));
    }
}

LRESULT window::handleMessage(UINT message, WPARAM wparam, LPARAM lparam)
{
    LRESULT result = 0;
    if (handOn(message, wparam, lparam, result))
        return result;
    if (message >= WM_MOUSEFIRST && message <= WM_MOUSELAST)
        return handleMouse(message, wparam, lparam, result) ? result : defaultResult(message, wparam, lparam);
    if (handleGeometry(message, wparam, lparam))
        return 0;

    switch (message)
    {
    case WM_CREATE:
        return onCreated() ? 0 : -1;
    case WM_CLOSE:
        onClose();
        return 0;
    case WM_DESTROY:
        onDestroyed();
        return 0;
    case WM_COMMAND:
        if (onCommand(LOWORD(wparam), HIWORD(wparam), reinterpret_cast<HWND>(lparam)))
            return 0;
        break;
    case WM_KEYDOWN:
        if (onKeyDown(static_cast<unsigned>(wparam), (lparam & (1L << 30)) != 0))
            return 0;
        break;
    case WM_SETFOCUS:
        if (hasControls() && focusControl())
            return 0;
        break;
    case WM_NEXTDLGCTL:
        if (hasControls())
            focusNextControl(wparam, lparam);
        return 0;
    case WM_CAPTURECHANGED:
        if (reinterpret_cast<HWND>(lparam) != m_handle)
            onCaptureLost();
        return 0;
    case WM_PAINT:
        if (onPaint())
            return 0;
        break;
    case WM_VSCROLL:
        if (lparam == 0) // the window's own scroll bar
            onVerticalScroll(LOWORD(wparam));
        return 0;
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLOREDIT:
    case WM_CTLCOLORLISTBOX:
        if (const HBRUSH brush = onControlColour(reinterpret_cast<HDC>(wparam), reinterpret_cast<HWND>(lparam)))
            return reinterpret_cast<LRESULT>(brush);
        break;
    case WM_DROPFILES:
        onFilesDropped(droppedPaths(reinterpret_cast<HDROP>(wparam)));
        return 0;
    default:
        break;
    }
    return defaultResult(message, wparam, lparam);
}

} // namespace korvane
