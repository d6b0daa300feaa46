#pragma once

// The page Archives over a million files: there within 50 ms; a key press in its search: first rows within 30 ms, all
// of them within 80 ms; a page of a million rows within 16 ms; less than 24 MiB beyond the index. A folder of a million
// files, beside which the window answers.

#include "bench/window_program_win.h"

namespace korvane::bench
{

void measureArchives(const installed_program& installed);
void measureFolder(const installed_program& installed); // of a million files

} // namespace korvane::bench
