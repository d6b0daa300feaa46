#include "Korvane/document/texture_path_fault.h"

#include "EASY_GUI/services/text.h"

#include <algorithm>

namespace korvane
{

namespace
{

bool isSeparator(char character)
{
    return character == '/' || character == '\\';
}

bool hasControlCharacter(std::string_view path)
{
    return std::any_of(path.begin(), path.end(), [](char character) {
        return static_cast<unsigned char>(character) < 0x20 || character == 0x7f;
    });
}

bool hasDots(std::string_view path)
{
    for (std::size_t start = 0; start <= path.size();)
    {
        const std::size_t end = std::min(path.find_first_of("/\\", start), path.size());
        const std::string_view component = path.substr(start, end - start);
        if (component == "." || component == "..")
            return true;
        start = end + 1;
    }
    return false;
}

bool hasDoubledSeparator(std::string_view path)
{
    return std::adjacent_find(path.begin(), path.end(), [](char left, char right) {
               return isSeparator(left) && isSeparator(right);
           }) != path.end();
}

// The first folder below the games' data folder is where internal paths begin.
bool beginsWithDataFolder(std::string_view path)
{
    return path.size() > 5 && equalsIgnoringCase(path.substr(0, 4), "data") && isSeparator(path[4]);
}

} // namespace

texture_path_fault texturePathFault(std::string_view path)
{
    if (path.empty())
        return {};
    const std::string quoted = "\"" + displayText(path) + "\"";
    if (path.size() > 1 && path[1] == ':')
        return {quoted + " is a path on somebody's disk; the game looks inside its archives only", true};
    if (isSeparator(path.front()))
        return {quoted + " begins with a separator; internal paths begin with a folder's name", false};
    if (hasDots(path))
        return {quoted + " has a component \".\" or \"..\", which internal paths do not know", true};
    if (hasControlCharacter(path))
        return {quoted + " holds a control character", true};
    if (path.front() == ' ')
        return {quoted + " begins with a blank", true};
    if (path.back() == ' ')
        return {quoted + " ends with a blank", true};
    if (beginsWithDataFolder(path))
        return {quoted + " begins with the data folder; internal paths begin below it", true};
    if (isSeparator(path.back()))
        return {quoted + " is a folder, not a file", true};
    if (hasDoubledSeparator(path))
        return {quoted + " has two separators in a row", false};
    if (path.find('/') != path.npos && path.find('\\') != path.npos)
        return {quoted + " mixes both separators", false};
    return {};
}

} // namespace korvane
