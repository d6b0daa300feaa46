#pragma once

// From the bytes of an .anim file to anim_data: layout and limits are docs/formats/anim.md. anim_file is the way in for
// everybody else.

#include "EASY_GUI/services/failure.h"
#include "Korvane/animation/anim_file.h"
#include "Korvane/animation/anim_frames.h"

#include <cstddef>
#include <span>
#include <string>

namespace korvane
{

// Fills data, which is empty before. On failure data is good for nothing; why has everything but the path. A source
// with a file behind it needs the header, the bones and the maps in its start: anim_start_bytes are always enough.
inline constexpr std::uint64_t anim_start_bytes = 1u << 20;
[[nodiscard]] bool readAnim(const anim_source& source, anim_depth depth, anim_data& data, failure& why);

enum class name_of_version
{
    any,
    known // 5 and 7
};

// The skeleton's name from a file's first bytes.
[[nodiscard]] bool readAnimName(std::span<const std::byte> start, name_of_version wanted, std::string& name,
                                failure& why);

// Failed because the file is none that this program knows, which is no reason to bother anybody.
[[nodiscard]] bool isUnknownVersion(const failure& why);

} // namespace korvane
