#pragma once

// A line of text that cannot take the focus.

#include "EASY_GUI/win32/control.h"

namespace korvane
{

class label : public control
{
public:
    // Text that does not fit ends in an ellipsis. An '&' is shown as it is.
    [[nodiscard]] bool create(HWND parent, int id, std::string_view text = {})
    {
        return createControl(L"STATIC", parent, id, text, SS_LEFT | SS_CENTERIMAGE | SS_NOPREFIX | SS_ENDELLIPSIS);
    }
};

} // namespace korvane
