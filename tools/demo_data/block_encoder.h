#pragma once

// Block compression of images: BC1, BC3, BC5 and BC7 (its mode 6: one pair of end points with alpha, 16 steps between
// them, which suits painted surfaces). Same input, same bytes, everywhere.

#include "tools/demo_data/image.h"

#include <cstddef>
#include <vector>

namespace korvane::demo
{

enum class block_format
{
    bc1, // red green blue, opaque
    bc3, // with alpha
    bc5, // red and green
    bc7
};

// The blocks of one image, rows from the top; edge blocks repeat the last pixels.
[[nodiscard]] std::vector<std::byte> encodeBlocks(const image& source, block_format format);

} // namespace korvane::demo
