#pragma once

// What the file services need of the operating system. One implementation per platform; used by file_system.cpp only.

#include <cstddef>
#include <filesystem>
#include <functional>
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

// Gives the bytes of a new file, piece by piece; an empty one ends them. False: they cannot be had.
using next_piece = std::function<bool(std::span<const std::byte>& piece)>;

// Writes the bytes to a new file, flushed to the disk where wanted, and puts it in the target's place in one step. The
// file has no name while it is written, or bears the temporary one, which nobody has, and vanishes with this process,
// where the system can do that; else it may be left over when the process is killed. A target that is read-only is not
// replaced. False: reason says why, the target is what it was, and no temporary file remains.
[[nodiscard]] bool replaceWhole(const std::filesystem::path& target, const std::filesystem::path& temporary,
                                const next_piece& bytes, bool is_flushed, std::string& reason);
// Whether replaceWhole() could do it, but for the room on the disk. No file remains.
[[nodiscard]] bool canReplace(const std::filesystem::path& target, const std::filesystem::path& temporary,
                              std::string& reason);
// Deletes a temporary file that a killed process has left; one that is being written stays.
void removeAbandoned(const std::filesystem::path& temporary);

} // namespace korvane::platform
