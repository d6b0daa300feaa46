#include "Korvane/jobs/cache_job.h"

#include "EASY_GUI/services/config_keys.h"
#include "EASY_GUI/services/file_system.h"
#include "Korvane/archives/archive_indexing.h"
#include "Korvane/archives/pack_reader.h"

namespace korvane
{

namespace
{

// Size, age and whether it could be replaced; false: there is no file.
bool lookAtFile(const std::string& path, cache_look& look)
{
    failure obstacle;
    if (!canWriteWholeFile(path, obstacle))
        look.obstacle = obstacle.what;
    std::error_code error;
    look.size = std::filesystem::file_size(toPath(path), error);
    if (error)
    {
        look.size = 0;
        look.is = cache_look::state::missing;
        return false;
    }
    const auto written = std::filesystem::last_write_time(toPath(path), error);
    if (!error)
        look.age =
            std::chrono::duration_cast<std::chrono::seconds>(std::filesystem::file_time_type::clock::now() - written);
    return true;
}

bool isStopped(const work_port& work, failure& why)
{
    return work.isStopped() && !fail(why, failure_kind::refused, "it was stopped");
}

} // namespace

cache_places cache_places::of(const config_file& config, const std::string& config_path)
{
    return {config.get(config_keys::data_folders), cacheUseOf(config), pack_cache::of(config, config_path),
            usage_store::of(config, config_path)};
}

cache_look lookAtPackCache(const cache_places& places, const work_port& work)
{
    cache_look look;
    const std::vector<std::string> archives = archivesInOrder(places.folders, work.stop);
    look.archives = archives.size();
    if (!lookAtFile(places.packs.path(), look))
        return look;
    failure why;
    indexed_archives indexed;
    const bool is_readable = places.packs.readExtent(look.holds, why);
    const bool is_fresh = is_readable && places.packs.load(archives, indexed, why);
    look.is = is_fresh                            ? cache_look::state::fresh
              : why.kind == failure_kind::refused ? cache_look::state::old
                                                  : cache_look::state::damaged;
    look.why = why.what;
    return look;
}

cache_look lookAtUsageCache(const cache_places& places, const game_data* game)
{
    cache_look look;
    if (!lookAtFile(places.usage.path(), look))
        return look;
    failure why;
    const usage_index index = places.usage.load(why);
    if (why)
    {
        look.is = cache_look::state::damaged;
        look.why = why.what;
        return look;
    }
    look.holds = {index.archiveCount(), index.fileCount()};
    const std::size_t unknown = game ? index.unknownArchives(*game) : 0;
    look.is = unknown > 0 ? cache_look::state::old : cache_look::state::fresh;
    if (unknown > 0)
        look.why = counted(unknown, "archive is", "archives are") + " new or changed";
    return look;
}

bool rebuildPackCache(const cache_places& places, const work_port& work, failure& why)
{
    indexed_archives indexed;
    const std::vector<std::string> archives = archivesInOrder(places.folders, work.stop);
    if (archives.empty() && !work.isStopped())
        return fail(why, failure_kind::not_found, "there are no archives in the game folders");
    if (isStopped(work, why) || (!indexArchives(archives, work, indexed) && isStopped(work, why)))
        return false;
    work.report(archives.size(), archives.size(), "writing the index");
    return places.packs.write(indexed, why, work.stop);
}

bool rebuildUsageCache(const cache_places& places, const game_data& game, const work_port& work, failure& why)
{
    bool is_whole = false;
    const usage_index made = indexUsage(game, {}, work, is_whole);
    if (!is_whole || work.isStopped())
        return fail(why, failure_kind::refused, "it was stopped");
    return places.usage.write(made, why);
}

} // namespace korvane
