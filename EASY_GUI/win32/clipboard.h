#pragma once

// Text on the system's clipboard, UTF-8. Another program may hold the clipboard for a moment: both functions try for a
// fifth of a second. Window thread only.

#include "EASY_GUI/services/failure.h"

#include <optional>
#include <string>
#include <string_view>
#include <windows.h>

namespace korvane
{

// The owner is a window of this thread. False: what was on the clipboard stays, or nothing is on it.
[[nodiscard]] bool setClipboardText(HWND owner, std::string_view text, failure& why);
// Nothing: there is no text (an empty reason), or the clipboard could not be read.
[[nodiscard]] std::optional<std::string> clipboardText(HWND owner, failure& why);

} // namespace korvane
