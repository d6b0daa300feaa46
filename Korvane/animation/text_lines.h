#pragma once

// Line ends of the texts that are written beside the games' files: what the platform's text mode makes of a line feed.

#include <string_view>

namespace korvane
{

#ifdef _WIN32
inline constexpr std::string_view text_mode_line_end = "\r\n";
#else
inline constexpr std::string_view text_mode_line_end = "\n";
#endif

} // namespace korvane
