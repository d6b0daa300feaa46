#include "Korvane/game/game_loader.h"

#include "Korvane/archives/pack_file.h"
#include "Korvane/archives/pack_reader.h"

namespace korvane
{

namespace
{
constexpr const char* folders_key = "data_paths";
}

std::vector<std::string> game_loader::folders() const
{
    return m_folders ? *m_folders : m_config.get(folders_key);
}

game_load game_loader::load(const work_port& work) const
{
    tell(work.log, "Initializing virtual file system (.pack reading)...");
    const pack_cache cache = pack_cache::of(m_config, m_config_path);
    pack_reader reader(work, m_has_cache && !m_folders ? &cache : nullptr);
    game_load result;
    if (reader.loadAllArchives(folders()))
        result.game = std::make_shared<game_data>(reader.tree());
    result.notices = reader.notices();
    for (const archive_listing& archive : reader.listings())
        for (const std::string& path : archive.left_out)
            result.left_out.push_back(describeLeftOut(archive, path));
    // Whether that succeeds or not: the cache is found by its usual name as well.
    if (reader.hasWrittenCache() && pack_cache::recordIn(m_config) && !m_config.save(m_config_path))
        tell(work.log, "the configuration could not be written: the cache of the archives is not recorded in it");
    return result;
}

game_load game_loader::reload(const work_port& work) const
{
    if (!hasFolders())
        return {
            nullptr, {{"Error!", "Setup up your games' \\data\\ folder in tools->setup game data folder first"}}, {}};
    pack_cache::of(m_config, m_config_path).discard();
    return load(work);
}

void publishGame(const game_data& game)
{
    pack_file::sm_poPathTree = game.archives();
}

} // namespace korvane
