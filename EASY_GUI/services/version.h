#pragma once

// The name and version that windows, help texts and written files show.

#include <string_view>

namespace korvane
{

inline constexpr std::string_view program_name = "Korvane";
extern const std::string_view program_version; // "1.2.3a", from CMakeLists.txt

} // namespace korvane
