#pragma once

// The border between UTF-8 (everywhere in the program) and UTF-16 (Windows functions). Text crosses it here only.

#include <string>
#include <string_view>

namespace korvane
{

[[nodiscard]] std::wstring toWide(std::string_view utf8);   // malformed bytes become U+FFFD
[[nodiscard]] std::string fromWide(std::wstring_view wide); // unpaired surrogates become U+FFFD

} // namespace korvane
