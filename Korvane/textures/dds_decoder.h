#pragma once

// Turns DDS images into pictures, on the processor. What becomes of each format:
//   - bytes of colours stay as they are, sRGB or not; of other widths the largest value becomes 255. Where a format has
//     no alpha, it is 255;
//   - one channel (red or grey, BC4) becomes grey; two channels (RG8, BC5) red and green, with blue 0; alpha alone has
//     black pixels; signed channels are moved from -1..1 to 0..255;
//   - floats (BC6H, 10 to 32 bits) are light: cut to 0..1 and stored with the sRGB curve, so that programs show them as
//     bright as they are. Alpha has no curve. NaN is 0.
// BC1 to BC5 interpolate between end points of 8 bits (5 and 6 bits are expanded by repeating their upper bits) and
// round to nearest; BC7 and BC6H are exact by definition.

#include "DDSTextureLoader/dds_image.h"
#include "EASY_GUI/services/failure.h"
#include "Korvane/textures/picture.h"

#include <span>

namespace korvane
{

// The largest mip map. The elements of an array and the six faces of a cube lie one below the other. On failure target
// stays as it is. Large pictures are decoded by several threads.
[[nodiscard]] bool decodeDds(const dds_image& image, picture& target, failure& why);
// One subresource of the image; the target has exactly its pixels.
void decodeSubresource(const dds_image& image, const dds_subresource& part, std::span<rgba_pixel> target);

} // namespace korvane
