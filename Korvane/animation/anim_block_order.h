#pragma once

// Tells files of version 7 whose static block stands behind the track counts from those that have it before them
// (docs/formats/anim.md, "Writing"). Readers look for it before: of the others they would read nonsense, often without
// any contradiction.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace korvane
{

// start_of_maps: what follows the bone table, as much of it as is at hand; 16 KiB are enough. Where in it the counts
// stand that come too early; nothing for a file in the usual order. Whether the file ends where it should plays no
// part.
[[nodiscard]] std::optional<std::size_t> findEarlyCounts(std::span<const std::byte> start_of_maps,
                                                         std::size_t bone_count);

} // namespace korvane
