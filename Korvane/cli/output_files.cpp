#include "Korvane/cli/output_files.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/archives/extraction_folder.h"
#include "Korvane/jobs/operand_list.h"
#include "Korvane/jobs/output_paths.h"

#include <new>

namespace korvane
{

namespace
{

bool attempt(const model_work& work, const std::string& model, const std::string& output, failure& why)
{
    try
    {
        return work(model, output, why);
    }
    catch (const std::bad_alloc&)
    {
        return fail(why, failure_kind::unreadable, "not enough memory", model);
    }
}

} // namespace

void addOverwriteOption(CLI::App& command, bool& overwrites)
{
    command.add_flag("--overwrite", overwrites,
                     "Write over files in the folder that differ; without it they are named and left as they are");
}

const char* outcomeName(output_outcome outcome)
{
    switch (outcome)
    {
    case output_outcome::unchanged:
        return "unchanged";
    case output_outcome::kept:
        return "kept";
    case output_outcome::written:
        break;
    }
    return "written";
}

bool listOperands(cli_context& context, const std::vector<std::string>& operands, operand_list& list)
{
    failure why;
    const bool is_done = addOperands(context.game(), operands, list, why);
    for (const failure& left_out : list.leftOut())
        context.nameFailure(left_out);
    if (!is_done)
        context.fail(why);
    return is_done;
}

void requireFolder(const operand_list& list, const std::string& output)
{
    if (!list.isOneFile() && list.isNameOfOne(output) && !isFolder(output))
        throw CLI::ValidationError("-o", "several files need a folder, not " + output);
}

void forEachModel(cli_context& context, const std::vector<std::string>& operands, const model_output& output,
                  const model_work& work)
{
    operand_list list(modelOperands(), output.path);
    if (!listOperands(context, operands, list))
        return;
    failure why;
    const std::vector<operand_file>& models = list.files();
    if (list.isOneFile() && !isFolder(output.path))
    {
        if (!attempt(work, models.front().path, output.path, why))
            context.fail(why);
        return;
    }
    requireFolder(list, output.path);
    if (!output.is_dry_run && !createFolder(output.path, why))
        return context.fail(why);
    extraction_folder folder(output.path);
    const auto place = [&](const std::string& name, std::string& target, failure& reason) {
        if (output.is_dry_run)
            return output.path.empty() || folder.locate(name, target, reason);
        return folder.place(name, target, reason);
    };
    std::size_t failed = 0;
    for (std::size_t i = 0; i < models.size(); ++i)
    {
        context.progress("model " + std::to_string(i + 1) + " of " + std::to_string(models.size()) + ": " +
                         displayText(models[i].path));
        failure reason;
        std::string target;
        if (place(models[i].below, target, reason) && attempt(work, models[i].path, target, reason))
            continue;
        if (reason.path == models[i].below) // of the folder's refusals: say which of the models it is
            reason.path = models[i].path;
        if (list.isOneFile())
            return context.fail(reason);
        ++failed;
        context.nameFailure(reason);
    }
    if (failed > 0)
        context.fail({failure_kind::refused,
                      std::to_string(failed) + " of " + std::to_string(models.size()) + " models failed", output.path,
                      0, ""});
}

} // namespace korvane
