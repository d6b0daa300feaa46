#include "Korvane/textures/block_encoder.h"

#include <squish.h>

namespace korvane
{

namespace
{

void compress(const block_pixels& pixels, int format, encoding_effort effort, std::byte* block)
{
    const int fit = effort == encoding_effort::best ? squish::kColourClusterFit : squish::kColourRangeFit;
    squish::Compress(reinterpret_cast<const squish::u8*>(pixels.data()), block, format | fit);
}

} // namespace

void encodeBc1(const block_pixels& pixels, encoding_effort effort, std::byte* block)
{
    compress(pixels, squish::kDxt1, effort, block);
}

void encodeBc3(const block_pixels& pixels, encoding_effort effort, std::byte* block)
{
    compress(pixels, squish::kDxt5, effort, block);
}

void encodeBc4(const block_pixels& pixels, std::byte* block)
{
    compress(pixels, squish::kBc4, encoding_effort::usual, block);
}

void encodeBc5(const block_pixels& pixels, std::byte* block)
{
    compress(pixels, squish::kBc5, encoding_effort::usual, block);
}

} // namespace korvane
