// archives, list, extract: the games' archives from the console.

#include "Korvane/cli/commands.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/archives/path_pattern.h"
#include "Korvane/jobs/extract_job.h"

#include <memory>
#include <unordered_map>

namespace korvane
{

namespace
{

void runArchives(cli_context& context)
{
    failure why;
    const std::shared_ptr<const game_data> game = context.game().archives(why);
    if (!game)
        return context.fail(why);
    const path_tree& tree = *game->archives();
    json list = json::array();
    std::size_t position = 0;
    for (const std::unique_ptr<archive_record>& archive : tree.archives())
    {
        if (context.is_json)
            list.push_back({{"position", position},
                            {"name", displayText(archive->name)},
                            {"path", displayText(archive->path)},
                            {"format", archive->format},
                            {"files", archive->file_count}});
        else
            context.print(std::to_string(position) + "  " + archive->format + "  " +
                          counted(archive->file_count, "file", "files") + "  " + terminalText(archive->path) + "\n");
        ++position;
    }
    if (context.is_json)
        context.printJson(list);
}

using hidden_archives = std::unordered_map<const pack_file_node*, std::vector<const archive_record*>>;

// For each winning file the archives whose copy it overrides, in the order of reading.
hidden_archives hiddenCopies(const path_tree& tree)
{
    hidden_archives hidden;
    for (const std::span<const pack_file_node>& files : tree.entries())
        for (const pack_file_node& file : files)
        {
            const path_node* const node = tree.findStored(file.internalPath());
            if (node && node->file() && node->file() != &file)
                hidden[node->file()].push_back(&file.archive());
        }
    return hidden;
}

json fileJson(const pack_file_node& file, const hidden_archives& hidden)
{
    json hides = json::array();
    if (const auto found = hidden.find(&file); found != hidden.end())
        for (const archive_record* archive : found->second)
            hides.push_back(displayText(archive->path));
    return {{"path", displayText(file.internalPath())},
            {"archive", displayText(file.packPath())},
            {"size", file.size()},
            {"offset", file.offset()},
            {"compressed", file.compression() != 0},
            {"hides", std::move(hides)}};
}

void runList(cli_context& context, const std::string& pattern)
{
    failure why;
    const std::shared_ptr<const game_data> game = context.game().archives(why);
    if (!game)
        return context.fail(why);
    const path_tree& tree = *game->archives();
    const hidden_archives hidden = context.is_json ? hiddenCopies(tree) : hidden_archives();
    std::string text = context.is_json ? "[" : "";
    bool is_first = true;
    for (const pack_file_node* file : tree.files())
    {
        if (!matchesPattern(file->internalPath(), pattern))
            continue;
        if (!context.is_json)
            text += terminalText(file->internalPath()) + "\n";
        else
            text += (is_first ? "" : ",") + fileJson(*file, hidden).dump();
        is_first = false;
        if (text.size() > 1u << 16)
        {
            context.print(text);
            text.clear();
        }
    }
    context.print(text + (context.is_json ? "]\n" : ""));
}

struct extract_options
{
    std::string path;
    extract_job_options job;
};

void extractOne(cli_context& context, const extract_options& options)
{
    const game_path path(options.path);
    failure why;
    if (!extractFile(context.game(), game_path::ofInternal(path.internalPath()), options.job.folder, why))
        context.fail(why);
}

void extractAll(cli_context& context, const extract_job_options& options)
{
    work_port work;
    work.log = [&context](const std::string& line) { context.note(line); };
    work.progress = [&context](const work_progress& step) { context.progress(step.what); };
    extract_job_result result;
    failure why;
    if (!extractMatching(context.game(), options, work, result, why))
        return context.fail(why);
    if (!result.failed.empty())
        return context.fail({failure_kind::refused,
                             std::to_string(result.failed.size()) + " of " + std::to_string(result.matches) +
                                 " files could not be extracted",
                             options.folder, 0, ""});
    if (result.matches == 0)
        return context.fail({failure_kind::not_found, "no file matches", options.pattern, 0, ""});
    context.print(filesExtracted(result.written) + "\n");
}

} // namespace

void addArchiveCommands(CLI::App& app, cli_context& context)
{
    CLI::App* archives = app.add_subcommand("archives", "List the archives in the order in which they are read");
    context.addJsonOption(*archives);
    archives->callback([&context] { runArchives(context); });

    const auto pattern = std::make_shared<std::string>("*");
    CLI::App* list = app.add_subcommand("list", "List the files of all archives");
    list->add_option("PATTERN", *pattern, "Internal paths to list, with * and ? (default: all)");
    context.addJsonOption(*list);
    list->callback([&context, pattern] { runList(context, *pattern); });

    const auto options = std::make_shared<extract_options>();
    CLI::App* extract = app.add_subcommand("extract", "Write files out of the archives to disk");
    CLI::Option* path = extract->add_option("INTERNAL_PATH", options->path, "One file");
    CLI::Option* match =
        extract->add_option("--match", options->job.pattern, "All files whose path matches, with * and ?");
    match->type_name("PATTERN")->excludes(path);
    extract->add_option("-o", options->job.folder, "The file to write, or with --match the folder")
        ->required()
        ->check(notEmpty());
    extract->callback([&context, options] {
        if (!options->job.pattern.empty())
            return extractAll(context, options->job);
        if (options->path.empty())
            throw CLI::RequiredError("INTERNAL_PATH or --match");
        extractOne(context, *options);
    });
}

} // namespace korvane
