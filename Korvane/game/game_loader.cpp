#include "Korvane/game/game_loader.h"

#include "EASY_GUI/services/config_keys.h"
#include "Korvane/archives/pack_file.h"
#include "Korvane/archives/pack_reader.h"
#include "Korvane/game/data_folders.h"

#include <utility>

namespace korvane
{

namespace
{

// What the person reads who set a folder by hand: where a value is added, the separator is.
notice withoutSeparator(const std::string& folder)
{
    return {"Error!", "The data folder '" + folder +
                          "' has no separator at its end, so nothing is found in it. Write '" + withSeparator(folder) +
                          "' instead."};
}

} // namespace

std::vector<std::string> game_loader::folders() const
{
    return m_folders ? *m_folders : m_config.get(config_keys::data_folders);
}

std::vector<std::string> game_loader::modFolders() const
{
    return m_mod_folders ? *m_mod_folders : m_config.get(config_keys::mod_folders);
}

// False when one that was asked for, for once, cannot be read: what then would be shown is not what was asked for.
bool game_loader::addModFolders(pack_reader& reader, std::vector<notice>& notices) const
{
    for (const std::string& folder : modFolders())
    {
        failure why;
        if (reader.addModFolder(folder, why))
            continue;
        if (why)
            notices.push_back({"Error!", describe(why)});
        if (m_mod_folders || !why)
            return false;
    }
    return true;
}

game_load game_loader::load(const work_port& work) const
{
    tell(work.log, "Initializing virtual file system (.pack reading)...");
    const pack_cache cache = pack_cache::of(m_config, m_config_path);
    const cache_use use = cacheUseOf(m_config);
    const bool has_cache = m_has_cache && !m_folders && use != cache_use::never;
    pack_reader reader(work, has_cache ? &cache : nullptr);
    game_load result;
    const bool has_archives = folders().empty() ? !modFolders().empty() : reader.loadAllArchives(folders());
    result.wants_cache = has_archives && m_defers_cache && reader.wantsCache(use);
    const bool has_written = has_archives && !m_defers_cache && reader.wantsCache(use) && reader.writeCache();
    const bool is_whole = has_archives && addModFolders(reader, result.notices);
    if (is_whole && reader.tree())
        result.game = std::make_shared<game_data>(reader.tree());
    result.notices.insert(result.notices.begin(), reader.notices().begin(), reader.notices().end());
    for (const std::string& folder : folders())
        if (!endsInSeparator(folder))
            result.notices.push_back(withoutSeparator(folder));
    for (const archive_listing& archive : reader.listings())
        for (std::string& line : describeLeftOut(archive))
            result.left_out.push_back(std::move(line));
    // Whether that succeeds or not: the cache is found by its usual name as well.
    if (has_written)
        recordCache(work.log);
    return result;
}

void game_loader::recordCache(const log_port& log) const
{
    failure why;
    if (!m_config.change(
            m_config_path, [](config_file& config) { return pack_cache::recordIn(config); }, why))
        tell(log, "the configuration could not be written: the cache of the archives is not recorded in it (" +
                      describe(why) + ")");
}

game_load game_loader::reload(const work_port& work) const
{
    if (!hasFolders())
        return {
            nullptr, {{"Error!", "Setup up your games' \\data\\ folder in tools->setup game data folder first"}}, {}};
    failure ignored;
    pack_cache::of(m_config, m_config_path).remove(ignored);
    return load(work);
}

void publishGame(const game_data& game)
{
    pack_file::sm_poPathTree = game.archives();
}

} // namespace korvane
