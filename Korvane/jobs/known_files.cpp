#include "Korvane/jobs/known_files.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/animation/anim_file.h"
#include "Korvane/archives/internal_path.h"

#include <array>
#include <cstring>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::string_view dds_magic = "DDS ";

// "C:\mod\a.model" and "C:/mod/b.model" have the same surroundings.
std::string_view folderOf(std::string_view path)
{
    return path.substr(0, path.size() - fileName(path).size());
}

bool isDdsStart(std::span<const std::byte> start)
{
    return start.size() == dds_magic.size() && std::memcmp(start.data(), dds_magic.data(), start.size()) == 0;
}

} // namespace

const known_files::texture_answer& known_files::texture(const std::string& internal_path, const std::string& around)
{
    std::string key(folderOf(around));
    (key += '\n') += internal_path;
    const auto [row, is_new] = m_textures.try_emplace(std::move(key));
    if (is_new)
        row->second = lookUpTexture(internal_path, around);
    return row->second;
}

known_files::texture_answer known_files::lookUpTexture(const std::string& internal_path,
                                                       const std::string& around) const
{
    std::array<std::byte, dds_magic.size()> start{};
    failure why;
    const game_file found = m_game.findAround(internal_path, around);
    if (!found)
        return {};
    std::size_t count = 0;
    const bool is_read = found.readStart(start, count, why);
    return {true, isDdsStart(std::span(start).first(is_read ? count : 0)), is_read};
}

const known_files::skeleton_answer& known_files::skeleton(const std::string& id, const std::string& around)
{
    std::string key(hasArchives() ? std::string_view() : folderOf(around));
    (key += '\n') += id;
    const auto [row, is_new] = m_skeletons.try_emplace(std::move(key));
    if (is_new)
        row->second = lookUpSkeleton(id, around);
    return row->second;
}

known_files::skeleton_answer known_files::lookUpSkeleton(const std::string& id, const std::string& around) const
{
    skeleton_answer answer;
    memory_file bytes;
    failure why;
    const game_file found = m_game.findSkeleton(id, around);
    if (!found)
        return answer;
    answer.path = found.path();
    anim_file skeleton;
    if (found.read(bytes, why))
    {
        skeleton.openFromMemory(std::move(bytes), answer.path);
        if (skeleton.loadSkeleton({}, why))
            answer.bone_count = skeleton.data().bones.size();
    }
    if (answer.bone_count == 0)
    {
        why.path.clear();
        answer.problem = why ? describe(why) : "it has no bones";
    }
    return answer;
}

std::string known_files::nearest(std::string_view internal_path, const std::string& extension,
                                 const std::string& around)
{
    const std::string wanted = normalInternalPath(internal_path);
    const auto [row, is_new] = m_nearest.try_emplace(wanted + '\n' + extension + '\n' + std::string(folderOf(around)));
    if (!is_new)
        return row->second;
    path_neighbours::neighbour in_archives;
    if (hasArchives())
        in_archives = m_neighbours.try_emplace(extension, *m_game.archives(), extension).first->second.nearest(wanted);
    loose_neighbours::neighbour on_disk;
    if (!around.empty())
        on_disk = m_loose_neighbours.nearest(wanted, extension, around);
    const bool is_on_disk =
        !on_disk.path.empty() && (in_archives.path.empty() || on_disk.distance < in_archives.distance);
    row->second = is_on_disk ? on_disk.path : std::string(in_archives.path);
    return row->second;
}

} // namespace korvane
