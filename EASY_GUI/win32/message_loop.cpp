#include "EASY_GUI/win32/message_loop.h"

#include "EASY_GUI/win32/dialog_box.h"

namespace korvane
{

namespace
{

// Select all, copy, cut, paste and undo, in a field that can do it: a field that is only read leaves the others to the
// document.
bool isForText(const MSG& message)
{
    const auto isDown = [](int key) { return GetKeyState(key) < 0; };
    if (message.message != WM_KEYDOWN || !isDown(VK_CONTROL) || isDown(VK_SHIFT) || isDown(VK_MENU) ||
        (SendMessageW(message.hwnd, WM_GETDLGCODE, 0, 0) & DLGC_HASSETSEL) == 0)
        return false;
    DWORD first = 0;
    DWORD last = 0;
    SendMessageW(message.hwnd, EM_GETSEL, reinterpret_cast<WPARAM>(&first), reinterpret_cast<LPARAM>(&last));
    const bool is_editable = (GetWindowLongPtrW(message.hwnd, GWL_STYLE) & ES_READONLY) == 0;
    switch (message.wParam)
    {
    case 'A':
        return true;
    case 'C':
        return first != last;
    case 'V':
    case 'X':
        return is_editable;
    case 'Z': // what was typed and not taken yet; else the document's last change
        return is_editable && SendMessageW(message.hwnd, EM_CANUNDO, 0, 0) != 0;
    default:
        return false;
    }
}

// Whether nothing around a control is hidden or disabled. From one that is, the system's search for a mnemonic, which
// begins there, never ends: it happens to a key whose command has hidden the control that had the focus.
bool isReachable(HWND control, HWND main)
{
    for (; control != nullptr && control != main; control = GetAncestor(control, GA_PARENT))
        if ((GetWindowLongPtrW(control, GWL_STYLE) & (WS_VISIBLE | WS_DISABLED)) != WS_VISIBLE)
            return false;
    return true;
}

} // namespace

bool message_loop::isShortcut(const MSG& message) const
{
    return m_accelerators != nullptr && m_main.isOpen() && IsWindowEnabled(m_main.handle()) &&
           m_main.takesShortcutsOf(GetAncestor(message.hwnd, GA_ROOT)) && !isForText(message);
}

void message_loop::dispatch(MSG& message) const
{
    if (isShortcut(message))
    {
        BYTE pressed_with[256];
        const bool is_known = GetKeyboardState(pressed_with) != 0;
        const bool is_command = TranslateAcceleratorW(m_main.handle(), m_accelerators, &message) != 0;
        if (is_command && (m_idle_work || message.wParam == VK_TAB))
            return; // Tab would move the focus besides
        if (is_command && is_known)
            return dispatchAsKey(message, pressed_with);
    }
    dispatchPlain(message);
}

// The command may have shown a dialog, during which Ctrl was let go: whoever gets the key now still sees it with what
// it was pressed with, and not as a letter.
void message_loop::dispatchAsKey(MSG& message, BYTE (&pressed_with)[256]) const
{
    BYTE now[256];
    if (GetKeyboardState(now) == 0)
        return;
    SetKeyboardState(pressed_with);
    dispatchPlain(message);
    SetKeyboardState(now);
}

void message_loop::dispatchPlain(MSG& message) const
{
    if (dialog_box::takeKey(message))
        return;
    if (m_main.isOpen() && isReachable(message.hwnd, m_main.handle()) && IsDialogMessageW(m_main.handle(), &message))
        return; // it has translated and dispatched the message itself
    TranslateMessage(&message);
    DispatchMessageW(&message);
}

int message_loop::run()
{
    MSG message{};
    while (m_idle_work)
        if (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) == 0)
            m_idle_work();
        else if (message.message == WM_QUIT)
            return static_cast<int>(message.wParam);
        else
            dispatch(message);
    while (GetMessageW(&message, nullptr, 0, 0) > 0)
        dispatch(message);
    return static_cast<int>(message.wParam);
}

} // namespace korvane
