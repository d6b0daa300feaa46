#pragma once

// Makes DDS files of pictures, with their mip maps. Large pictures are encoded by several threads.

#include "DDSTextureLoader/dds_writer.h"
#include "EASY_GUI/services/memory_file.h"
#include "Korvane/textures/block_encoder.h"
#include "Korvane/textures/mip_maps.h"

namespace korvane
{

struct dds_encoding
{
    dds_format format = dds_format::bc7_srgb; // one that canWriteDds()
    std::uint32_t mip_count = 0;              // 0: all; more than the size allows: all
    mip_content content = mip_content::light;
    bool keeps_coverage = false; // of alpha that the shader tests (keepAlphaCoverage)
    encoding_effort effort = encoding_effort::usual;
};

// What becomes of the channels: BC4 takes red, BC5 red and green, of orange normals X and Y; BC1 makes pixels
// transparent black where alpha is below 128. Fails for pictures that are empty or larger than dds_max_size; throws
// std::bad_alloc.
[[nodiscard]] bool encodeDds(const picture& source, const dds_encoding& encoding, memory_file& file, failure& why);

} // namespace korvane
