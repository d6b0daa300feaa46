#pragma once

// From the bytes of an .anim file to anim_data: layout and limits are docs/formats/anim.md. anim_file is the way in for
// everybody else.

#include "EASY_GUI/services/failure.h"
#include "Korvane/animation/anim_file.h"

#include <cstddef>
#include <span>
#include <string>

namespace korvane
{

// Fills data, which is empty before. On failure data is good for nothing; why has everything but the path.
[[nodiscard]] bool readAnim(std::span<const std::byte> bytes, anim_depth depth, anim_data& data, failure& why);

// The version and the skeleton's name from a file's first bytes.
[[nodiscard]] bool readAnimName(std::span<const std::byte> start, std::uint32_t& version, std::string& name,
                                failure& why);

// Failed because the file is none that this program knows, which is no reason to bother anybody.
[[nodiscard]] bool isUnknownVersion(const failure& why);

} // namespace korvane
