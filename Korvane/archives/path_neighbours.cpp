#include "Korvane/archives/path_neighbours.h"

#include "EASY_GUI/services/text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <limits>
#include <tuple>

namespace korvane
{

namespace
{

std::string_view stemOf(std::string_view path)
{
    const std::string_view name = fileName(path);
    return name.substr(0, name.find_last_of('.'));
}

std::string_view folderOf(std::string_view path)
{
    return path.substr(0, path.size() - fileName(path).size());
}

std::uint64_t lettersOf(std::string_view name)
{
    std::uint64_t letters = 0;
    for (const char character : name)
        letters |= std::uint64_t{1} << (static_cast<unsigned char>(character) & 63u);
    return letters;
}

std::size_t sharedStart(std::string_view left, std::string_view right)
{
    const auto ends = std::mismatch(left.begin(), left.end(), right.begin(), right.end());
    return static_cast<std::size_t>(ends.first - left.begin());
}

} // namespace

std::string_view stemMeant(std::string_view path, std::string_view extension)
{
    std::string_view name = fileName(path);
    const auto dropExtension = [&name](std::string_view ending) {
        const bool has_it = name.size() > ending.size() + 1 && endsWithIgnoringCase(name, ending) &&
                            name[name.size() - ending.size() - 1] == '.';
        if (has_it)
            name.remove_suffix(ending.size() + 1);
        return has_it;
    };
    const auto dropDots = [&name] {
        while (name.size() > 1 && (name.back() == '.' || name.back() == ' '))
            name.remove_suffix(1);
    };
    dropDots();
    bool has_extension = false;
    for (; dropExtension(extension); has_extension = true)
        dropDots();
    const std::size_t dot = name.find_last_of('.');
    if (has_extension || dot == name.npos)
        return name;
    const std::string_view other = name.substr(dot + 1);
    constexpr std::size_t usual_length = 4; // a longer one belongs to the name, or is the extension cut short
    if (other.size() <= usual_length || extension.starts_with(other))
        dropExtension(other);
    return name;
}

bool mayBeOneKind(std::string_view left, std::string_view right)
{
    constexpr std::string_view kinds[] = {
        "_diffuse",  "_base_colour", "_normal",   "_gloss_map",  "_gloss",
        "_specular", "_mask",        "_mask1",    "_mask2",      "_mask3",
        "_alpha",    "_dirt",        "_emissive", "_distortion", "_ambient_occlusion"};
    const auto kindOf = [&kinds](std::string_view name) {
        for (const std::string_view kind : kinds)
            if (endsWithIgnoringCase(name, kind))
                return kind;
        return std::string_view();
    };
    const std::string_view of_left = kindOf(left), of_right = kindOf(right);
    return of_left == of_right || of_left.empty() || of_right.empty();
}

path_neighbours::path_neighbours(const path_tree& tree, std::string_view extension) : m_extension(extension)
{
    for (const pack_file_node* file : tree.files())
        if (file->extension() == extension && stemOf(file->internalPath()).size() <= longest_compared_name)
        {
            const std::string_view name = stemOf(file->internalPath());
            m_candidates.push_back({name, file->internalPath(), lettersOf(name)});
        }
    std::stable_sort(m_candidates.begin(), m_candidates.end(),
                     [](const candidate& left, const candidate& right) { return left.name < right.name; });
}

path_neighbours::neighbour path_neighbours::nearest(std::string_view wanted) const
{
    const std::string_view name = stemMeant(wanted, m_extension);
    if (name.empty() || name.size() > longest_compared_name)
        return {};
    if (const std::string_view elsewhere = sameName(name, wanted); !elsewhere.empty())
        return {elsewhere, 0};

    const std::string_view folder = folderOf(wanted);
    const std::uint64_t letters = lettersOf(name);
    const std::size_t limit = std::max<std::size_t>(1, name.size() / 4);
    const std::size_t limit_in_folder = std::max<std::size_t>(1, name.size() / 3);
    // Of equally near ones the one in the same folder, then the one with the longest common start of the path.
    using rank = std::tuple<std::size_t, bool, std::size_t>;
    rank best_rank{std::numeric_limits<std::size_t>::max(), true, 0};
    std::string_view best;
    for (const candidate& each : m_candidates)
    {
        const bool is_beside = folderOf(each.path) == folder;
        const std::size_t allowed = std::min(is_beside ? limit_in_folder : limit, std::get<0>(best_rank));
        const std::size_t longer = std::max(each.name.size(), name.size()) - std::min(each.name.size(), name.size());
        if (longer > allowed || static_cast<std::size_t>(std::popcount(each.letters & ~letters)) > allowed)
            continue;
        const std::size_t distance = nameDistance(name, each.name, allowed);
        if (distance > allowed || !mayBeOneKind(name, each.name))
            continue;
        const rank its_rank{distance, !is_beside, wanted.size() - sharedStart(wanted, each.path)};
        if (its_rank < best_rank)
        {
            best_rank = its_rank;
            best = each.path;
        }
    }
    return {best, std::get<0>(best_rank)};
}

std::string_view path_neighbours::sameName(std::string_view name, std::string_view wanted) const
{
    const auto isBefore = [](const candidate& each, std::string_view value) { return each.name < value; };
    std::string_view best;
    std::size_t shared = 0;
    for (auto it = std::lower_bound(m_candidates.begin(), m_candidates.end(), name, isBefore);
         it != m_candidates.end() && it->name == name; ++it)
    {
        const std::size_t its_shared = sharedStart(it->path, wanted);
        if (best.empty() || its_shared > shared)
        {
            best = it->path;
            shared = its_shared;
        }
    }
    return best;
}

} // namespace korvane
