#pragma once

// The two readers behind readFbx (fbx_document.h); each makes a document of its own form's bytes.

#include "Korvane/fbx/container/fbx_document.h"

#include <algorithm>
#include <cstdint>

namespace korvane
{

inline constexpr std::string_view fbx_binary_magic{"Kaydara FBX Binary  \0", 21};

inline constexpr std::uint32_t fbx_oldest_version = 6100;
inline constexpr std::uint32_t fbx_newest_version = 7700;
inline constexpr std::uint32_t fbx_first_wide_version = 7500; // from here on positions have 64 bits
inline constexpr std::size_t fbx_depth_limit = 64;
inline constexpr std::size_t fbx_name_limit = 255;

// Bytes of all arrays of a file, unpacked. What an array means ties it to others: values of keys to their times, which
// shrink to two thirds, normals to the corners of polygons. So real files have twice their size in arrays, or four
// times; a stream of zeros has a thousand times, and a small file must not take all memory.
[[nodiscard]] constexpr std::uint64_t unpackedArraysLimit(std::uint64_t file_bytes)
{
    constexpr std::uint64_t least = std::uint64_t{32} << 20, most = std::uint64_t{4} << 30, ratio = 64;
    return std::clamp(file_bytes > most / ratio ? most : file_bytes * ratio, least, most);
}

// False with the failure when the version is not one of those read.
[[nodiscard]] bool isReadVersion(std::uint32_t version, std::uint64_t offset, failure& why);
// The names of nested records as one text: "Objects/Geometry".
[[nodiscard]] std::string recordPath(const std::vector<std::string_view>& names);

[[nodiscard]] bool readBinaryFbx(std::span<const std::byte> bytes, fbx_document& document, failure& why);
[[nodiscard]] bool readTextFbx(std::string_view text, fbx_document& document, failure& why);

} // namespace korvane
