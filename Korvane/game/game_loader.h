#pragma once

// Makes the game_data of the data folders, for the console and the window alike. It shows nothing and replaces nothing:
// what was loaded before serves on until its owner takes the new value, and so it stays when nothing was loaded.
//
// The configuration is changed (a cache that was written is recorded in it, and it is saved), so that a loader belongs
// to the thread that owns the configuration.

#include "EASY_GUI/services/config_file.h"
#include "EASY_GUI/services/notice.h"
#include "EASY_GUI/services/work_port.h"
#include "Korvane/archives/pack_cache.h"
#include "Korvane/game/game_data.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace korvane
{

class pack_reader;

struct game_load
{
    std::shared_ptr<const game_data> game; // null: nothing was loaded
    std::vector<notice> notices;           // what the person is to be told, whether it was or not
    std::vector<std::string> left_out;     // files that no archive really holds, a line each
    bool wants_cache = false;              // deferred: it is to be written (jobs/cache_job.h)
};

class game_loader
{
public:
    // The configuration outlives the loader. An empty path: "config.cfg" beside the program; the cache lies beside it.
    game_loader(config_file& config, std::string config_path) : m_config(config), m_config_path(std::move(config_path))
    {
    }

    // Instead of those of the configuration ("data_paths"), for once: a cache of them would replace that of these.
    void useFolders(std::vector<std::string> folders) { m_folders = std::move(folders); }
    // Instead of those of the configuration ("mod_paths"), for once: one that cannot be read is then a failure.
    void useModFolders(std::vector<std::string> folders) { m_mod_folders = std::move(folders); }
    void leaveOutCache() { m_has_cache = false; }
    // It is not written while somebody waits for the game; the result says whether it is to be.
    void deferCache() { m_defers_cache = true; }

    // Data folders or mod folders.
    bool hasFolders() const { return !folders().empty() || !modFolders().empty(); }

    // Loads the archives and lays the mod folders over them, the last one on top. Without folders nothing is loaded and
    // nothing said: the program then runs on the disk alone.
    [[nodiscard]] game_load load(const work_port& work) const;
    // As the person asked for it, who distrusts what is known: the archives themselves are read, and a new cache is
    // written. Without folders the person is told.
    [[nodiscard]] game_load reload(const work_port& work) const;

private:
    std::vector<std::string> folders() const;
    std::vector<std::string> modFolders() const;
    bool addModFolders(pack_reader& reader, std::vector<notice>& notices) const;
    void recordCache(const log_port& log) const;

    config_file& m_config;
    std::string m_config_path;
    std::optional<std::vector<std::string>> m_folders;
    std::optional<std::vector<std::string>> m_mod_folders;
    bool m_has_cache = true;
    bool m_defers_cache = false;
};

// Makes a game's archives those of this process (pack_file::sm_poPathTree), which only getNodeFromInternalPath() of
// pack_file.h reads: everybody else has the game handed over. For the thread that owns the program's state.
void publishGame(const game_data& game);

} // namespace korvane
