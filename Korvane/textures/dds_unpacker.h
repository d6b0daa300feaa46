#pragma once

// The same texture in a format that every device samples cheaply and without blocks, with all its mip maps, array
// elements and cube faces: for software devices, which decode a block for every texel they look at, and for formats
// that a device does not have. What a shader reads stays the same, but for the rounding to a byte:
//   - bytes of colours stay bytes, sRGB stays sRGB; channels that the format lacks read as 0, alpha as 1;
//   - BC4 and BC5 with a sign, and other signed channels, become signed bytes;
//   - BC6H and other floats become 16-bit floats.

#include "DDSTextureLoader/dds_image.h"
#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/large_memory.h"

namespace korvane
{

// Owns the bytes that its image names. Movable.
struct unpacked_dds
{
    dds_image image;
    large_memory bytes;
};

// On failure target stays as it is; throws std::bad_alloc. Large levels are decoded by several threads.
[[nodiscard]] bool unpackDds(const dds_image& image, unpacked_dds& target, failure& why);

} // namespace korvane
