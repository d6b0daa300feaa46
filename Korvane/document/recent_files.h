#pragma once

// The files that were opened last, newest first, kept in the configuration under "config_recent_files".

#include "EASY_GUI/services/config_file.h"
#include "Korvane/game/game_data.h"

#include <cstddef>
#include <string>
#include <vector>

namespace korvane
{

constexpr std::size_t max_recent_files = 10;

// The configuration holds texts in lower case; paths come back as they are written on the disk where that can be told.
[[nodiscard]] std::vector<std::string> recentFiles(const config_file& config);
// Puts the path first, once, and drops what is beyond the tenth. The caller saves the configuration.
void addRecentFile(config_file& config, const std::string& path);
// Takes the path off the list; false when it is not there.
bool removeRecentFile(config_file& config, const std::string& path);
// Whether there is something to open, on the disk or in the game.
[[nodiscard]] bool isRecentFileThere(const std::string& path, const game_data& game);
// The text of the menu item at a position counted from 0: the path and its shortcut, "Ctrl + 1" to "Ctrl + 9", then
// "Ctrl + 0". An '&' of the path is doubled, so that it is shown.
[[nodiscard]] std::string recentFileLabel(std::size_t position, const std::string& path);

} // namespace korvane
