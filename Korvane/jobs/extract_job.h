#pragma once

// Writes files out of the archives to the disk, as they are: one, or all whose path matches, below a folder.

#include "EASY_GUI/services/work_port.h"
#include "Korvane/game/game_source.h"

#include <cstddef>
#include <string>
#include <vector>

namespace korvane
{

// One file, to that path.
[[nodiscard]] bool extractFile(game_source& source, const game_path& path, const std::string& output, failure& why);

struct extract_job_options
{
    std::string pattern; // over internal paths, with * and ?
    std::string folder;
};

struct extract_job_result
{
    std::size_t matches = 0;
    std::size_t written = 0;
    std::vector<failure> failed; // each is named in the log, too
};

// False, with the reason, when the archives cannot be loaded. A stop is heeded between files.
[[nodiscard]] bool extractMatching(game_source& source, const extract_job_options& options, const work_port& work,
                                   extract_job_result& result, failure& why);

// "2 files extracted": for progress, and at the end.
[[nodiscard]] std::string filesExtracted(std::size_t count);

} // namespace korvane
