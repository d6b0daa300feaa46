#include "Korvane/jobs/search_job.h"

namespace korvane
{

bool searchAnimations(game_source& source, const std::string& skeleton_id, const work_port& work,
                      search_job_result& result, failure& why)
{
    result = {};
    result.game = source.archives(why);
    if (!result.game)
        return false;
    const path_tree& tree = *result.game->archives();
    const entry_list candidates = animationCandidates(tree);
    work.report(0, candidates.size(), "reading the headers of " + std::to_string(candidates.size()) + " animations");
    if (!findAnimations(candidates, skeleton_id, result.animations, why, work.stop))
        return false;
    result.is_stopped = work.isStopped();
    result.skeletons = skeletonEntries(tree, skeleton_id);
    return true;
}

} // namespace korvane
