#pragma once

// Patterns over internal paths, and internal paths as paths on disk.

#include <optional>
#include <string>
#include <string_view>

namespace korvane
{

// '*' stands for any characters, separators included, '?' for one; without regard to ASCII case, and '/' equals '\'.
[[nodiscard]] bool matchesPattern(std::string_view path, std::string_view pattern);

// The internal path as a relative path on disk, with '/' between its folders. Nothing, and the reason, when it could
// leave the folder below which it is meant, or could not be a file on Windows: "..", drive letters, reserved device
// names, characters that no file name holds.
[[nodiscard]] std::optional<std::string> relativeDiskPath(std::string_view internal_path, std::string& reason);

} // namespace korvane
