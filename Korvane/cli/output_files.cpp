#include "Korvane/cli/output_files.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/game_file.h"
#include "Korvane/archives/path_pattern.h"

#include <filesystem>
#include <optional>
#include <set>
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

namespace
{

// The output in a folder; nothing, and the reason, when the model's name is none for a file or taken already.
std::optional<std::string> outputInFolder(const std::string& folder, const std::string& model,
                                          std::set<std::string>& taken, failure& why)
{
    std::string reason;
    const std::optional<std::string> name =
        relativeDiskPath(std::string(fileName(isPackPath(model) ? internalPathOf(model) : model)), reason);
    if (!name)
        fail(why, failure_kind::refused, "refused: " + reason, model);
    else if (!taken.insert(toLower(*name)).second) // in lower case, as Windows compares names
        fail(why, failure_kind::refused, "refused: another model has the same file name", model);
    else
        return toUtf8(toPath(folder) / toPath(*name));
    return std::nullopt;
}

} // namespace

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
    std::set<std::string> taken;
    std::size_t failed = 0;
    for (std::size_t i = 0; i < models.size(); ++i)
    {
        context.progress("model " + std::to_string(i + 1) + " of " + std::to_string(models.size()) + ": " +
                         displayText(models[i]));
        failure reason;
        const std::optional<std::string> target =
            output.empty() ? std::string() : outputInFolder(output, models[i], taken, reason);
        if (target && work(models[i], *target, reason))
            continue;
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
