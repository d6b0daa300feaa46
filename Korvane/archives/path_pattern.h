#pragma once

// Patterns over internal paths, and internal paths as paths on disk.

#include "Korvane/archives/internal_path.h"

#include <optional>
#include <string>
#include <string_view>

namespace korvane
{

// '*' stands for any characters, separators included, '?' for one; without regard to ASCII case, and '/' equals '\'.
[[nodiscard]] bool matchesPattern(std::string_view path, std::string_view pattern);

// A pattern over internal paths as a person spells it: as it is, and without separators and blanks at its ends and with
// none of its components empty, as look-ups take a path.
class internal_pattern
{
public:
    explicit internal_pattern(std::string_view given) : m_given(given), m_normal(normalInternalPath(given)) {}

    bool matches(std::string_view path) const
    {
        return matchesPattern(path, m_normal) || matchesPattern(path, m_given);
    }
    const std::string& normal() const { return m_normal; }

private:
    std::string m_given, m_normal;
};

// The internal path as a relative path on disk, with '/' between its folders. Nothing, and the reason, when it could
// leave the folder below which it is meant, or could not be a file on Windows: "..", drive letters, reserved device
// names, characters that no file name holds.
[[nodiscard]] std::optional<std::string> relativeDiskPath(std::string_view internal_path, std::string& reason);

} // namespace korvane
