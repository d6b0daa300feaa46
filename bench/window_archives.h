#pragma once

// The page Archives over a million files: there within 50 ms; a key press in its search: first rows within 30 ms, all
// of them within 80 ms.

#include "bench/window_program_win.h"

namespace korvane::bench
{

void measureArchives(const installed_program& installed);

} // namespace korvane::bench
