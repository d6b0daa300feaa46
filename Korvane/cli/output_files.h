#pragma once

// What batch commands read, and where they write: a file, or for several operands files in a folder.

#include "Korvane/cli/cli_context.h"
#include "Korvane/jobs/operand_list.h"
#include "Korvane/jobs/output_paths.h"

#include <functional>
#include <string>
#include <vector>

namespace korvane
{

constexpr const char* model_operands_help =
    "Models, folders, or patterns with * and ?; on disk, or pack: and an internal path or pattern";

// --overwrite of the commands that write below a folder (output_paths.h).
void addOverwriteOption(CLI::App& command, bool& overwrites);
[[nodiscard]] const char* outcomeName(output_outcome outcome); // in JSON

// Fills the list with the operands of a command (operand_list.h). False when that failed, which is said then.
[[nodiscard]] bool listOperands(cli_context& context, const std::vector<std::string>& operands, operand_list& list);
// A wrong command line when a folder is wanted and the output is called like a file.
void requireFolder(const std::string& output);

// Does the work for each model that the operands stand for. The output is a file for a single one that is named itself,
// else a folder, which is created and where each file has its place below it (operand_file). A dry run creates nothing,
// and refuses what the run would refuse. Of several models one that fails, also for want of memory, is named and the
// others go on; the failure of all is told at the end. work writes its output itself, and puts what JSON
// says of it into row: its "outcome" ("written", "unchanged", "would change"), and more.
struct model_output
{
    std::string path; // empty in a dry run: it is not known yet
    bool is_dry_run = false;
};
using model_work = std::function<bool(const std::string& model, const std::string& output, json& row, failure& why)>;
void forEachModel(cli_context& context, const std::vector<std::string>& operands, const model_output& output,
                  const model_work& work);

} // namespace korvane
