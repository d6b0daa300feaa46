#pragma once

// The bytes of an archive's entry. Compressed entries (PFH5) are unpacked on the way: a u32 with the unpacked length,
// then a Zstandard frame, an LZ4 frame, or LZMA1 data with its 5 bytes of properties (docs/formats/pack.md,
// "Compression").

#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/memory_file.h"
#include "Korvane/archives/path_tree.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>

namespace korvane
{

// An entry that claims to unpack to more is refused.
inline constexpr std::uint64_t max_unpacked_size = std::uint64_t{1} << 30;

// What compressed data begins with; anything else is LZMA1.
inline constexpr std::uint32_t zstd_frame_magic = 0xfd2fb528;
inline constexpr std::uint32_t lz4_frame_magic = 0x184d2204;

// Reads an entry whole. On failure bytes stays as it is; why.path is the internal path and names the archive. An entry
// of more bytes than limit, as it is stored or unpacked, is refused before memory is taken for it.
[[nodiscard]] bool readEntry(const pack_file_node& entry, memory_file& bytes, failure& why,
                             std::uint64_t limit = std::numeric_limits<std::uint64_t>::max());

// Unpacks a compressed entry's stored bytes. No memory is taken for a length that so few bytes cannot unpack to, nor
// for one beyond max_unpacked_size or the caller's limit.
[[nodiscard]] bool unpackEntry(std::span<const std::byte> stored, memory_file& bytes, failure& why,
                               std::uint64_t limit = max_unpacked_size);

} // namespace korvane
