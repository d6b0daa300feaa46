#include "Korvane/archives/loose_neighbours.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/path_neighbours.h"

#include <algorithm>
#include <system_error>

namespace korvane
{

namespace
{

// The parts between the separators; empty for a path that might lead out of a folder.
std::vector<std::string_view> componentsOf(std::string_view path)
{
    std::vector<std::string_view> components;
    for (std::size_t start = 0; start <= path.size();)
    {
        const std::size_t end = std::min(path.find('\\', start), path.size());
        components.push_back(path.substr(start, end - start));
        if (components.back().empty() || components.back() == "." || components.back() == ".." ||
            components.back().find(':') != std::string_view::npos)
            return {};
        start = end + 1;
    }
    return components;
}

// Of some names the one that is nearest to a wanted one; null when none is near enough.
const std::string* nearestName(const std::vector<std::string>& names, std::string_view wanted, std::string_view ending,
                               std::size_t& distance)
{
    const std::string* best = nullptr;
    constexpr std::size_t few_letters = 3; // among so few files more would be another one
    distance = std::clamp<std::size_t>(wanted.size() / 3, 1, few_letters);
    for (const std::string& name : names)
    {
        if (!endsWithIgnoringCase(name, ending))
            continue;
        const std::string stem = toLower(std::string_view(name).substr(0, name.size() - ending.size()));
        const std::size_t its = nameDistance(wanted, stem, distance);
        if (mayBeOneKind(wanted, stem) && (its < distance || (its == distance && !best)))
        {
            best = &name;
            distance = its;
        }
    }
    return best;
}

} // namespace

loose_neighbours::neighbour loose_neighbours::nearest(std::string_view wanted, std::string_view extension,
                                                      const std::string& around)
{
    const std::vector<std::string_view> components = componentsOf(wanted);
    std::error_code error;
    const std::filesystem::path own = std::filesystem::absolute(toPath(around), error).parent_path();
    if (error || components.empty())
        return {};
    neighbour best;
    const auto take = [&best](neighbour found) {
        if (!found.path.empty() && (best.path.empty() || found.distance < best.distance))
            best = std::move(found);
    };
    for (std::filesystem::path folder = own;; folder = folder.parent_path())
    {
        take(below(folder, components, extension, folder == own));
        if (!folder.has_relative_path())
            break;
    }
    // Beside the model a file is found by its bare name, whatever folder the path says.
    if (components.size() > 1)
        if (neighbour beside = below(own, {components.back()}, extension, false); !beside.path.empty())
        {
            beside.path.insert(0, wanted.substr(0, wanted.size() - components.back().size()));
            take(std::move(beside));
        }
    return best;
}

// may_begin_otherwise: also the first folder may be misspelt. Where that were allowed in each folder above the model's,
// things would be found that have nothing to do with it.
loose_neighbours::neighbour loose_neighbours::below(const std::filesystem::path& start,
                                                    const std::vector<std::string_view>& components,
                                                    std::string_view extension, bool may_begin_otherwise)
{
    neighbour found;
    std::filesystem::path folder = start;
    for (std::size_t i = 0; i + 1 < components.size(); ++i)
    {
        std::size_t distance = 0;
        const std::string* const next = nearestName(list(folder).folders, components[i], {}, distance);
        if (!next || (i == 0 && distance > 0 && !may_begin_otherwise))
            return {};
        found.distance += distance;
        found.path += toLower(*next) + '\\';
        folder /= toPath(*next);
    }
    std::size_t distance = 0;
    const std::string_view stem = stemMeant(components.back(), extension);
    const std::string* const name = nearestName(list(folder).files, stem, '.' + std::string(extension), distance);
    if (!name)
        return {};
    found.distance += distance;
    found.path += toLower(*name);
    return found;
}

const loose_neighbours::listing& loose_neighbours::list(const std::filesystem::path& folder)
{
    const auto [row, is_new] = m_listings.try_emplace(folder);
    if (!is_new)
        return row->second;
    std::error_code error;
    auto entry = std::filesystem::directory_iterator(folder, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error))
    {
        std::error_code ignored;
        const bool is_folder = entry->is_directory(ignored);
        (is_folder ? row->second.folders : row->second.files).push_back(toUtf8(entry->path().filename()));
    }
    std::sort(row->second.folders.begin(), row->second.folders.end()); // the same answer on every system
    std::sort(row->second.files.begin(), row->second.files.end());
    return row->second;
}

} // namespace korvane
