#pragma once

// The first bytes of an archive's entry, for those who look at many entries and need no more of each than its header.

#include "EASY_GUI/services/failure.h"
#include "Korvane/archives/path_tree.h"

#include <cstddef>
#include <span>

namespace korvane
{

// Fills target with the entry's first bytes, unpacked on the way, and gives how many there are: fewer than target has
// only where the entry ends. Reads and unpacks no more of the entry than that takes. On failure why.path is the
// internal path and names the archive. Any number of threads may do this at a time.
[[nodiscard]] bool readEntryStart(const pack_file_node& entry, std::span<std::byte> target, std::size_t& count,
                                  failure& why);

} // namespace korvane
