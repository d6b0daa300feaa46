#pragma once

// An animation's rotations, frame by frame, as text for people (docs/formats/anim.md, "Dump").

#include "EASY_GUI/services/failure.h"
#include "Korvane/animation/anim_file.h"
#include "Korvane/animation/text_lines.h"

#include <string>
#include <string_view>

namespace korvane
{

// Where the animation came from, as the text says it.
struct anim_origin
{
    std::string pack; // empty for a file on disk
    std::string path; // internal path
};

// Of a loaded animation; a skeleton or a template has no frames to show. About 130 bytes for each rotation of each
// frame.
[[nodiscard]] std::string animDump(const anim_data& animation, const anim_origin& origin,
                                   std::string_view line_end = text_mode_line_end);
// On failure what stood at the path still stands.
[[nodiscard]] bool writeAnimDump(const anim_data& animation, const anim_origin& origin, const std::string& path,
                                 failure& why);

} // namespace korvane
