#pragma once

// The existing file on the disk that somebody most likely meant whose internal path leads to none: a name, or a folder,
// that differs by a few characters, in the folders where loose_file.h looks. Folders are listed once. One thread.

#include <cstddef>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

class loose_neighbours
{
public:
    struct neighbour
    {
        std::string path; // internal; empty: nothing is near enough to be meant
        std::size_t distance = 0;
    };
    // wanted has the form of the archives (lower case, '\'), the extension is lower case, without the dot; around is
    // the path of the file that names it.
    [[nodiscard]] neighbour nearest(std::string_view wanted, std::string_view extension, const std::string& around);

private:
    struct listing
    {
        std::vector<std::string> folders; // names as the disk has them
        std::vector<std::string> files;
    };
    const listing& list(const std::filesystem::path& folder);
    neighbour below(const std::filesystem::path& start, const std::vector<std::string_view>& components,
                    std::string_view extension, bool may_begin_otherwise);

    std::map<std::filesystem::path, listing> m_listings;
};

} // namespace korvane
