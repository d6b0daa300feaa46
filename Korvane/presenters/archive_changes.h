#pragma once

// Whether the archives of the game folders are still those that were read, and in words what has become of them. Looks
// at names, sizes and times alone; for a worker, for a disk may be slow.

#include "EASY_GUI/services/file_stamp.h"
#include "Korvane/archives/path_tree.h"

#include <map>
#include <stop_token>
#include <string>
#include <vector>

namespace korvane
{

using archive_stamps = std::map<std::string, file_stamp>; // by their paths

// The archives that stand in the data folders now.
[[nodiscard]] archive_stamps stampArchives(const std::vector<std::string>& folders, const std::stop_token& stop = {});

// How they were when they were read: what the tree holds of them counts. The damaged ones, which are not in it, as they
// stand there now.
[[nodiscard]] archive_stamps stampsAsRead(const path_tree& tree, archive_stamps now);

// "2 archives have changed, 1 is gone since they were read: a.pack, b.pack, c.pack"; empty: nothing has changed.
[[nodiscard]] std::string describeChanges(const archive_stamps& as_read, const archive_stamps& now);

} // namespace korvane
