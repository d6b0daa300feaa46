#include "Korvane/document/game_archives.h"

#include "Korvane/archives/pack_reader.h"

namespace korvane
{

namespace
{
constexpr const char* key = "data_paths";
}

bool loadGameArchives(const config_file& config, user_prompt& prompt, const log_line_port& log)
{
    log("Initializing virtual file system (.pack reading)...");
    return pack_reader({prompt, log, {}}).loadAllArchives(config.get(key));
}

bool rereadGameArchives(const config_file& config, user_prompt& prompt, const log_line_port& log)
{
    if (!config.get(key).empty())
        return loadGameArchives(config, prompt, log);
    prompt.show("Error!", "Setup up your games' \\data\\ folder in tools->setup game data folder first",
                prompt_icon::error);
    return false;
}

} // namespace korvane
