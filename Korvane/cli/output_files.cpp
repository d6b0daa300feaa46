#include "Korvane/cli/output_files.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/archives/extraction_folder.h"
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

void forEachModel(cli_context& context, const std::vector<std::string>& models, const model_output& output,
                  const model_work& work)
{
    failure why;
    if (models.size() == 1 && !isFolder(output.path))
    {
        if (!attempt(work, models.front(), output.path, why))
            context.fail(why);
        return;
    }
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
                         displayText(models[i]));
        failure reason;
        std::string target;
        if (place(std::string(fileName(models[i])), target, reason) && attempt(work, models[i], target, reason))
            continue;
        if (reason.path == fileName(models[i])) // of the folder's refusals: say which of the models it is
            reason.path = models[i];
        if (models.size() == 1)
            return context.fail(reason);
        ++failed;
        context.note(displayText(describe(reason)));
    }
    if (failed > 0)
        context.fail({failure_kind::refused,
                      std::to_string(failed) + " of " + std::to_string(models.size()) + " models failed", output.path,
                      0, ""});
}

} // namespace korvane
