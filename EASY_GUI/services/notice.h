#pragma once

// What a person has to be told, from code that shows nothing itself: whoever called it shows a box, or prints.

#include <string>

namespace korvane
{

struct notice
{
    std::string title; // "Error!"
    std::string text;  // UTF-8
};

} // namespace korvane
