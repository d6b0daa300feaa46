#include "Korvane/cli/output_files.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/extraction_folder.h"

#include <filesystem>
#include <system_error>

namespace korvane
{

bool isFolder(const std::string& path)
{
    std::error_code ignored;
    return path.ends_with('/') || path.ends_with('\\') || std::filesystem::is_directory(toPath(path), ignored);
}

bool createFolder(const std::string& path, failure& why)
{
    std::error_code error;
    std::filesystem::create_directories(toPath(path), error);
    return !error || fail(why, failure_kind::unwritable, "the folder cannot be created: " + error.message(), path);
}

void forEachModel(cli_context& context, const std::vector<std::string>& models, const std::string& output,
                  const model_work& work)
{
    failure why;
    if (models.size() == 1 && !isFolder(output))
    {
        if (!work(models.front(), output, why))
            context.fail(why);
        return;
    }
    if (!output.empty() && !createFolder(output, why))
        return context.fail(why);
    extraction_folder folder(output);
    std::size_t failed = 0;
    for (std::size_t i = 0; i < models.size(); ++i)
    {
        context.progress("model " + std::to_string(i + 1) + " of " + std::to_string(models.size()) + ": " +
                         displayText(models[i]));
        failure reason;
        std::string target;
        if ((output.empty() || folder.place(fileName(models[i]), target, reason)) && work(models[i], target, reason))
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
                      std::to_string(failed) + " of " + std::to_string(models.size()) + " models failed", output, 0,
                      ""});
}

} // namespace korvane
