#include "Korvane/archives/path_pattern.h"

#include "EASY_GUI/services/text.h"

#include <algorithm>

namespace korvane
{

namespace
{

// "con", "nul.txt", "com1": names that Windows gives to devices, whatever the extension.
bool isDeviceName(std::string_view component)
{
    const std::string stem = toLower(component.substr(0, component.find_first_of(". ")));
    if (stem == "con" || stem == "prn" || stem == "aux" || stem == "nul" || stem == "conin$" || stem == "conout$")
        return true;
    if (!stem.starts_with("com") && !stem.starts_with("lpt"))
        return false;
    const std::string_view number = std::string_view(stem).substr(3); // raised digits count as well
    return (number.size() == 1 && number[0] >= '0' && number[0] <= '9') || number == "\xc2\xb9" ||
           number == "\xc2\xb2" || number == "\xc2\xb3" || number == "\xb9" || number == "\xb2" || number == "\xb3";
}

std::string badComponent(std::string_view component)
{
    if (component == "." || component == "..")
        return "a folder or file is called \"" + std::string(component) + "\"";
    if (component.back() == '.' || component.back() == ' ')
        return "the name of a folder or file ends in a dot or a blank";
    const bool has_odd = std::any_of(component.begin(), component.end(), [](char character) {
        return static_cast<unsigned char>(character) < 0x20 ||
               std::string_view("<>:\"|?*").find(character) != std::string_view::npos;
    });
    if (has_odd)
        return "it has a character that no file name may have";
    if (isDeviceName(component))
        return "Windows keeps the name \"" + std::string(component) + "\" for a device";
    return {};
}

} // namespace

bool matchesPattern(std::string_view path, std::string_view pattern)
{
    std::size_t at = 0, in_pattern = 0;
    std::size_t star = std::string_view::npos, resume = 0;
    while (at < path.size())
    {
        const bool has_more = in_pattern < pattern.size();
        if (has_more && pattern[in_pattern] == '*')
        {
            star = in_pattern++;
            resume = at;
        }
        else if (has_more &&
                 (pattern[in_pattern] == '?' || foldedCharacter(pattern[in_pattern]) == foldedCharacter(path[at])))
        {
            ++in_pattern;
            ++at;
        }
        else if (star != std::string_view::npos) // the last star takes one character more
        {
            in_pattern = star + 1;
            at = ++resume;
        }
        else
            return false;
    }
    return pattern.find_first_not_of('*', in_pattern) == std::string_view::npos;
}

std::optional<std::string> relativeDiskPath(std::string_view internal_path, std::string& reason)
{
    std::string path;
    for (std::size_t begin = 0; begin <= internal_path.size();)
    {
        const std::size_t end = std::min(internal_path.find_first_of("\\/", begin), internal_path.size());
        const std::string_view component = internal_path.substr(begin, end - begin);
        begin = end + 1;
        if (component.empty())
            continue;
        reason = badComponent(component);
        if (!reason.empty())
            return std::nullopt;
        if (!path.empty())
            path += '/';
        path += component;
    }
    if (path.empty())
    {
        reason = "the path is empty";
        return std::nullopt;
    }
    return path;
}

} // namespace korvane
