#pragma once

// DDS files with all their mip maps.

#include "tools/demo_data/image.h"

#include <cstddef>
#include <vector>

namespace korvane::demo
{

enum class dds_format // "srgb" formats are stored with the extended header, the others with the old one where it can
{
    bgra8,
    rgba8_srgb,
    bc1,
    bc1_srgb,
    bc3,
    bc3_srgb,
    bc5,
    bc7,
    bc7_srgb
};

[[nodiscard]] std::vector<std::byte> ddsBytes(const image& source, dds_format format);

} // namespace korvane::demo
