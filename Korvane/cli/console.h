#pragma once

// What differs between consoles: arguments in UTF-8, byte-exact standard output, terminal or not.

#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

namespace korvane::console
{

// Called first thing in main: standard output carries bytes without line end translation.
void prepare();
// The arguments without the program's name, UTF-8.
[[nodiscard]] std::vector<std::string> arguments(int count, char** values);
// Writes a text to standard error at once, in one piece.
void error(const std::string& text);
[[nodiscard]] bool isTerminal(std::FILE* stream);
// Of a terminal; 80 where it does not say.
[[nodiscard]] std::size_t columns(std::FILE* stream);

} // namespace korvane::console
