#pragma once

// Puts top-level windows back where they stood when the program ended (Korvane/document/window_place.h). Window thread.

#include "EASY_GUI/services/shared_config.h"
#include "EASY_GUI/win32/window.h"
#include "Korvane/document/window_place.h"

#include <string_view>

namespace korvane
{

// Where it stands now, and how. Nothing for a window that is not there.
[[nodiscard]] std::optional<window_place> placeOf(HWND shown);

// Moves a window, which may be hidden, to the place that is kept under a key, on a monitor that is there. False: none
// is kept. is_maximised: how it is then to be shown.
bool restorePlace(HWND moved, const shared_config& config, std::string_view key, bool& is_maximised);

} // namespace korvane
