#pragma once

// Sixteen bytes of a path at a time, in a vector of the machine. Only for the paths of a path_tree, which stay readable
// that far behind their end.

#include "Korvane/archives/path_tree.h"

#include <cstdint>
#include <cstring>

namespace korvane
{

using path_chunk = unsigned char __attribute__((vector_size(path_tree::readable_behind_paths)));
using path_chunk_words = std::uint64_t __attribute__((vector_size(sizeof(path_chunk))));

inline path_chunk chunkAt(const char* bytes)
{
    path_chunk loaded;
    std::memcpy(&loaded, bytes, sizeof loaded);
    return loaded;
}

} // namespace korvane
