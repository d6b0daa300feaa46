#pragma once

// The skeletons of an id in the archives.

#include "Korvane/archives/path_tree.h"

#include <string_view>
#include <vector>

namespace korvane
{

using entry_list = std::vector<const pack_file_node*>; // valid as long as the tree

// The entries of all archives whose internal path ends with "skeletons\ID.anim", in any case, in the order in which
// they were entered. The first one is the one to load until somebody picks another.
[[nodiscard]] entry_list skeletonEntries(const path_tree& tree, std::string_view skeleton_id);

} // namespace korvane
