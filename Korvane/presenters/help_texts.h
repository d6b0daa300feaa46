#pragma once

// The texts of the Help menu: what the program is, whose code it uses. Texts are UTF-8.

#include <string>
#include <vector>

namespace korvane
{

struct help_paragraph
{
    std::string heading;
    std::string text; // "\n" ends a line
};

[[nodiscard]] std::vector<help_paragraph> legalTexts(); // about FBX
[[nodiscard]] std::string aboutText();                  // lines end in "\r\n"

} // namespace korvane
