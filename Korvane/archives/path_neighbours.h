#pragma once

// The existing path that somebody most likely meant who named one that does not exist: the same file name in another
// folder, or a name that differs by a few characters. Looks at all files of a tree with one extension, which are put in
// order once. The tree lives as long as this does; afterwards it is only read, from any thread.

#include "Korvane/archives/path_tree.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace korvane
{

class path_neighbours
{
public:
    path_neighbours(const path_tree& tree, std::string_view extension); // without the dot, lower case

    // wanted has the form of the archives (lower case, '\'). Empty when nothing is near enough to be meant: names may
    // differ by a quarter of their characters, or by a third inside the same folder.
    [[nodiscard]] std::string_view nearest(std::string_view wanted) const;

private:
    struct candidate
    {
        std::string_view name; // of the file, without folder and extension
        std::string_view path;
        std::uint64_t letters; // which characters the name has: tells unlike names apart without comparing them
    };

    std::string_view sameName(std::string_view name, std::string_view wanted) const;

    std::vector<candidate> m_candidates; // by name, then path
};

} // namespace korvane
