// Reads any bytes as a Targa file. A picture that is accepted must come back the same when it is written and read
// again.

#include "Korvane/textures/targa.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace korvane;
    picture image, again;
    failure why;
    if (!readTarga(std::as_bytes(std::span(data, size)), image, why))
        return why ? 0 : (std::abort(), 0);
    memory_file file;
    if (!writeTarga(image, file, why) || !readTarga(file.bytes(), again, why))
        std::abort();
    if (again.width() != image.width() || !std::ranges::equal(again.pixels(), image.pixels()))
        std::abort();
    return 0;
}
