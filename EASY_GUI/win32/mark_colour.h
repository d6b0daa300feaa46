#pragma once

// How marked rows look: a text colour that can be read on the system's background, and small pictures.

#include "EASY_GUI/services/row_mark.h"

#include <optional>
#include <windows.h>

namespace korvane
{

[[nodiscard]] bool isHighContrast();
// Nothing: the system's text colour. In high contrast only colours of the system.
[[nodiscard]] std::optional<COLORREF> textColour(row_mark mark);
// The system's own picture of what a row says; null where it needs none. Shared: not to be destroyed.
[[nodiscard]] HICON iconOf(row_mark mark, int size);

} // namespace korvane
