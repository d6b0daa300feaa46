#pragma once

// The dialog of exports over 50,000 animations, 5,000 of them for the model's skeleton: the search with its first and
// its last row (first ones within 0.1 s, all within 1.3 times what the search alone takes), and 100 of them exported
// (within 1.2 times what the console takes for the same files, which are compared). The window answers all the time.

#include "bench/window_program_win.h"

namespace korvane::bench
{

void measureExport(const installed_program& installed, const std::string& console);

} // namespace korvane::bench
