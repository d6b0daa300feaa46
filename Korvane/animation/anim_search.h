#pragma once

// Which skeleton files and which animations belong to a skeleton's id, over all entries of all archives. An entry that
// another archive overrides is one like any other: it stands in the list with its own archive, and is read from there.
// Results keep the order of the entries, archive after archive; they live as long as the tree.
//
// An animation belongs to a skeleton when its header names it, byte for byte.

#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/log_port.h"
#include "EASY_GUI/services/notice.h"
#include "Korvane/archives/path_tree.h"
#include "Korvane/archives/skeleton_entries.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

// skeletonEntries(), and what the log says of it.
[[nodiscard]] entry_list findSkeletons(const path_tree& tree, std::string_view skeleton_id, const log_port& log = {});

// Every entry with the extension "anim".
[[nodiscard]] entry_list animationCandidates(const path_tree& tree);

// Appends to found the candidates whose header names the skeleton, whatever their version. Candidates that are too
// short for a name, or whose compressed data is damaged, are passed over. False when an archive cannot be read: then
// found has what comes before it. Works with several threads when there is much to do. A stop is heeded between blocks
// of candidates: found then lacks some, and that is no failure.
[[nodiscard]] bool findAnimations(std::span<const pack_file_node* const> candidates, std::string_view skeleton_id,
                                  entry_list& found, failure& why, const std::stop_token& stop = {});

// What came of a search whose list was filled meanwhile.
struct animation_listing
{
    std::size_t found = 0;
    bool is_stopped = false;    // there may be more
    std::optional<notice> said; // an archive could not be read: found is what came before it
};
// How far it is, and what was found since the last time; by the thread that lists.
using found_port = std::function<void(const entry_list& more, std::size_t done, std::size_t total)>;
// findAnimations() among all candidates, in their order and in pieces that take a moment each, and what the log says of
// it.
animation_listing listAnimations(const path_tree& tree, std::string_view skeleton_id, const found_port& found,
                                 const std::stop_token& stop = {}, const log_port& log = {});

// Of an animation's header, for a list: from the first bytes, so that damage behind them is not seen. Nothing: it is
// none of version 5 or 7, or cannot be read.
[[nodiscard]] std::optional<std::uint32_t> readFrameCount(const pack_file_node& entry);

// The same search for a dialog that exports: it takes versions 5 and 7 only, and passes over whatever cannot be read.
struct compatible_listing
{
    std::size_t found = 0;
    std::size_t unreadable = 0; // candidates
    bool is_stopped = false;    // there may be more
};
compatible_listing listCompatible(const path_tree& tree, std::string_view skeleton_id, const found_port& found,
                                  const std::stop_token& stop = {});

} // namespace korvane
