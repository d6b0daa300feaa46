#pragma once

// Which skeleton files and which animations of the archives belong to a skeleton's id (anim_search.h).

#include "EASY_GUI/services/work_port.h"
#include "Korvane/animation/anim_search.h"
#include "Korvane/game/game_source.h"

#include <memory>
#include <string>

namespace korvane
{

struct search_job_result
{
    std::shared_ptr<const game_data> game; // keeps the entries alive
    entry_list skeletons;
    entry_list animations;
    bool is_stopped = false; // some may be missing
};

// False, with the reason, when the archives cannot be loaded, or one of them cannot be read.
[[nodiscard]] bool searchAnimations(game_source& source, const std::string& skeleton_id, const work_port& work,
                                    search_job_result& result, failure& why);

} // namespace korvane
