#pragma once

// When the archives of the data folders (configuration key "data_paths") are read, and what the person is told when
// there are no folders. For the user-interface thread.

#include "EASY_GUI/services/config_file.h"
#include "EASY_GUI/services/user_prompt.h"

#include <functional>
#include <string>

namespace korvane
{

using log_line_port = std::function<void(const std::string& line)>; // without the line's end

// As at the start of the program: nothing is said when no folders are set, the program then runs on the disk alone.
// False when nothing was indexed.
bool loadGameArchives(const config_file& config, user_prompt& prompt, const log_line_port& log);

// As the person asked for it: all archives are dropped and read again. False, after a message, without folders (then
// what was loaded stays) and when a folder holds no archive.
[[nodiscard]] bool rereadGameArchives(const config_file& config, user_prompt& prompt, const log_line_port& log);

} // namespace korvane
