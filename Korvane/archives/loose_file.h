#pragma once

// Internal paths on the disk: for a model or a definition that lies in a folder tree like the game's, or with its
// files beside it.

#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/memory_file.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace korvane
{

// Where the file of an internal path ('\' or '/', any case, blanks at its ends passed over) lies on the disk around
// another file, which need not exist; empty when nowhere. Tried in this order, without regard to case: the path below
// the other file's folder, below each folder that contains it, and the bare file name in its folder. A path that leaves
// these folders (a drive, a root, "..") finds nothing.
[[nodiscard]] std::string findLooseFile(std::string_view internal_path, const std::string& around);

// The same in one folder only, below it; empty when it is not there.
[[nodiscard]] std::string findFileBelow(const std::string& folder, std::string_view internal_path);

// Reads such a file whole; one with more bytes than the limit is refused before memory is taken for it. On failure
// bytes stays as it is.
[[nodiscard]] bool readLooseFile(const std::string& path, memory_file& bytes, failure& why, std::uint64_t limit);
// Fills target with its first bytes and gives how many there are.
[[nodiscard]] bool readLooseStart(const std::string& path, std::span<std::byte> target, std::size_t& count,
                                  failure& why);

} // namespace korvane
