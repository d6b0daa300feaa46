#pragma once

// The title of the main window with this text behind the program's name and version.

#include "EASY_GUI/services/version.h"

#include <string>

namespace korvane::test
{

inline std::string programTitle(const std::string& behind)
{
    return "Korvane " + std::string(program_version) + "   " + behind;
}

} // namespace korvane::test
