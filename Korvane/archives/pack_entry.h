#pragma once

// The bytes of an archive's entry, or of the file that it stands for in a mod folder. Compressed entries (PFH5) are
// unpacked on the way: a u32 with the unpacked length, then a Zstandard frame, an LZ4 frame, or LZMA1 data with its 5
// bytes of properties (docs/formats/pack.md, "Compression").

#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/memory_file.h"
#include "Korvane/archives/path_tree.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <string>

namespace korvane
{

// An entry that claims to unpack to more is refused.
inline constexpr std::uint64_t max_unpacked_size = std::uint64_t{1} << 30;

// Reads an entry whole. On failure bytes stays as it is; why.path is the internal path and names the archive. An entry
// of more bytes than limit, as it is stored or unpacked, is refused before memory is taken for it.
[[nodiscard]] bool readEntry(const pack_file_node& entry, memory_file& bytes, failure& why,
                             std::uint64_t limit = std::numeric_limits<std::uint64_t>::max());

// Unpacks a compressed entry's stored bytes. No memory is taken for a length that so few bytes cannot unpack to, nor
// for one beyond max_unpacked_size or the caller's limit.
[[nodiscard]] bool unpackEntry(std::span<const std::byte> stored, memory_file& bytes, failure& why,
                               std::uint64_t limit = max_unpacked_size);

// What a compressed entry says it unpacks to, by the first bytes of so many stored ones; refused as unpackEntry() does.
[[nodiscard]] bool readUnpackedSize(std::span<const std::byte> start, std::uint64_t stored_size, std::uint64_t limit,
                                    std::uint32_t& size, failure& why);

// Where an entry is, for messages: "PATH in ARCHIVE".
[[nodiscard]] std::string placeOf(const pack_file_node& entry);

// For those who look at many entries and need no more of each than its header: fills target with the entry's first
// bytes, unpacked on the way, and gives how many there are: fewer than target has only where the entry ends. Reads and
// unpacks no more of the entry than that takes. On failure why.path is the internal path and names the archive. Any
// number of threads may do this at a time.
[[nodiscard]] bool readEntryStart(const pack_file_node& entry, std::span<std::byte> target, std::size_t& count,
                                  failure& why);

} // namespace korvane
