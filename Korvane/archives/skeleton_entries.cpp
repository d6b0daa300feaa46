#include "Korvane/archives/skeleton_entries.h"

#include "EASY_GUI/services/text.h"

#include <string>

namespace korvane
{

entry_list skeletonEntries(const path_tree& tree, std::string_view skeleton_id)
{
    const std::string ending = toLower("skeletons\\" + std::string(skeleton_id) + ".anim"); // as paths are spelled
    entry_list found;
    for (const std::span<const pack_file_node>& entries : tree.entries())
        for (const pack_file_node& entry : entries)
            if (entry.internalPath().ends_with(ending))
                found.push_back(&entry);
    return found;
}

} // namespace korvane
