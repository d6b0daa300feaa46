#pragma once

// Paths as a person gives them: of a file on the disk, or with the prefix "pack:" an internal path that is looked up in
// the archives, as in pack:animations/skeletons/humanoid01.anim.

#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/memory_file.h"

#include <string>
#include <string_view>

namespace korvane
{

[[nodiscard]] bool isPackPath(std::string_view path);
// What stands behind the prefix; the path itself without one.
[[nodiscard]] std::string_view internalPathOf(std::string_view path);

// Reads the file whole, from the disk or out of the archives that are loaded (pack_file::sm_poPathTree).
[[nodiscard]] bool readGameFile(const std::string& path, memory_file& bytes, failure& why);

} // namespace korvane
