#include "Korvane/document/recent_files.h"

#include "EASY_GUI/services/config_keys.h"
#include "EASY_GUI/services/file_stamp.h"
#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"

#include <algorithm>

namespace korvane
{

std::vector<std::string> recentFiles(const config_file& config)
{
    std::vector<std::string> files = config.get(config_keys::recent_files);
    std::erase_if(files,
                  [](const std::string& file) { return file.find_first_not_of(" \t\r\n") == std::string::npos; });
    files.resize(std::min(files.size(), max_recent_files));
    for (std::string& file : files)
        if (!game_path(file).isInternal())
            file = existingPathAnyCase(file);
    return files;
}

void addRecentFile(config_file& config, const std::string& path)
{
    std::vector<std::string> files = config.get(config_keys::recent_files);
    std::erase_if(files, [&](const std::string& file) { return equalsIgnoringCase(file, path); });
    files.insert(files.begin(), path);
    files.resize(std::min(files.size(), max_recent_files));
    config.clear(config_keys::recent_files);
    config.add(config_keys::recent_files, files, false);
}

bool removeRecentFile(config_file& config, const std::string& path)
{
    std::vector<std::string> files = config.get(config_keys::recent_files);
    if (std::erase_if(files, [&](const std::string& file) { return equalsIgnoringCase(file, path); }) == 0)
        return false;
    config.clear(config_keys::recent_files);
    config.add(config_keys::recent_files, files, false);
    return true;
}

bool isRecentFileThere(const std::string& path, const game_data& game)
{
    const game_path given(path);
    return given.isInternal() ? static_cast<bool>(game.find(given.internalPath())) : stampOf(path).is_there;
}

std::string recentFileLabel(std::size_t position, const std::string& path)
{
    return menuText(path) + "\tCtrl + " + std::to_string((position + 1) % 10);
}

} // namespace korvane
