// Reads any bytes as a DDS file. What is accepted must lie inside the file, every subresource with all its rows, and
// can be decoded to a picture of its size.

#include "DDSTextureLoader/dds_image.h"
#include "Korvane/textures/dds_decoder.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace korvane;
    const auto bytes = std::as_bytes(std::span(data, size));
    dds_image image;
    failure why;
    if (!readDds(bytes, image, why))
        return why ? 0 : (std::abort(), 0);
    if (image.subresources.size() != std::size_t{image.mip_count} * image.array_size)
        std::abort();
    for (const dds_subresource& part : image.subresources)
    {
        const bool is_inside =
            part.bytes.data() >= bytes.data() && part.bytes.data() + part.bytes.size() <= bytes.data() + bytes.size();
        if (!is_inside || part.bytes.size() != std::size_t{part.row_pitch} * part.rows || part.rows == 0)
            std::abort();
    }
    picture target;
    if (decodeDds(image, target, why) &&
        (target.width() != image.width || target.height() != image.height * image.array_size))
        std::abort();
    return 0;
}
