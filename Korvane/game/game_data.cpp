#include "Korvane/game/game_data.h"

#include "Korvane/archives/internal_path.h"
#include "Korvane/archives/loose_file.h"
#include "Korvane/archives/pack_file.h"
#include "Korvane/archives/skeleton_entries.h"

namespace korvane
{

namespace
{

std::string skeletonPath(std::string_view id)
{
    return "animations\\skeletons\\" + std::string(id) + ".anim";
}

} // namespace

game_file game_data::ofEntry(const pack_file_node* entry) const
{
    return entry ? game_file(std::shared_ptr<const pack_file_node>(m_po_archives, entry)) : game_file();
}

game_file game_data::findOver(std::string_view internal_path) const
{
    if (m_folders_over.empty())
        return {};
    const std::string path = normalInternalPath(internal_path);
    for (const std::string& folder : m_folders_over)
        if (std::string found = findFileBelow(folder, path); !found.empty())
            return game_file(std::move(found));
    return {};
}

game_file game_data::find(std::string_view internal_path) const
{
    game_file found = findOver(internal_path);
    return found || !hasArchives() ? found : ofEntry(m_po_archives->findFile(internal_path));
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
    if (const game_file found = find(path.internalPath()))
        return found.read(bytes, why);
    if (!hasArchives())
        return fail(why, failure_kind::not_found, "no archives are loaded", path.text());
    return fail(why, failure_kind::not_found,
                m_po_archives->find(path.internalPath()) ? "this is a folder of the archives, not a file"
                                                         : "no archive holds this path",
                path.text());
}

std::optional<memory_file> game_data::readTexture(std::string_view internal_path, const game_path& around,
                                                  const std::function<void(const std::string&)>& log) const
{
    const game_file found = findAround(internal_path, around);
    memory_file bytes;
    failure why;
    if (found && found.read(bytes, why))
        return bytes;
    if (found.entry() && log)
        log(describe(why));
    return std::nullopt;
}

game_data publishedGame()
{
    return game_data(pack_file::sm_poPathTree);
}

} // namespace korvane
