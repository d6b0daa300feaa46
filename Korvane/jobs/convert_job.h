#pragma once

// Turns a take of an FBX file into an .anim file, and remembers that in the list of converted files of the
// configuration. The console program and the conversion dialog run this one.

#include "EASY_GUI/services/work_port.h"
#include "Korvane/fbx/convert/fbx_to_anim.h"
#include "Korvane/game/game_source.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace korvane
{

// Paths of what is read are on the disk or, with "pack:", in the game.
struct convert_job_options
{
    std::string fbx;
    std::string template_anim; // a skeleton, or an animation whose bones and tracks the new one is to have
    std::string output;
    std::string bone_table;               // only its bones, in the order of its lines; empty: all
    std::optional<std::uint32_t> version; // 5 or 7; without: the template's
    std::optional<double> rate;           // frames a second; without: the FBX file's
    std::optional<double> start_time;     // in seconds of the take; without: its first key
    std::optional<double> end_time;       // seconds from there; without: its last key
    std::optional<std::uint32_t> frames;  // in the place of an end time
    std::optional<std::string> take;      // name, or number from 0; without: the first
    std::optional<std::string> prefix;    // of the FBX file's bones, taken off; without: found; empty: none
    anim_layout layout = anim_layout::tools;
    std::string config_path; // of the configuration, where the file is recorded
};

struct convert_job_result
{
    anim_conversion_result conversion;
    std::uint32_t version = 0;
};

// Progress counts frames. False when no file was written. The log is told when the FBX file was replaced meanwhile.
[[nodiscard]] bool convertFbx(game_source& source, const convert_job_options& options, const work_port& work,
                              convert_job_result& result, failure& why);

// With its frames, if it has them; null, and the reason, when it has no bones to take.
[[nodiscard]] std::shared_ptr<const anim_data> loadTemplate(game_source& source, const game_path& path, failure& why);
// The bones that a table names; none of an empty path: all bones.
[[nodiscard]] bool loadSelection(game_source& source, const game_path& table,
                                 std::optional<std::vector<std::string>>& names, failure& why);

} // namespace korvane
