#pragma once

// Files and folders into the system's bin, from where a person gets them back. Window thread.

#include "EASY_GUI/services/failure.h"

#include <span>
#include <string>
#include <windows.h>

namespace korvane
{

// Whole paths, UTF-8. Where a drive has no bin the system asks whether they may go for good; what it shows stands over
// the owner. False, with the reason, when not all of them went.
[[nodiscard]] bool moveToBin(HWND owner, std::span<const std::string> paths, failure& why);

} // namespace korvane
