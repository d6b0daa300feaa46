#pragma once

// Converts normal maps between the games' form and the usual one: pictures or DDS files in, Targa or PNG out.

#include "EASY_GUI/services/work_port.h"
#include "Korvane/game/game_source.h"
#include "Korvane/textures/normal_map.h"

#include <cstdint>
#include <string>
#include <vector>

namespace korvane
{

struct normal_map_job_options
{
    std::vector<std::string> inputs; // on the disk or, with "pack:", out of the game
    std::string output;              // a file for a single input, else a folder
    normal_form form = normal_form::blue;
};

struct converted_picture
{
    std::string input;
    std::string path;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
};

struct failed_picture
{
    std::string input;
    failure why;
};

struct normal_map_job_result
{
    std::vector<converted_picture> files;
    std::vector<failed_picture> failed; // of several
};

// False when the only picture failed. Of several one that fails is named in the log and in the result, and the others
// go on. No input is ever written over, for a conversion cannot be undone. A stop is heeded between pictures.
[[nodiscard]] bool convertNormalMaps(game_source& source, const normal_map_job_options& options, const work_port& work,
                                     normal_map_job_result& result, failure& why);

} // namespace korvane
