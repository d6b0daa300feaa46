// Reads any bytes as a compressed entry. What unpacks has the length that it says; a limit holds.

#include "Korvane/archives/pack_entry.h"

#include "EASY_GUI/services/byte_reader.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace korvane;
    constexpr std::uint64_t limit = 4096;
    const auto stored = std::as_bytes(std::span(data, size));
    memory_file bytes, limited;
    failure why, beyond;
    const bool is_good = unpackEntry(stored, bytes, why);
    if (is_good ? bytes.size() != littleEndian<std::uint32_t>(stored.data()) : !why || why.offset > size)
        std::abort();
    const bool is_within = unpackEntry(stored, limited, beyond, limit);
    if (is_within != (is_good && bytes.size() <= limit))
        std::abort();
    if (is_within && bytes.size() > 0 && std::memcmp(bytes.bytes().data(), limited.bytes().data(), bytes.size()) != 0)
        std::abort();
    return 0;
}
