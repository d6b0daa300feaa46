#pragma once

// One variant mesh definition by itself: from its text to its elements. References are not followed here.

#include "Korvane/archives/variant_mesh_def.h"

namespace korvane
{

// What a tag takes, with everything below it.
struct variant_tag_extent
{
    std::size_t tags = 0;
    std::size_t bytes = 0;  // of memory, about
    std::size_t height = 0; // levels
};
[[nodiscard]] variant_tag_extent extentOf(const variant_tag& tag);

// Reads a text in UTF-8, UTF-16, UTF-32 or (declared) Latin-1. root becomes the root element, or, when there are
// several, a tag without a name that holds them. The limits of variant_mesh_def hold: the depth, and for this text
// alone tags, memory and text size. why.path is left to the caller. Throws std::bad_alloc.
[[nodiscard]] bool parseVariantMeshDef(std::span<const std::byte> text, variant_tag& root, failure& why);

} // namespace korvane
