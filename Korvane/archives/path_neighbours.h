#pragma once

// The existing path that somebody most likely meant who named one that does not exist: the same file name in another
// folder, or a name that differs by a few characters. Looks at all files of a tree with one extension, which are put in
// order once. The tree lives as long as this does; afterwards it is only read, from any thread.

#include "Korvane/archives/path_tree.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

// Of a path that should end in an extension (without its dot) the file's name without it: as it is, doubled, with a dot
// behind it, or another one instead.
[[nodiscard]] std::string_view stemMeant(std::string_view path, std::string_view extension);

// False for the names of two textures that show different things of one surface ("shield_diffuse", "shield_normal"):
// the one is never meant by the other. A name that says nothing known goes with any.
[[nodiscard]] bool mayBeOneKind(std::string_view left, std::string_view right);

class path_neighbours
{
public:
    path_neighbours(const path_tree& tree, std::string_view extension); // without the dot, lower case

    struct neighbour
    {
        std::string_view path;    // empty: nothing is near enough to be meant
        std::size_t distance = 0; // of the names; 0: the same in another folder
    };
    // wanted has the form of the archives (lower case, '\'). Names may differ by a quarter of their characters, or by a
    // third inside the same folder; what stands in the place of the extension does not count.
    [[nodiscard]] neighbour nearest(std::string_view wanted) const;

private:
    struct candidate
    {
        std::string_view name; // of the file, without folder and extension
        std::string_view path;
        std::uint64_t letters; // which characters the name has: tells unlike names apart without comparing them
    };

    std::string_view sameName(std::string_view name, std::string_view wanted) const;

    std::string m_extension;
    std::vector<candidate> m_candidates; // by name, then path
};

} // namespace korvane
