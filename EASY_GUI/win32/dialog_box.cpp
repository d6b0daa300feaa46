#include "EASY_GUI/win32/dialog_box.h"

#include "EASY_GUI/win32/dpi.h"

#include <algorithm>
#include <array>
#include <string>

namespace korvane
{

namespace
{

std::vector<HWND>& modalDialogs() // of this thread, the last one is on top
{
    static thread_local std::vector<HWND> dialogs;
    return dialogs;
}

BOOL CALLBACK giveFont(HWND child, LPARAM font_handle)
{
    SendMessageW(child, WM_SETFONT, static_cast<WPARAM>(font_handle), TRUE);
    return TRUE;
}

bool hasClass(HWND handle, const wchar_t* name)
{
    std::array<wchar_t, 40> text{};
    GetClassNameW(handle, text.data(), static_cast<int>(text.size()));
    return lstrcmpiW(text.data(), name) == 0;
}

bool isOpenList(HWND focused)
{
    const HWND around = GetParent(focused); // of the field of a list into which one can type
    const HWND list = hasClass(around, L"COMBOBOX") ? around : focused;
    return hasClass(list, L"COMBOBOX") && SendMessageW(list, CB_GETDROPPEDSTATE, 0, 0) != 0;
}

} // namespace

HWND dialog_box::innermost()
{
    return modalDialogs().empty() ? nullptr : modalDialogs().back();
}

bool dialog_box::open(HWND owner, failure& why)
{
    owner = owner != nullptr ? GetAncestor(owner, GA_ROOT) : nullptr;
    m_owner = owner;
    m_failure = {};
    m_po_default = m_po_shown_default = nullptr;
    m_po_first = nullptr;
    m_is_modal = m_is_over = false;
    m_result = cancelled;
    RECT over{};
    if (owner != nullptr)
        GetWindowRect(owner, &over);
    window_settings settings;
    settings.title = m_settings.title;
    settings.style = WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_CLIPCHILDREN |
                     (m_settings.is_resizable ? static_cast<DWORD>(WS_THICKFRAME | WS_MAXIMIZEBOX) : 0u);
    settings.extended_style = WS_EX_CONTROLPARENT | WS_EX_DLGMODALFRAME;
    settings.x = over.left; // on the owner's monitor, whose density counts
    settings.y = over.top;
    settings.width = settings.height = 100;
    settings.parent = owner;
    if (create(settings, why))
    {
        placeOver(owner); // in its size
        if (onPlace())
            layOut();
        return true;
    }
    if (m_failure)
        why = m_failure;
    return false;
}

bool dialog_box::onCreated()
{
    m_layout = onFill(m_failure);
    if (!m_layout && !m_failure)
        m_failure.what = "the dialog \"" + m_settings.title + "\" could not be filled (error " +
                         std::to_string(GetLastError()) + ")";
    if (!m_layout)
        return false;
    applyFont();
    return true;
}

void dialog_box::applyFont()
{
    m_font = font(dpi(), font::weight::regular);
    EnumChildWindows(handle(), &giveFont, reinterpret_cast<LPARAM>(m_font.handle()));
    layOut();
}

void dialog_box::layOut()
{
    if (m_layout)
        m_layout->place(clientRectangle(), m_font, dpi());
}

RECT dialog_box::outerOf(SIZE inside) const
{
    const auto style = static_cast<DWORD>(GetWindowLongPtrW(handle(), GWL_STYLE));
    const auto extended = static_cast<DWORD>(GetWindowLongPtrW(handle(), GWL_EXSTYLE));
    return outerRectangle({0, 0, inside.cx, inside.cy}, style, extended, false, dpi());
}

void dialog_box::placeOver(HWND owner)
{
    const SIZE needed = m_layout->smallest(m_font, dpi());
    const RECT outer = outerOf({std::max(needed.cx, static_cast<LONG>(scaled(m_settings.size.cx))),
                                std::max(needed.cy, static_cast<LONG>(scaled(m_settings.size.cy)))});
    const RECT work = workArea(owner);
    RECT over = work;
    if (owner != nullptr && !IsIconic(owner))
        GetWindowRect(owner, &over);
    const LONG width = std::min(outer.right - outer.left, work.right - work.left);
    const LONG height = std::min(outer.bottom - outer.top, work.bottom - work.top);
    const LONG x = std::clamp((over.left + over.right - width) / 2, work.left, work.right - width);
    const LONG y = std::clamp((over.top + over.bottom - height) / 2, work.top, work.bottom - height);
    SetWindowPos(handle(), nullptr, x, y, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
    layOut();
}

void dialog_box::onSize(int, int, size_change change)
{
    if (change != size_change::minimised)
        layOut();
}

void dialog_box::onMinimumSize(SIZE& outer)
{
    if (!m_layout)
        return;
    const RECT least = outerOf(m_layout->smallest(m_font, dpi()));
    outer = {std::max(outer.cx, least.right - least.left), std::max(outer.cy, least.bottom - least.top)};
}

void dialog_box::onDpiChanged(unsigned)
{
    applyFont();
    if (!m_settings.is_resizable) // what the system suggests is only about right
        placeOver(handle());
}

bool dialog_box::showBeside(HWND owner, failure& why)
{
    m_is_modal = false;
    if (!open(owner, why))
        return false;
    if (m_po_first != nullptr)
        focusWhenActive(m_po_first->handle());
    show();
    onControlFocused(GetFocus());
    onShown();
    return true;
}

int dialog_box::run(HWND owner, failure& why)
{
    if (!open(owner, why))
        return cancelled;
    m_is_modal = true;
    modalDialogs().push_back(handle());
    const bool was_enabled = m_owner != nullptr && EnableWindow(m_owner, FALSE) == FALSE;
    if (!was_enabled)
        m_owner = nullptr; // who disabled it enables it again
    if (m_po_first != nullptr)
        focusWhenActive(m_po_first->handle());
    show();
    onControlFocused(GetFocus());
    onShown();
    loop();
    release();
    destroy();
    return m_result;
}

void dialog_box::loop()
{
    MSG message{};
    while (isOpen() && !m_is_over)
    {
        const BOOL has_come = GetMessageW(&message, nullptr, 0, 0);
        if (has_come <= 0)
        {
            if (has_come == 0)
                PostQuitMessage(static_cast<int>(message.wParam)); // for the loop that this one runs in
            return;
        }
        if (takeKey(message))
            continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

// Before the dialog goes: else the system would look for another window to activate.
void dialog_box::release()
{
    std::erase(modalDialogs(), handle());
    if (m_owner != nullptr && IsWindow(m_owner))
        EnableWindow(m_owner, TRUE);
    m_owner = nullptr;
}

void dialog_box::end(int result)
{
    m_result = result;
    m_is_over = true;
    if (!m_is_modal)
        destroy();
    else
        PostMessageW(handle(), WM_NULL, 0, 0); // the loop looks up
}

void dialog_box::onDestroyed()
{
    if (m_is_modal)
        release();
    m_layout.reset();
    m_po_default = m_po_shown_default = nullptr;
}

// The button that Enter would press has the thick frame.
void dialog_box::onControlFocused(HWND focused)
{
    window::onControlFocused(focused);
    auto* const pressed = dynamic_cast<button*>(control::fromHandle(focused));
    button* const wanted = pressed != nullptr ? pressed : m_po_default;
    if (wanted == m_po_shown_default)
        return;
    if (m_po_shown_default != nullptr)
        m_po_shown_default->showDefault(false);
    if (wanted != nullptr)
        wanted->showDefault(true);
    m_po_shown_default = wanted;
}

bool dialog_box::takeKey(MSG& message)
{
    if (message.hwnd == nullptr)
        return false;
    auto* const dialog = dynamic_cast<dialog_box*>(fromHandle(GetAncestor(message.hwnd, GA_ROOT)));
    return dialog != nullptr && (dialog->takeOwnKey(message) || IsDialogMessageW(dialog->handle(), &message));
}

// What the system does with these keys depends on the control, and needs numbers of buttons.
bool dialog_box::takeOwnKey(MSG& message)
{
    if (message.message != WM_KEYDOWN || isOpenList(message.hwnd))
        return false;
    if (message.wParam == VK_ESCAPE)
        return onCancel(), true;
    if (message.wParam == VK_F1)
        return askForHelp(), true;
    return message.wParam == VK_RETURN && pressEnter(message);
}

void dialog_box::askForHelp() const
{
    HELPINFO about{};
    about.cbSize = sizeof about;
    about.iContextType = HELPINFO_WINDOW;
    about.hItemHandle = handle();
    HWND top = handle();
    for (HWND at = top; at != nullptr; at = GetWindow(at, GW_OWNER))
    {
        top = at;
        if (const auto* const dialog = dynamic_cast<const dialog_box*>(fromHandle(at));
            dialog != nullptr && about.dwContextId == 0)
            about.dwContextId = dialog->m_settings.help;
    }
    if (top != handle() && about.dwContextId != 0)
        SendMessageW(top, WM_HELP, 0, reinterpret_cast<LPARAM>(&about));
}

bool dialog_box::pressEnter(MSG& message)
{
    const LRESULT code = SendMessageW(message.hwnd, WM_GETDLGCODE, VK_RETURN, reinterpret_cast<LPARAM>(&message));
    const bool is_pushed = dynamic_cast<button*>(control::fromHandle(message.hwnd)) != nullptr;
    if (!is_pushed && (code & DLGC_WANTMESSAGE) != 0)
        return false;
    button* const wanted = is_pushed ? dynamic_cast<button*>(control::fromHandle(message.hwnd)) : m_po_default;
    if (wanted != nullptr && wanted->isEnabled())
        wanted->press();
    return true;
}

} // namespace korvane
