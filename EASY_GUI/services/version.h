#pragma once

// The name and version that windows, help texts and written files show.

#include <string_view>

namespace korvane
{

inline constexpr std::string_view program_name = "Korvane";
inline constexpr std::string_view program_version = "0.5.1a";

} // namespace korvane
