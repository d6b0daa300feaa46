#pragma once

// When the archives of the data folders (configuration key "data_paths") are read, and what the person is told when
// there are no folders. For the user-interface thread.

#include "EASY_GUI/services/config_file.h"
#include "EASY_GUI/services/log_port.h"
#include "EASY_GUI/services/user_prompt.h"

#include <string>

namespace korvane
{

struct archive_ports
{
    config_file& config;            // a new cache is recorded in it, and it is saved then
    const std::string& config_path; // empty: "config.cfg" beside the program; the cache lies beside it
    user_prompt& prompt;
    log_port log;
};

// As at the start of the program: nothing is said when no folders are set, the program then runs on the disk alone.
// False when nothing was loaded.
bool loadGameArchives(const archive_ports& ports);

// As the person asked for it: all archives are dropped and read again. False, after a message, without folders (then
// what was loaded stays) and when a folder holds no archive.
[[nodiscard]] bool rereadGameArchives(const archive_ports& ports);

} // namespace korvane
