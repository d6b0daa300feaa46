#include "Korvane/game/usage_index.h"

#include "EASY_GUI/services/parallel.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/internal_path.h"
#include "Korvane/game/usage_section.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace korvane
{

namespace
{

using section = usage_index::section;

constexpr std::size_t files_a_round = 2048; // between two looks at the Stop button

struct read_file
{
    const pack_file_node* file = nullptr;
    std::vector<file_use> uses;
    std::string damage;
};

struct archive_files
{
    const archive_record* archive = nullptr;
    std::vector<read_file> files;
};

bool isOf(const section& made, const archive_record& archive)
{
    return !archive.is_folder && made.archive_path == archive.path && made.archive_size == archive.file.size() &&
           made.archive_time == archive.file.modificationTime();
}

section::text_place addText(section& made, std::string_view text)
{
    made.text += text;
    return {static_cast<std::uint32_t>(made.text.size() - text.size()), static_cast<std::uint32_t>(text.size())};
}

std::shared_ptr<const section> sectionOf(const archive_files& read)
{
    auto made = std::make_shared<section>();
    made->archive_path = read.archive->path;
    if (!read.archive->is_folder)
    {
        made->archive_size = read.archive->file.size();
        made->archive_time = read.archive->file.modificationTime();
    }
    struct named
    {
        const file_use* use;
        std::uint32_t user;
    };
    std::vector<named> all;
    for (const read_file& each : read.files)
    {
        const auto user = static_cast<std::uint32_t>(made->users.size());
        made->users.push_back(addText(*made, each.file->internalPath()));
        if (!each.damage.empty())
            made->damaged.push_back(each.damage);
        for (const file_use& use : each.uses)
            all.push_back({&use, user});
    }
    std::sort(all.begin(), all.end(), [](const named& left, const named& right) {
        return std::tie(left.use->path, left.user, *left.use) < std::tie(right.use->path, right.user, *right.use);
    });
    for (std::size_t i = 0; i < all.size(); ++i)
    {
        if (i == 0 || all[i].use->path != all[i - 1].use->path)
            made->names.push_back({addText(*made, all[i].use->path), static_cast<std::uint32_t>(i)});
        made->uses.push_back({all[i].user, all[i].use->texture_type, all[i].use->kind});
    }
    return made;
}

// The id of a skeleton's file; empty for other files.
std::string_view skeletonId(std::string_view path)
{
    constexpr std::string_view folder = "skeletons\\", ending = ".anim";
    const std::size_t at = path.rfind('\\') + 1; // 0 without one
    const bool is_skeleton = path.substr(0, at).ends_with(folder) && path.ends_with(ending);
    return is_skeleton ? path.substr(at, path.size() - at - ending.size()) : std::string_view();
}

} // namespace

std::span<const section::use> section::usesOf(std::string_view path) const
{
    const auto found =
        std::lower_bound(names.begin(), names.end(), path,
                         [this](const name& left, std::string_view right) { return textAt(left.path) < right; });
    if (found == names.end() || textAt(found->path) != path)
        return {};
    const std::size_t end = found + 1 == names.end() ? uses.size() : (found + 1)->first_use;
    return std::span(uses).subspan(found->first_use, end - found->first_use);
}

std::vector<file_user> usage_index::usersOf(const game_data& game, std::string_view internal_path) const
{
    std::vector<file_user> found;
    if (!game.archives())
        return found;
    const path_tree& tree = *game.archives();
    const std::string path = normalInternalPath(internal_path);
    const auto add = [&](const section& from, const std::string& wanted, bool is_skeleton) {
        for (const section::use& use : from.usesOf(wanted))
        {
            if ((use.kind == use_kind::skeleton) != is_skeleton)
                continue;
            const path_node* const node = tree.findStored(from.textAt(from.users[use.user]));
            if (node != nullptr && node->file() != nullptr && node->file()->packPath() == from.archive_path)
                found.push_back({node->file(), {use.kind, use.texture_type, wanted}});
        }
    };
    const std::string id(skeletonId(path));
    const bool is_skeleton = !id.empty() && game.findSkeleton(id, {}).path() == path;
    for (const std::shared_ptr<const section>& each : m_sections)
    {
        add(*each, path, false);
        if (is_skeleton)
            add(*each, id, true);
    }
    std::sort(found.begin(), found.end(), [](const file_user& left, const file_user& right) {
        return std::pair(left.user->internalPath(), left.as) < std::pair(right.user->internalPath(), right.as);
    });
    return found;
}

bool usage_index::isOtherThan(const usage_index& other) const
{
    const auto isKept = [](const auto& each) { return each->archive_size != 0; };
    const auto count = [&](const usage_index& of) {
        return std::count_if(of.m_sections.begin(), of.m_sections.end(), isKept);
    };
    return count(*this) != count(other) || !std::all_of(m_sections.begin(), m_sections.end(), [&](const auto& each) {
               return !isKept(each) ||
                      std::find(other.m_sections.begin(), other.m_sections.end(), each) != other.m_sections.end();
           });
}

std::size_t usage_index::fileCount() const
{
    std::size_t count = 0;
    for (const std::shared_ptr<const section>& each : m_sections)
        count += each->users.size();
    return count;
}

std::size_t usage_index::unknownArchives(const game_data& game) const
{
    if (!game.archives())
        return 0;
    const auto& archives = game.archives()->archives();
    return static_cast<std::size_t>(std::count_if(archives.begin(), archives.end(), [this](const auto& archive) {
        return !archive->is_folder && std::none_of(m_sections.begin(), m_sections.end(),
                                                   [&](const auto& each) { return isOf(*each, *archive); });
    }));
}

std::vector<std::string> usage_index::damaged() const
{
    std::vector<std::string> lines;
    for (const std::shared_ptr<const section>& each : m_sections)
        lines.insert(lines.end(), each->damaged.begin(), each->damaged.end());
    return lines;
}

usage_index indexUsage(const game_data& game, const usage_index& former, const work_port& work, bool& is_whole)
{
    usage_index index;
    is_whole = true;
    if (!game.archives())
        return index;
    const path_tree& tree = *game.archives();
    std::vector<archive_files> to_read;
    std::vector<std::pair<std::size_t, std::size_t>> order; // archive, file
    for (std::size_t i = 0; i < tree.archives().size(); ++i)
    {
        const archive_record& archive = *tree.archives()[i];
        const auto known = std::find_if(former.m_sections.begin(), former.m_sections.end(),
                                        [&](const auto& each) { return isOf(*each, archive); });
        if (known != former.m_sections.end())
        {
            index.m_sections.push_back(*known);
            continue;
        }
        archive_files& read = to_read.emplace_back();
        read.archive = &archive;
        for (const pack_file_node& file : tree.entries()[i])
            if (namesOtherFiles(file.internalPath()))
            {
                order.emplace_back(to_read.size() - 1, read.files.size());
                read.files.push_back({&file, {}, {}});
            }
    }
    for (std::size_t begin = 0; begin < order.size() && is_whole; begin += files_a_round)
    {
        work.report(begin, order.size(), "models and definitions");
        const std::size_t count = std::min(files_a_round, order.size() - begin);
        parallelForWith<use_reader>(count, threadsFor(count / 64), 16, [&](use_reader& reader, std::size_t i) {
            const auto [archive, number] = order[begin + i];
            read_file& file = to_read[archive].files[number];
            failure why;
            if (!reader.read(*file.file, file.uses, why))
                file.damage = displayText(describe(why));
        });
        is_whole = !work.isStopped();
    }
    if (!is_whole)
        return {};
    for (const archive_files& each : to_read)
        if (!each.files.empty() || !each.archive->is_folder)
            index.m_sections.push_back(sectionOf(each));
    work.report(order.size(), order.size());
    return index;
}

} // namespace korvane
