#pragma once

// What the file services need of the operating system. One implementation per platform; used by file_system.cpp only.

#include <cstddef>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>

namespace korvane::platform
{

// Neither throws, whatever the text: a path may come out of a damaged file.
[[nodiscard]] std::filesystem::path pathFromUtf8(std::string_view text);
[[nodiscard]] std::string utf8FromPath(const std::filesystem::path& path);

[[nodiscard]] std::filesystem::path executablePath();
[[nodiscard]] unsigned long processId();

// Creates the file, writes all bytes and, where wanted, flushes them to the disk. False: reason says why; the file may
// be left over.
[[nodiscard]] bool writeNewFile(const std::filesystem::path& file, std::span<const std::byte> bytes, bool is_flushed,
                                std::string& reason);
// Renames source over target in one step. A target that is read-only is not replaced.
[[nodiscard]] bool replaceFile(const std::filesystem::path& source, const std::filesystem::path& target,
                               std::string& reason);

} // namespace korvane::platform
