#pragma once

// Where a job writes: a file, or files in a folder.

#include "EASY_GUI/services/failure.h"

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace korvane
{

// True when a path means a folder: there is one, or it ends in a separator.
[[nodiscard]] bool isFolder(const std::string& path);
[[nodiscard]] bool createFolder(const std::string& path, failure& why); // with those above it

// False, with the reason, when the output would replace a file that it is made of.
[[nodiscard]] bool isFreeToWrite(const std::vector<std::string>& inputs, const std::string& output, failure& why);

// Writes the file as a whole, unless it stands there with other bytes and may not be written over: then it is left, and
// is_kept says so. One with the same bytes is not touched.
[[nodiscard]] bool writeOutput(const std::string& path, std::span<const std::byte> bytes, bool overwrites,
                               bool& is_kept, failure& why);
// What is to be said of such a file.
[[nodiscard]] failure keptFailure(const std::string& path);

} // namespace korvane
