#pragma once

// Turns a take of an FBX file into an .anim file for a template's bones (docs/formats/fbx.md, "Conversion to
// .anim"). The template says which bones there are, in which order, and which of them have tracks; the FBX file says
// how they move. The console program and the dialog drive it. Keeps no state; one thread at a time for each request.

#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/work_port.h"
#include "Korvane/animation/anim_file.h"
#include "Korvane/animation/anim_writer.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

// What a conversion takes on: more frames, or more bytes of them, are refused.
inline constexpr std::uint32_t max_converted_frames = 1000000;
inline constexpr std::uint64_t max_converted_bytes = std::uint64_t{128} << 20;
// Frames a second.
inline constexpr double slowest_converted_rate = 1e-3, fastest_converted_rate = 1e6;

struct anim_conversion
{
    std::string fbx_path; // for messages
    std::span<const std::byte> fbx;
    // Loaded as a template or, so that bones without a match have its first frame's values, as an animation.
    const anim_data* template_data = nullptr;
    std::uint32_t version = 5; // of the file: 5 or 7
    anim_layout layout = anim_layout::tools;
    std::optional<std::string> take;          // its name or, counted from 0, its number; without: the first
    std::optional<std::string> prefix;        // of bones' names, taken off; without: found; empty: none
    std::optional<double> frame_rate;         // without: the file's
    std::optional<double> start_seconds;      // of the take's own time; without: its first key
    std::optional<double> end_time;           // seconds from there on; without: the last key
    std::optional<std::uint32_t> frame_count; // in the place of an end time
    std::optional<std::vector<std::string>> bone_selection; // of the template's, in this order; without: all
};

struct anim_conversion_result
{
    anim_output anim;
    std::vector<std::string> unmatched; // the bones that the FBX file does not have
    std::string take;                   // its name, as in the file; empty: there is none
    std::string prefix;                 // of the bones' names, that was taken off
    // Bones that move: those of the template with a track, and how many of them the FBX file has.
    std::size_t moving_count = 0, moving_matched = 0;
    std::string warning;        // that the result is hardly what was wanted; empty: it may be
    std::optional<notice> said; // what a person is to be told of a file that could not be written
};

// False when the template's parents make no trees (the failure then has no path), when the FBX file cannot be read,
// when it does not have the take or any of the bones, or when what it says is no number; the result is then good for
// nothing. Whatever else is amiss is only logged; names out of files stand in the lines as they are. Progress counts
// frames; a stop is heeded between them, and then has refused the conversion.
[[nodiscard]] bool convertToAnim(const anim_conversion& request, const work_port& work, anim_conversion_result& result,
                                 failure& why);

// The same, and writes the file: whole or not at all. The log's last line is "Sucess!" or "Failure", a warning
// stands right before "Sucess!".
[[nodiscard]] bool convertToAnimFile(const anim_conversion& request, const std::string& output_path,
                                     const work_port& work, anim_conversion_result& result, failure& why);

} // namespace korvane
