#pragma once

// The two commands that convert normal maps, as the window gives them: what the pickers say, what is done with what was
// picked, and the line for the status bar. The conversion itself is a worker's (Korvane/jobs/normal_map_job.h).

#include "EASY_GUI/services/user_prompt.h"
#include "Korvane/jobs/normal_map_job.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

struct normal_map_pickers
{
    std::string_view input_title;
    std::string_view output_title;
    std::vector<file_filter> filters; // of both
};
[[nodiscard]] normal_map_pickers normalMapPickers(normal_form target);

// One input goes to a file, several go into a folder: which of the two is to be asked for.
[[nodiscard]] inline bool asksForFolder(const std::vector<std::string>& inputs)
{
    return inputs.size() > 1;
}
// What was picked, paths on the disk; neither is empty. is_forced: also pictures that do not look like normal maps,
// after forceQuestion() was answered.
[[nodiscard]] normal_map_job_options normalMapJob(normal_form target, const std::vector<std::string>& inputs,
                                                  const std::string& output, bool is_forced = false);

// Of a conversion that left pictures alone because they do not look like normal maps of the other form, or have the
// wanted form already: what to ask, whether to convert them all the same. Nothing: there are none. Those pictures are
// result.doubtful, for a second run.
[[nodiscard]] std::optional<std::string> forceQuestion(const normal_map_job_result& result);
// "3 pictures converted to BLUE in C:\out. 1 failed: ..."
[[nodiscard]] std::string normalMapStatus(normal_form target, const normal_map_job_result& result, bool is_stopped);

} // namespace korvane
