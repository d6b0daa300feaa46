#pragma once

// Where commands write: a file, or for several operands files in a folder.

#include "Korvane/cli/cli_context.h"

#include <functional>
#include <string>
#include <vector>

namespace korvane
{

// Does the work for each model, a path on disk or pack: and an internal path. The output is a file for a single model,
// else a folder, which is created and where each file gets its model's name. A dry run creates nothing, and refuses
// what the run would refuse. Of several models one that fails, also for want of memory, is named and the others go on;
// the failure of all is told at the end. work writes its output itself.
struct model_output
{
    std::string path; // empty in a dry run: it is not known yet
    bool is_dry_run = false;
};
using model_work = std::function<bool(const std::string& model, const std::string& output, failure& why)>;
void forEachModel(cli_context& context, const std::vector<std::string>& models, const model_output& output,
                  const model_work& work);

} // namespace korvane
