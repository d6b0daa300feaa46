#pragma once

// Paths and whole-file writing. Inside the program a path is UTF-8 text; it becomes a std::filesystem::path only here,
// because std::filesystem::path("narrow") means different things on different systems.

#include "EASY_GUI/services/byte_source.h"
#include "EASY_GUI/services/failure.h"

#include <cstddef>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>

namespace korvane
{

[[nodiscard]] std::filesystem::path toPath(std::string_view utf8);
[[nodiscard]] std::string toUtf8(const std::filesystem::path& path);

// The folder of the running executable, with a trailing separator; UTF-8. Computed once.
[[nodiscard]] const std::string& executableFolder();

// The path itself when it exists; else the path of the entry whose components equal it without regard to ASCII case
// (configuration values are held in lower case, disks may be case-sensitive); nothing found: the path unchanged.
[[nodiscard]] std::string existingPathAnyCase(const std::string& path);

// Replaces the file at path by the bytes: written to a temporary file beside it, flushed to disk, then renamed over
// it. On failure what stood there before still stands and the temporary file is gone; so it is when the process is
// killed, and what then may be left after all (".korvane-PROCESS-NUMBER.tmp") goes with the next write into the folder.
// Devices and pipes are refused. Of a link the file that it leads to is written, also when it is not there yet. A
// replaceable file, one that can be made again and whose damage is noticed, is not flushed.
enum class write_safety
{
    flushed,
    replaceable
};
[[nodiscard]] bool writeWholeFile(const std::string& path, std::span<const std::byte> bytes, failure& why,
                                  write_safety safety = write_safety::flushed);
[[nodiscard]] bool writeWholeFile(const std::string& path, std::string_view bytes, failure& why);
// Piece by piece; where the source fails, its reason is why, and nothing is written.
[[nodiscard]] bool writeWholeFile(const std::string& path, const byte_source& bytes, failure& why,
                                  write_safety safety = write_safety::flushed);

} // namespace korvane
