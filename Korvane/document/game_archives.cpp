#include "Korvane/document/game_archives.h"

#include "Korvane/archives/pack_reader.h"

namespace korvane
{

namespace
{
constexpr const char* data_folders_key = "data_paths";
}

bool loadGameArchives(const archive_ports& ports)
{
    ports.log("Initializing virtual file system (.pack reading)...");
    const pack_cache cache = pack_cache::of(ports.config, ports.config_path);
    pack_reader reader({ports.prompt, ports.log, {}, &cache});
    const bool is_loaded = reader.loadAllArchives(ports.config.get(data_folders_key));
    if (reader.hasWrittenCache() && pack_cache::recordIn(ports.config) && !ports.config.save(ports.config_path))
        ports.log("the configuration could not be written: the cache of the archives is not recorded in it");
    return is_loaded;
}

bool rereadGameArchives(const archive_ports& ports)
{
    if (!ports.config.get(data_folders_key).empty())
    {
        // Whoever asks for it distrusts what is known: the archives themselves are read, and a new cache is written.
        pack_cache::of(ports.config, ports.config_path).discard();
        return loadGameArchives(ports);
    }
    ports.prompt.show("Error!", "Setup up your games' \\data\\ folder in tools->setup game data folder first",
                      prompt_icon::error);
    return false;
}

} // namespace korvane
