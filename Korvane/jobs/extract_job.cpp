#include "Korvane/jobs/extract_job.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/extraction_folder.h"
#include "Korvane/archives/internal_path.h"
#include "Korvane/archives/mod_folder.h"
#include "Korvane/archives/path_pattern.h"

#include <utility>

namespace korvane
{

namespace
{

std::string archiveOf(const game_file& file)
{
    return file.entry() ? file.entry()->packPath() : std::string();
}

bool extractBelow(const std::shared_ptr<const path_tree>& tree, const pack_file_node& entry,
                  const extract_job_options& options, extraction_folder& folder, extracted_file& file, failure& why)
{
    if (!entry.archive().is_folder)
        file.archive = entry.packPath();
    else if (diskPathOf(entry).empty())
        return fail(why, failure_kind::not_found, "the file is gone", file.internal_path);
    const game_file found{std::shared_ptr<const pack_file_node>(tree, &entry)};
    return folder.place(entry.internalPath(), file.path, why) &&
           writeOutput(
               file.path, [&found] { return found.pieces(); }, options.overwrites, file.outcome, why);
}

} // namespace

bool extractFile(game_source& source, const game_path& path, const std::string& output, extracted_file& file,
                 failure& why)
{
    const std::shared_ptr<const game_data> game = source.gameFor(path, why);
    if (!game)
        return false;
    const game_file found = game->find(path.internalPath());
    file.internal_path = found.entry() ? found.path() : normalInternalPath(path.internalPath());
    file.path = output;
    file.archive = archiveOf(found);
    memory_file nothing;
    return found ? writeWholeFile(output, found.pieces(), why) : game->read(path, nothing, why); // which says why not
}

bool extractMatching(game_source& source, const extract_job_options& options, const work_port& work,
                     extract_job_result& result, failure& why)
{
    result = {};
    const std::shared_ptr<const game_data> game = source.archives(why);
    if (!game)
        return false;
    std::vector<const pack_file_node*> files = game->archives()->files();
    const internal_pattern pattern(options.pattern);
    std::erase_if(files, [&pattern](const pack_file_node* file) { return !pattern.matches(file->internalPath()); });
    extractEntries(game->archives(), files, options, work, result);
    return true;
}

void extractEntries(const std::shared_ptr<const path_tree>& tree, std::span<const pack_file_node* const> files,
                    const extract_job_options& options, const work_port& work, extract_job_result& result)
{
    result = {};
    result.matches = files.size();
    extraction_folder folder(options.folder, options.is_flat ? extraction_layout::flat : extraction_layout::by_path);
    for (std::size_t i = 0; i < files.size() && !work.isStopped(); ++i)
    {
        extracted_file file{std::string(files[i]->internalPath())};
        if (!extractBelow(tree, *files[i], options, folder, file, file.why))
        {
            work.nameFailure(file.why);
            ++result.failed;
        }
        else if (file.outcome == output_outcome::kept)
            ++result.kept;
        else
            ++result.written;
        result.files.push_back(std::move(file));
        work.report(i + 1, files.size(), filesExtracted(result.written));
    }
}

std::string filesExtracted(std::size_t count)
{
    return counted(count, "file") + " extracted";
}

} // namespace korvane
