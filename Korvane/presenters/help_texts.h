#pragma once

// The texts of the Help menu: how the usual things are done, what the program is, whose code it uses. Texts are UTF-8.

#include <string>
#include <vector>

namespace korvane
{

struct help_paragraph
{
    std::string heading;
    std::string text; // "\n" ends a line
};

// With the shortcuts of the command table at its end.
[[nodiscard]] std::vector<help_paragraph> guideTexts();
[[nodiscard]] std::vector<help_paragraph> legalTexts(); // about FBX
[[nodiscard]] std::string aboutText();                  // lines end in "\r\n"

} // namespace korvane
