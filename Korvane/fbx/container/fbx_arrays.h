#pragma once

// The compressed arrays of binary FBX files (docs/formats/fbx.md, "Container"). Each is a zlib stream of its own, so
// many are worked on at a time: several threads when there is much to do, all of them gone on return; the result does
// not depend on their number.

#include "EASY_GUI/services/failure.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace korvane
{

// No zlib stream gives more than this many bytes for each of its own.
inline constexpr std::uint64_t deflate_ratio_limit = 1032;

struct packed_array
{
    std::span<const std::byte> packed; // borrowed
    std::span<std::byte> target;       // borrowed; exactly as many bytes as the array has
    std::uint64_t offset = 0;          // of packed in the file
    std::string field;
};

// Unpacks all. False, with the failure of the first damaged one, when a stream does not give exactly its target's
// bytes.
[[nodiscard]] bool unpackArrays(std::span<const packed_array> arrays, failure& why);

// One zlib stream for each of the inputs, in their order; an empty one where it would not be smaller than its input.
[[nodiscard]] std::vector<std::vector<std::byte>> packArrays(std::span<const std::span<const std::byte>> arrays);

} // namespace korvane
