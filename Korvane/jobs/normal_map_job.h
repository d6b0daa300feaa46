#pragma once

// Converts normal maps between the games' form and the usual one: pictures or DDS files in, Targa or PNG out.

#include "Korvane/jobs/picture_batch.h"
#include "Korvane/textures/normal_map.h"

#include <cstdint>
#include <string>
#include <vector>

namespace korvane
{

struct normal_map_job_options
{
    picture_batch batch;
    normal_form form = normal_form::blue;
    bool is_forced = false;      // also what does not look like a normal map of the other form
    std::string force_hint = {}; // put behind the reason where that would help: "; --force converts it all the same"
};

struct converted_picture
{
    std::string input;
    std::string path;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    output_outcome outcome = output_outcome::written;
};

struct normal_map_job_result
{
    std::vector<converted_picture> files;
    std::vector<std::string> doubtful; // inputs that failed and that is_forced would convert
    picture_batch_result left;
};

// False, with the reason, when the only picture failed. In a folder a picture keeps its name, and its kind when that
// can be written, else it becomes a Targa file.
[[nodiscard]] bool convertNormalMaps(game_source& source, const normal_map_job_options& options, const work_port& work,
                                     normal_map_job_result& result, failure& why);

} // namespace korvane
