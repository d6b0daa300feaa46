#pragma once

// A folder of files as a person works on them, entered into a tree as an archive of its own: what lies below it, by its
// path there, stands before everything that was entered earlier. Its entries hold no bytes: they are read from the disk
// when somebody asks, so that a file that was painted over meanwhile is read as it is now.

#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/work_port.h"
#include "Korvane/archives/path_tree.h"

#include <string>

namespace korvane
{

// Enters all files below a folder, in the order of their paths. Links to folders are not followed, folders in it that
// may not be read are passed over; a file whose path or size is more than an archive can hold is named in the log and
// left out. False, with the reason, when the folder cannot be read (then nothing is entered); a stop is no failure and
// enters nothing.
[[nodiscard]] bool enterModFolder(path_tree& tree, const std::string& folder, const work_port& work, failure& why);

// Where the file of such an entry lies now; empty when it is gone.
[[nodiscard]] std::string diskPathOf(const pack_file_node& entry);

} // namespace korvane
