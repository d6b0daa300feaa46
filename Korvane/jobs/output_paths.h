#pragma once

// Where a job writes: a file, or files in a folder.

#include "EASY_GUI/services/failure.h"

#include <string>
#include <vector>

namespace korvane
{

// True when a path means a folder: there is one, or it ends in a separator.
[[nodiscard]] bool isFolder(const std::string& path);
[[nodiscard]] bool createFolder(const std::string& path, failure& why); // with those above it

// False, with the reason, when the output would replace a file that it is made of.
[[nodiscard]] bool isFreeToWrite(const std::vector<std::string>& inputs, const std::string& output, failure& why);

} // namespace korvane
