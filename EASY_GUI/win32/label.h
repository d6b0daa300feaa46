#pragma once

// A line of text that cannot take the focus, and the name before a field: its mnemonic focuses the field, which is
// created next.

#include "EASY_GUI/win32/control.h"

namespace korvane
{

class label : public control
{
public:
    // Text that does not fit ends in an ellipsis. An '&' is shown as it is.
    [[nodiscard]] bool create(HWND parent, int id, std::string_view text = {})
    {
        return createControl(L"STATIC", parent, id, text,
                             SS_LEFT | SS_CENTERIMAGE | SS_NOPREFIX | SS_ENDELLIPSIS | SS_NOTIFY);
    }
    SIZE naturalSize() const override { return {widthOf(text()) + scaled(2), lineHeight() + scaled(2)}; }

protected:
    bool isTextClipped() const override { return widthOf(text()) > clientWidth(); }
};

class field_name : public control
{
public:
    [[nodiscard]] bool create(HWND parent, std::string_view text)
    {
        return createControl(L"STATIC", parent, 0, text, SS_LEFTNOWORDWRAP | SS_CENTERIMAGE | SS_NOTIFY);
    }
    SIZE naturalSize() const override { return {widthOf(text(), true) + scaled(2), lineHeight() + scaled(2)}; }

protected:
    bool isTextClipped() const override { return widthOf(text(), true) > clientWidth(); }
};

// Text of several lines, broken where it has to be; its layout says how many lines there are.
class text_block : public control
{
public:
    [[nodiscard]] bool create(HWND parent, int id, std::string_view text = {})
    {
        return createControl(L"STATIC", parent, id, text, SS_LEFT | SS_NOPREFIX | SS_EDITCONTROL);
    }
    bool fillsHeight() const override { return true; }
    SIZE naturalSize() const override { return {scaled(100), lineHeight()}; }
};

} // namespace korvane
