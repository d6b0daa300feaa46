#pragma once

// A push button, a box that is checked or not, and the frame with a caption that holds related controls together.

#include "EASY_GUI/win32/control.h"

#include <algorithm>

namespace korvane
{

class button : public control
{
public:
    std::function<void()> onClick; // by mouse, key or mnemonic

    [[nodiscard]] bool create(HWND parent, int id, std::string_view text)
    {
        return createControl(L"BUTTON", parent, id, text, BS_PUSHBUTTON | WS_TABSTOP);
    }
    SIZE naturalSize() const override
    {
        const LONG width = widthOf(text(), true) + 2 * scaled(10);
        return {std::max(width, static_cast<LONG>(scaled(80))), lineHeight() + scaled(8) + 2};
    }
    void press() { send(BM_CLICK); } // as the person does
    void showDefault(bool is_default) { send(BM_SETSTYLE, is_default ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON, TRUE); }

protected:
    bool onNotified(int code) override { return code == BN_CLICKED && tell(onClick); }
    bool isTextClipped() const override { return widthOf(text(), true) > clientWidth() - scaled(6); }
};

class check_box : public control
{
public:
    std::function<void(bool is_checked)> onClick; // by the person, with the new state; check() calls nothing

    [[nodiscard]] bool create(HWND parent, int id, std::string_view text)
    {
        return createControl(L"BUTTON", parent, id, text, BS_AUTOCHECKBOX | WS_TABSTOP);
    }
    SIZE naturalSize() const override { return {widthOf(text(), true) + scaled(24), lineHeight() + scaled(4) + 4}; }
    void check(bool is_checked) { send(BM_SETCHECK, is_checked ? BST_CHECKED : BST_UNCHECKED); }
    bool isChecked() const { return send(BM_GETCHECK) == BST_CHECKED; }

protected:
    bool onNotified(int code) override { return code == BN_CLICKED && tell(onClick, isChecked()); }
    bool isTextClipped() const override { return widthOf(text(), true) > clientWidth() - scaled(20); }
};

class group_frame : public control
{
public:
    [[nodiscard]] bool create(HWND parent, int id, std::string_view text)
    {
        // Transparent, because a frame does not paint its inside.
        return createControl(L"BUTTON", parent, id, text, BS_GROUPBOX, WS_EX_TRANSPARENT);
    }
};

} // namespace korvane
