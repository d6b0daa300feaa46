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
//
// All others are, also the thousands of an extraction: a new name is on the disk before its bytes are (ext4 allocates
// them later, NTFS keeps a journal of names only), so that after a power cut a file of no bytes, or of zeros, would
// stand under a real name, and be kept the next time as one that differs. Of 1,000 files of 20 kB 0.4 s were measured
// with flushing and 0.2 s without; flushing them on four threads, or a hundred with one call, took as long.
enum class write_safety
{
    flushed,
    replaceable
};
[[nodiscard]] bool writeWholeFile(const std::string& path, std::span<const std::byte> bytes, failure& why,
                                  write_safety safety = write_safety::flushed);
[[nodiscard]] bool writeWholeFile(const std::string& path, std::string_view bytes, failure& why);
// Whether the file could be written now, as far as that shows without writing it: folder, permissions, what stands
// there. Leaves nothing behind.
[[nodiscard]] bool canWriteWholeFile(const std::string& path, failure& why);
// Piece by piece; where the source fails, its reason is why, and nothing is written.
[[nodiscard]] bool writeWholeFile(const std::string& path, const byte_source& bytes, failure& why,
                                  write_safety safety = write_safety::flushed);

} // namespace korvane
