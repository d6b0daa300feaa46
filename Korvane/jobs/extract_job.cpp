#include "Korvane/jobs/extract_job.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/extraction_folder.h"
#include "Korvane/archives/pack_entry.h"
#include "Korvane/archives/path_pattern.h"

#include <utility>

namespace korvane
{

namespace
{

bool extractEntry(const pack_file_node& file, extraction_folder& folder, failure& why)
{
    std::string path;
    memory_file bytes;
    return folder.place(file.internalPath(), path, why) && readEntry(file, bytes, why) &&
           writeWholeFile(path, bytes.bytes(), why);
}

} // namespace

bool extractFile(game_source& source, const game_path& path, const std::string& output, failure& why)
{
    memory_file bytes;
    return source.read(path, bytes, why) && writeWholeFile(output, bytes.bytes(), why);
}

bool extractMatching(game_source& source, const extract_job_options& options, const work_port& work,
                     extract_job_result& result, failure& why)
{
    result = {};
    const std::shared_ptr<const game_data> game = source.archives(why);
    if (!game)
        return false;
    std::vector<const pack_file_node*> files = game->archives()->files();
    std::erase_if(files, [&options](const pack_file_node* file) {
        return !matchesPattern(file->internalPath(), options.pattern);
    });
    result.matches = files.size();
    extraction_folder folder(options.folder);
    for (std::size_t i = 0; i < files.size() && !work.isStopped(); ++i)
    {
        failure reason;
        if (extractEntry(*files[i], folder, reason))
            ++result.written;
        else
        {
            tell(work.log, displayText(describe(reason)));
            result.failed.push_back(std::move(reason));
        }
        work.report(i + 1, files.size(), filesExtracted(result.written));
    }
    return true;
}

std::string filesExtracted(std::size_t count)
{
    return counted(count, "file") + " extracted";
}

} // namespace korvane
