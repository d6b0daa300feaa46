#pragma once

// What a conversion from FBX would find, before it is run: the takes of the FBX file, and which of its bones are those
// of the template. For a person who chooses; reads the files and writes nothing.

#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/file_stamp.h"
#include "Korvane/jobs/convert_job.h"

#include <cstdint>
#include <string>
#include <vector>

namespace korvane
{

struct convert_look
{
    struct take
    {
        std::string name; // as it is shown
        double seconds = 0;
        bool has_keys = false; // else nothing moves in it
    };
    struct bone // of the template, of the FBX file, or of both
    {
        std::string template_name; // as it is shown; empty: the template does not have it
        std::string fbx_name;
        std::string near_name; // on the other side, which was probably meant; empty: none
        bool isMatched() const { return !template_name.empty() && !fbx_name.empty(); }
    };

    std::string fbx, template_anim; // that were looked at
    file_stamp fbx_stamp;           // before it was read
    failure fbx_failure, template_failure, table_failure;
    double frame_rate = 0; // the FBX file's
    std::vector<take> takes;
    std::vector<std::string> fbx_bones; // as they are shown
    std::uint32_t version = 0;          // the template's
    std::string skeleton_name;          // the template's, as it is shown
    std::string prefix;                 // that is taken off the FBX file's names
    // With both files: what does not match first, the template's before the FBX file's.
    std::vector<bone> bones;
};

// Looks at what the options name: FBX file, template and bone table, of which each may be missing.
[[nodiscard]] convert_look lookAtConversion(game_source& source, const convert_job_options& options);

} // namespace korvane
