#pragma once

// Targa files in memory (docs/formats/targa.md). Read are true-colour pictures of 15, 16, 24 and 32 bits, grey ones of
// 8 bits and of 16 with alpha, and colour-mapped ones, plain or run-length encoded, whatever corner they begin in.
// Written are plain 32-bit pictures.

#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/memory_file.h"
#include "Korvane/textures/picture.h"

#include <cstddef>
#include <span>

namespace korvane
{

inline constexpr std::uint32_t targa_max_size = 65535; // pixels in each direction

// On failure target stays as it is. Nothing is allocated for more pixels than the bytes can hold.
[[nodiscard]] bool readTarga(std::span<const std::byte> file, picture& target, failure& why);

// The bytes that readTarga() looks at at most, by the header alone (18 bytes are enough): what follows is ignored.
[[nodiscard]] bool targaFileSize(std::span<const std::byte> start, std::uint64_t& size, failure& why);

// A file with the ID "written with libtarga", rows from the bottom, each pixel blue, green, red, alpha, no footer.
// Fails for an empty picture and for one beyond targa_max_size.
[[nodiscard]] bool writeTarga(const picture& source, memory_file& file, failure& why);

} // namespace korvane
