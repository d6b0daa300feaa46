#pragma once

// What a folder holds that is, or may become, a data folder or a mod folder. Looks at the disk, which may be slow: for
// a worker.

#include <cstddef>
#include <stop_token>
#include <string>

namespace korvane
{

struct folder_look
{
    std::string folder; // as the disk spells it, whole, with a separator at its end
    bool is_there = false;
    std::string problem; // why it cannot be listed; empty: it can
    std::size_t archives = 0;
    bool has_rome2_models = false; // archives of models that a certain game has
};
[[nodiscard]] folder_look lookAtFolder(const std::string& folder, const std::stop_token& stop = {});

// For a folder that a person has chosen as a data folder: of a game's root, which holds no archives itself, its "data".
[[nodiscard]] folder_look lookForArchives(const std::string& chosen, const std::stop_token& stop = {});

} // namespace korvane
