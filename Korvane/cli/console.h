#pragma once

// What differs between consoles: arguments in UTF-8, byte-exact standard output, terminal or not.

#include <cstdio>
#include <string>
#include <vector>

namespace korvane::console
{

// Called first thing in main: standard output carries bytes without line end translation.
void prepare();
// The arguments without the program's name, UTF-8.
[[nodiscard]] std::vector<std::string> arguments(int count, char** values);
[[nodiscard]] bool isTerminal(std::FILE* stream);

} // namespace korvane::console
