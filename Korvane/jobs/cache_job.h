#pragma once

// What the program keeps of the archives so that it need not read them again: the index of their files (packs.cache)
// and of which models name which files (usage.cache). Looking at both, and making them anew. For a worker, with values
// that the configuration's thread has made.

#include "EASY_GUI/services/config_file.h"
#include "EASY_GUI/services/work_port.h"
#include "Korvane/archives/pack_cache.h"
#include "Korvane/game/game_data.h"
#include "Korvane/game/usage_index.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace korvane
{

struct cache_places
{
    std::vector<std::string> folders; // of the game's data, each with a separator at its end
    cache_use use = cache_use::where_it_pays;
    pack_cache packs;
    usage_store usage;

    [[nodiscard]] static cache_places of(const config_file& config, const std::string& config_path);
};

struct cache_look
{
    enum class state
    {
        unknown, // it was not looked at yet
        missing,
        fresh,
        old, // it stands for other archives than those that are there
        damaged
    };

    state is = state::unknown;
    std::string why;            // it is old or damaged
    std::string obstacle;       // why it could not be written now; empty: it could
    std::uint64_t size = 0;     // bytes
    std::chrono::seconds age{}; // since it was written
    cache_extent holds;         // as far as it can be read; files: of usage.cache models and definitions
    std::size_t archives = 0;   // on the disk now; of packs.cache alone
};

// Reads the whole file and compares it with the archives as they are on the disk.
[[nodiscard]] cache_look lookAtPackCache(const cache_places& places, const work_port& work);
// With the archives of a game, which may be null.
[[nodiscard]] cache_look lookAtUsageCache(const cache_places& places, const game_data* game);

// Both read the archives, whatever a cache says, and replace the file. A stop, too, is a failure, and leaves the file
// as it was.
[[nodiscard]] bool rebuildPackCache(const cache_places& places, const work_port& work, failure& why);
[[nodiscard]] bool rebuildUsageCache(const cache_places& places, const game_data& game, const work_port& work,
                                     failure& why);

} // namespace korvane
