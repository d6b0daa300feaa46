#include "Korvane/archives/internal_path.h"

#include "EASY_GUI/services/text.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace korvane
{

namespace
{

constexpr std::uint64_t ones = 0x0101010101010101u;
constexpr std::uint64_t separators = '\\' * ones;

std::uint64_t wordAt(const char* bytes)
{
    std::uint64_t word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

// The high bit of every byte that is zero (and perhaps of one above such a byte: enough to know whether there is any).
std::uint64_t zeroBytes(std::uint64_t word)
{
    return (word - ones) & ~word & (0x80u * ones);
}

} // namespace

std::string normalInternalPath(std::string_view spelled)
{
    constexpr std::string_view passed_over = " \t\r\n/\\"; // at the ends
    const std::size_t begin = spelled.find_first_not_of(passed_over);
    if (begin == std::string_view::npos)
        return {};
    std::string path = toLower(spelled.substr(begin, spelled.find_last_not_of(passed_over) + 1 - begin));
    std::replace(path.begin(), path.end(), '/', '\\');
    path.resize(dropEmptyComponents(path.data(), path.size()));
    return path;
}

std::string_view folderAround(std::string_view path)
{
    const std::size_t end = path.rfind('\\');
    return path.substr(0, end == std::string_view::npos ? 0 : end);
}

bool hasEmptyComponents(std::string_view path)
{
    if (path.empty() || path.front() == '\\' || path.back() == '\\')
        return true;
    // Eight neighbours at a time: a byte of the sum is zero where a separator follows a separator.
    std::size_t at = 1;
    for (; at + 8 <= path.size(); at += 8)
        if (zeroBytes((wordAt(path.data() + at) ^ separators) | (wordAt(path.data() + at - 1) ^ separators)) != 0)
            return true;
    for (; at < path.size(); ++at)
        if (path[at] == '\\' && path[at - 1] == '\\')
            return true;
    return false;
}

std::size_t dropEmptyComponents(char* path, std::size_t length)
{
    std::size_t kept = 0;
    for (std::size_t i = 0; i < length; ++i)
        if (path[i] != '\\' || (kept > 0 && path[kept - 1] != '\\'))
            path[kept++] = path[i];
    return kept > 0 && path[kept - 1] == '\\' ? kept - 1 : kept;
}

bool isOddlyStored(std::string_view path)
{
    constexpr std::string_view blanks = " \t\r\n";
    return path.find('/') != std::string_view::npos || path.find_first_of(blanks) == 0 ||
           path.find_last_of(blanks) == path.size() - 1;
}

} // namespace korvane
