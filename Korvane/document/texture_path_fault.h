#pragma once

// What is wrong with the spelling of a texture's path, before anybody looks whether the file exists.

#include <string>
#include <string_view>

namespace korvane
{

struct texture_path_fault
{
    std::string text;      // one sentence about the path, quoted in it; empty: nothing is wrong
    bool is_fatal = false; // no lookup by this path can find anything
};

[[nodiscard]] texture_path_fault texturePathFault(std::string_view path);

} // namespace korvane
