#pragma once

// The files that were opened last, newest first, kept in the configuration under "config_recent_files".

#include "EASY_GUI/services/config_file.h"

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
// The text of the menu item at a position counted from 0: the path and its shortcut, "Ctrl + 1" to "Ctrl + 9", then
// "Ctrl + 0". An '&' of the path is doubled, so that it is shown.
[[nodiscard]] std::string recentFileLabel(std::size_t position, const std::string& path);

} // namespace korvane
