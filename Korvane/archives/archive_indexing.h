#pragma once

// The indexes of many archives as one tree, made on all processors: several threads read and check them ahead, and the
// calling one enters them in their order, so that the tree is the same however many there are.

#include "EASY_GUI/services/work_port.h"
#include "Korvane/archives/pack_cache.h"

#include <string>
#include <vector>

namespace korvane
{

// Paths on disk, in the order in which they count: the last one wins. An archive that cannot be read is said so in its
// listing, and that is no failure. False when the work was stopped; indexed is of no use then. Progress counts archives
// and names the one that is next.
[[nodiscard]] bool indexArchives(const std::vector<std::string>& paths, const work_port& work,
                                 indexed_archives& indexed);

} // namespace korvane
