#include "Korvane/document/known_files.h"

#include "EASY_GUI/services/positioned_file.h"
#include "EASY_GUI/services/silent_prompt.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/animation/anim_file.h"
#include "Korvane/animation/anim_search.h"
#include "Korvane/archives/entry_start.h"
#include "Korvane/archives/loose_file.h"
#include "Korvane/archives/pack_entry.h"
#include "Korvane/archives/variant_mesh_def.h"

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
    if (m_po_tree)
        if (const path_node* const node = m_po_tree->find(internal_path); node && node->file())
        {
            std::size_t count = 0;
            const bool is_read = readEntryStart(*node->file(), start, count, why);
            return {true, isDdsStart(std::span(start).first(is_read ? count : 0)), is_read};
        }
    const std::string path = around.empty() ? std::string() : findLooseFile(internal_path, around);
    if (path.empty())
        return {};
    positioned_file file;
    const bool is_read = file.open(path, why);
    return {true, is_read && file.readAt(0, start) && isDdsStart(start), is_read};
}

const known_files::skeleton_answer& known_files::skeleton(const std::string& id)
{
    const auto [row, is_new] = m_skeletons.try_emplace(id);
    if (is_new)
        row->second = lookUpSkeleton(id);
    return row->second;
}

known_files::skeleton_answer known_files::lookUpSkeleton(const std::string& id) const
{
    skeleton_answer answer;
    const entry_list entries = m_po_tree ? findSkeletons(*m_po_tree, id) : entry_list();
    if (entries.empty())
        return answer;
    answer.path = std::string(entries.front()->internalPath());
    silent_prompt prompt;
    anim_file skeleton(prompt);
    memory_file bytes;
    failure why;
    if (readEntry(*entries.front(), bytes, why))
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

bool known_files::isInArchives(std::string_view internal_path) const
{
    const path_node* const node = m_po_tree ? m_po_tree->find(internal_path) : nullptr;
    return node && node->file();
}

std::string known_files::nearest(std::string_view internal_path)
{
    if (!m_po_tree)
        return {};
    const std::string wanted = normalInternalPath(internal_path);
    const auto [row, is_new] = m_nearest.try_emplace(wanted);
    if (is_new)
    {
        const std::string_view name = fileName(wanted);
        const std::size_t dot = name.find_last_of('.');
        const std::string extension(dot == name.npos ? std::string_view() : name.substr(dot + 1));
        const auto neighbours = m_neighbours.try_emplace(extension, *m_po_tree, extension).first;
        row->second = std::string(neighbours->second.nearest(wanted));
    }
    return row->second;
}

} // namespace korvane
