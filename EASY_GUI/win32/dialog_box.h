#pragma once

// A dialog over a window of the program. Derive, create the controls in onFill() and return how they are laid out; the
// order of creation is the order of Tab. The dialog is as large as its layout needs, or as wished, in the middle of its
// owner and within its monitor; it follows font and density. Enter presses the default button, or the button that has
// the focus, unless the focused control acts on Enter itself; Escape and the close button cancel. Window thread only.
//
// run() disables the owner and returns when the dialog is through, also when the owner was destroyed meanwhile or the
// program is to end (the message that says so is posted again). The object may be used again afterwards.

#include "EASY_GUI/win32/button.h"
#include "EASY_GUI/win32/layout.h"
#include "EASY_GUI/win32/window.h"

#include <optional>

namespace korvane
{

struct dialog_settings
{
    std::string title;
    SIZE size{};               // of the inside at 96 dots per inch; at least as large as the layout needs
    bool is_resizable = false; // not below what the layout needs
    // What F1 asks about: the window that owns all dialogs gets WM_HELP with this as the context. 0: what the dialog
    // below, if any, asks about.
    DWORD help = 0;
};

class dialog_box : public window
{
public:
    static constexpr int cancelled = 0;

    ~dialog_box() override { destroy(); }

    // What end() was called with; cancelled when it was not, and, with the reason, when there is no dialog.
    [[nodiscard]] int run(HWND owner, failure& why);
    // Shows it beside the owner, which stays enabled; end() closes it.
    [[nodiscard]] bool showBeside(HWND owner, failure& why);
    void end(int result);

    // The modal dialog on top, over which the next box belongs; null: there is none.
    static HWND innermost();
    // For message loops: whether a message was a dialog's key (Tab, Enter, Escape, mnemonics), which has then been
    // acted on. Messages of other windows are left alone.
    static bool takeKey(MSG& message);

protected:
    explicit dialog_box(dialog_settings settings) : m_settings(std::move(settings)) {}

    // Nothing, with the reason: the dialog does not open.
    virtual std::optional<layout> onFill(failure& why) = 0;
    virtual bool onPlace() { return false; }    // where it is to be shown; false: over the middle of its owner
    virtual void onShown() {}                   // once it is seen
    virtual void onCancel() { end(cancelled); } // Escape, Alt+F4, the close button

    // In onFill(). Drawn as the default until another button has the focus; Enter presses it.
    void setDefault(button& preset) { m_po_default = &preset; }
    void setFirstFocus(control& first) { m_po_first = &first; } // else the first control
    const font& usedFont() const { return m_font; }
    void layOut();

    bool onCreated() override;
    void onClose() override { onCancel(); }
    void onDestroyed() override;
    void onSize(int width, int height, size_change change) override;
    void onMinimumSize(SIZE& outer) override;
    void onDpiChanged(unsigned dpi) override;
    void onControlFocused(HWND control) override;

private:
    bool open(HWND owner, failure& why);
    void applyFont();
    RECT outerOf(SIZE inside) const;
    void placeOver(HWND owner);
    void loop();
    void release();
    bool pressEnter(MSG& message);
    bool takeOwnKey(MSG& message);
    void askForHelp() const;

    dialog_settings m_settings;
    std::optional<layout> m_layout;
    failure m_failure;
    font m_font;
    button* m_po_default = nullptr;
    button* m_po_shown_default = nullptr;
    control* m_po_first = nullptr;
    HWND m_owner = nullptr;
    bool m_is_modal = false;
    bool m_is_over = false;
    int m_result = cancelled;
};

} // namespace korvane
