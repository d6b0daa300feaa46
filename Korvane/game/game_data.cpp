#include "Korvane/game/game_data.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/internal_path.h"
#include "Korvane/archives/loose_file.h"
#include "Korvane/archives/skeleton_entries.h"

#include <algorithm>
#include <filesystem>

namespace korvane
{

namespace
{

std::string skeletonPath(std::string_view id)
{
    return "animations\\skeletons\\" + std::string(id) + ".anim";
}

} // namespace

game_data::game_data(std::shared_ptr<const path_tree> archives) : m_po_archives(std::move(archives))
{
    if (!m_po_archives)
        return;
    for (const std::unique_ptr<archive_record>& archive : m_po_archives->archives())
        if (archive->is_folder)
            m_mod_folders.insert(m_mod_folders.begin(), archive->path);
    m_has_archives = m_po_archives->archives().size() > m_mod_folders.size() || m_mod_folders.empty();
}

bool game_data::hasModFolder(const std::string& folder) const
{
    return std::any_of(m_mod_folders.begin(), m_mod_folders.end(), [&folder](const std::string& known) {
        std::error_code error;
        return std::filesystem::equivalent(toPath(known), toPath(folder), error);
    });
}

game_file game_data::ofEntry(const pack_file_node* entry) const
{
    return entry ? game_file(std::shared_ptr<const pack_file_node>(m_po_archives, entry)) : game_file();
}

game_file game_data::findOver(std::string_view internal_path) const
{
    if (m_mod_folders.empty())
        return {};
    const std::string path = normalInternalPath(internal_path);
    for (const std::string& folder : m_mod_folders)
        if (std::string found = findFileBelow(folder, path); !found.empty())
            return game_file(std::move(found));
    return {};
}

// Without the mod folders.
game_file game_data::findEntry(std::string_view internal_path) const
{
    const pack_file_node* entry = m_po_archives ? m_po_archives->findFile(internal_path) : nullptr;
    while (entry && entry->archive().is_folder)
        entry = m_po_archives->copyBelow(*entry);
    return ofEntry(entry);
}

game_file game_data::findCopy(std::string_view internal_path) const
{
    const game_path given = game_path::ofInternal(internal_path);
    if (given.archive().empty() || !m_po_archives)
        return {};
    const std::string path = normalInternalPath(given.pathInArchive());
    const auto& archives = m_po_archives->archives();
    for (std::size_t i = archives.size(); i-- > 0;) // of archives of one name the one that was entered last
        if (equalsIgnoringCase(archives[i]->name, given.archive()))
            for (const pack_file_node& each : m_po_archives->entries()[i])
                if (each.internalPath() == path)
                    return ofEntry(&each);
    return {};
}

game_file game_data::find(std::string_view internal_path) const
{
    game_file found = findOver(internal_path);
    if (!found)
        found = findEntry(internal_path);
    return found ? found : findCopy(internal_path);
}

game_file game_data::findInGame(std::string_view internal_path) const
{
    game_file found = findEntry(internal_path);
    return found ? found : findOver(internal_path);
}

game_file game_data::findAround(std::string_view internal_path, const game_path& around) const
{
    game_file found = find(internal_path);
    return found || around.empty() || around.isInternal() ? found
                                                          : game_file(findLooseFile(internal_path, around.text()));
}

game_file game_data::findSkeleton(std::string_view id, const game_path& around) const
{
    const std::string path = skeletonPath(id);
    if (game_file found = findOver(path))
        return found;
    if (!hasArchives())
        return findAround(path, around);
    const entry_list entries = skeletonEntries(*m_po_archives, id);
    return entries.empty() ? game_file() : ofEntry(entries.front());
}

bool game_data::read(const game_path& path, memory_file& bytes, failure& why) const
{
    if (!path.isInternal())
        return bytes.read(path.text(), why);
    if (readInternal(path.internalPath(), bytes, why))
        return true;
    if (why.kind == failure_kind::not_found)
        why.path = path.text();
    return false;
}

bool game_data::readInternal(std::string_view internal_path, memory_file& bytes, failure& why,
                             std::uint64_t limit) const
{
    if (const game_file found = find(internal_path))
        return found.read(bytes, why, limit);
    const bool is_folder =
        m_po_archives && m_po_archives->find(internal_path) && !m_po_archives->findFile(internal_path);
    const char* const what = is_folder       ? "this is a folder of the archives, not a file"
                             : hasArchives() ? "no archive holds this path"
                             : m_po_archives ? "no mod folder holds this path, and no archives are loaded"
                                             : "no archives are loaded";
    return fail(why, failure_kind::not_found, what, std::string(internal_path));
}

definition_reader game_data::definitionReader() const
{
    if (!m_po_archives)
        return {};
    return [game = *this](const std::string& internal_path, std::uint64_t limit, memory_file& text, failure& why) {
        return game.readInternal(internal_path, text, why, limit);
    };
}

std::optional<memory_file> game_data::readTexture(std::string_view internal_path, const game_path& around,
                                                  const log_port& log) const
{
    const game_file found = findAround(internal_path, around);
    memory_file bytes;
    failure why;
    if (found && found.read(bytes, why))
        return bytes;
    if (found.entry())
        tell(log, describe(why));
    return std::nullopt;
}

} // namespace korvane
