// archives, list, extract: the games' archives from the console.

#include "Korvane/cli/commands.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/archives/hidden_copies.h"
#include "Korvane/archives/path_pattern.h"
#include "Korvane/cli/output_files.h"
#include "Korvane/jobs/extract_job.h"

#include <memory>
#include <utility>

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

json fileJson(const pack_file_node& file, const hidden_copies& hidden)
{
    json hides = json::array();
    for (const pack_file_node* const copy : hidden.of(file))
        hides.push_back(displayText(copy->packPath()));
    return {{"path", displayText(file.internalPath())},
            {"archive", displayText(file.packPath())},
            {"size", file.size()},
            {"offset", file.offset()},
            {"compressed", file.compression() != 0},
            {"hides", std::move(hides)}};
}

// Size, path, archive, and those whose copy is hidden.
std::string longLine(const pack_file_node& file, const hidden_copies& hidden)
{
    std::string size = grouped(file.size());
    size.insert(0, size.size() < 13 ? 13 - size.size() : 0, ' ');
    std::string line = size + "  " + terminalText(file.internalPath()) + "  " + terminalText(file.packPath());
    const char* before = "  hides ";
    for (const pack_file_node* const copy : hidden.of(file))
        line += std::exchange(before, ", ") + terminalText(copy->packPath());
    return line;
}

struct list_options
{
    std::string pattern = "*";
    bool is_long = false;
};

void runList(cli_context& context, const list_options& options)
{
    failure why;
    const std::shared_ptr<const game_data> game = context.game().archives(why);
    if (!game)
        return context.fail(why);
    const path_tree& tree = *game->archives();
    const hidden_copies hidden(context.is_json || options.is_long ? game->archives() : nullptr);
    const internal_pattern wanted(options.pattern);
    std::string text = context.is_json ? "[" : "";
    std::size_t count = 0;
    for (const pack_file_node* file : tree.files())
    {
        if (!wanted.matches(file->internalPath()))
            continue;
        if (context.is_json)
            text += (count == 0 ? "" : ",") + fileJson(*file, hidden).dump();
        else
            text += (options.is_long ? longLine(*file, hidden) : terminalText(file->internalPath())) + "\n";
        ++count;
        if (text.size() > 1u << 16)
        {
            context.print(text);
            text.clear();
        }
    }
    context.print(text + (context.is_json ? "]\n" : ""));
    if (count == 0)
        context.note("no file of the archives matches " + terminalText(options.pattern));
}

struct extract_options
{
    std::string path;
    extract_job_options job;
};

void printExtracted(cli_context& context, const std::vector<extracted_file>& files, std::size_t written)
{
    json list = json::array();
    for (const extracted_file& file : files)
        list.push_back({{"internal_path", displayText(file.internal_path)},
                        {"archive", file.archive.empty() ? json() : json(displayText(file.archive))},
                        {"path", file.path.empty() ? json() : json(displayText(file.path))},
                        {"outcome", file.why ? "failed" : outcomeName(file.outcome)},
                        {"reason", file.why ? json(displayText(describe(file.why))) : json()}});
    context.printJson({{"count", written}, {"files", std::move(list)}});
}

void extractOne(cli_context& context, const extract_options& options)
{
    extracted_file file{};
    const bool is_done = extractFile(context.game(), game_path::ofInternal(game_path(options.path).internalPath()),
                                     options.job.folder, file, file.why);
    if (context.is_json)
        printExtracted(context, {file}, is_done ? 1 : 0);
    if (!is_done)
        context.fail(file.why);
}

void extractAll(cli_context& context, const extract_job_options& options)
{
    extract_job_result result;
    failure why;
    if (!extractMatching(context.game(), options, context.workPort(), result, why))
        return context.fail(why);
    if (result.matches == 0 && context.is_json)
        printExtracted(context, {}, 0);
    if (result.matches == 0)
        return context.fail({failure_kind::not_found, "no file matches", options.pattern, 0, ""});
    for (const extracted_file& file : result.files)
        if (!file.why && file.outcome == output_outcome::kept)
            context.nameFailure(keptFailure(file.path));
    if (context.is_json)
        printExtracted(context, result.files, result.written);
    else
        context.print(filesExtracted(result.written) + keptText(result.kept) + "\n");
    if (result.failed > 0)
        context.fail(
            {failure_kind::refused,
             std::to_string(result.failed) + " of " + std::to_string(result.matches) + " files could not be extracted",
             options.folder, 0, ""});
}

} // namespace

void addArchiveCommands(CLI::App& app, cli_context& context)
{
    CLI::App* archives = app.add_subcommand("archives", "List the archives in the order in which they are read");
    context.addJsonOption(*archives);
    archives->callback([&context] { runArchives(context); });

    const auto listing = std::make_shared<list_options>();
    CLI::App* list = app.add_subcommand("list", "List the files of all archives");
    list->add_option("PATTERN", listing->pattern, "Internal paths to list, with * and ? (default: all)");
    list->add_flag("-l", listing->is_long, "With size, archive, and the archives whose copy is hidden");
    context.addJsonOption(*list);
    list->callback([&context, listing] { runList(context, *listing); });

    const auto options = std::make_shared<extract_options>();
    CLI::App* extract = app.add_subcommand("extract", "Write files out of the archives to disk");
    CLI::Option* path = extract->add_option("INTERNAL_PATH", options->path, "One file");
    CLI::Option* match =
        extract->add_option("--match", options->job.pattern, "All files whose path matches, with * and ?");
    match->type_name("PATTERN")->excludes(path);
    extract->add_option("-o,--output", options->job.folder, "The file to write, or with --match the folder")
        ->required()
        ->check(notEmpty());
    addOverwriteOption(*extract, options->job.overwrites);
    context.addJsonOption(*extract);
    extract->callback([&context, options] {
        if (!options->job.pattern.empty())
        {
            requireFolder(options->job.folder);
            return extractAll(context, options->job);
        }
        if (options->path.empty())
            throw CLI::RequiredError("INTERNAL_PATH or --match");
        extractOne(context, *options);
    });
}

} // namespace korvane
