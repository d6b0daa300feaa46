// refs, needs: which files name which.

#include "Korvane/cli/commands.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/archives/internal_path.h"
#include "Korvane/archives/pack_cache.h"
#include "Korvane/cli/output_files.h"
#include "Korvane/game/usage_index.h"
#include "Korvane/jobs/needs_job.h"

#include <algorithm>
#include <memory>
#include <optional>

namespace korvane
{

namespace
{

// Beside the cache of the archives; none where that is not used either.
std::optional<usage_store> storeOf(const cli_context& context)
{
    if (context.is_without_cache || !context.data_folders.empty())
        return std::nullopt;
    config_file config;
    config.load(context.config_path.empty() ? config_file::defaultPath() : context.config_path);
    return usage_store::of(config, context.config_path);
}

usage_index usageOf(cli_context& context, const game_data& game)
{
    const std::optional<usage_store> store = storeOf(context);
    failure ignored; // it can be made again
    const usage_index former = store ? store->load(ignored) : usage_index();
    bool is_whole = false;
    work_port work = context.workPort();
    work.progress = [&context](const work_progress& step) {
        context.progress("looking into models and definitions: " + std::to_string(step.done) + " of " +
                         std::to_string(step.total));
    };
    usage_index index = indexUsage(game, former, work, is_whole);
    failure why;
    if (store && index.isOtherThan(former) && !store->write(index, why))
        context.note("the usage index is not kept: " + terminalText(describe(why)));
    for (const std::string& line : index.damaged())
        context.note("left out: " + terminalText(line));
    return index;
}

void runRefs(cli_context& context, const std::vector<std::string>& paths)
{
    failure why;
    const std::shared_ptr<const game_data> game = context.game().archives(why);
    if (!game)
        return context.fail(why);
    const usage_index index = usageOf(context, *game);
    json list = json::array();
    for (const std::string& given : paths)
    {
        const std::string path = normalInternalPath(game_path(given).internalPath());
        const std::vector<file_user> users = index.usersOf(*game, path);
        json used_by = json::array();
        std::string text = paths.size() > 1 ? terminalText(path) + ":\n" : "";
        for (const file_user& each : users)
        {
            used_by.push_back({{"path", displayText(each.user->internalPath())},
                               {"archive", displayText(each.user->packPath())},
                               {"as", nameOf(each.as)}});
            text += terminalText(each.user->internalPath()) + "  " + std::string(nameOf(each.as)) + "  " +
                    terminalText(each.user->packPath()) + "\n";
        }
        list.push_back({{"path", displayText(path)}, {"used_by", std::move(used_by)}});
        if (!context.is_json)
            context.print(text);
        if (!game->find(path))
            context.note(terminalText(path) + ": no archive holds this file");
        else if (users.empty())
            context.note(terminalText(path) + ": no model and no definition names it");
    }
    if (context.is_json)
        context.printJson(list);
}

std::string_view nameOf(use_kind kind)
{
    constexpr std::string_view names[] = {"texture", "skeleton", "model", "definition"};
    return names[static_cast<std::size_t>(kind)];
}

void printNeeds(cli_context& context, const needs_result& result)
{
    json list = json::array();
    std::string text;
    for (const needed_file& file : result.files)
    {
        const pack_file_node* const entry = file.found.entry();
        list.push_back({{"path", displayText(file.path)},
                        {"kind", nameOf(file.kind)},
                        {"archive", entry != nullptr ? json(displayText(entry->packPath())) : json()},
                        {"missing", !file.found}});
        text += terminalText(file.path) + "  " + std::string(nameOf(file.kind)) + "  " +
                (entry != nullptr ? terminalText(entry->packPath())
                 : file.found     ? terminalText(file.found.diskPath())
                                  : "MISSING, named by " + terminalText(file.needed_by)) +
                "\n";
    }
    if (context.is_json)
        context.printJson(list);
    else
        context.print(text);
}

void runNeeds(cli_context& context, const std::vector<std::string>& operands)
{
    operand_list list(definitionOperands());
    if (!listOperands(context, operands, list))
        return;
    failure why;
    const std::shared_ptr<const game_data> game = context.game().archivesOrDisk(why);
    if (!game)
        return context.fail(why);
    std::vector<game_path> files;
    for (const operand_file& file : list.files())
        files.emplace_back(file.path);
    needs_result result;
    if (!findNeeds(*game, files, context.workPort(), result, why))
        return context.fail(why);
    printNeeds(context, result);
    for (const failure& damage : result.damaged)
        context.nameFailure(damage);
    const auto missing = static_cast<std::size_t>(
        std::count_if(result.files.begin(), result.files.end(), [](const needed_file& each) { return !each.found; }));
    if (missing > 0)
        context.fail({failure_kind::not_found,
                      std::to_string(missing) + " of " + counted(result.files.size(), "file", "files") +
                          (missing == 1 ? " is missing" : " are missing"),
                      {},
                      0,
                      ""});
    else if (!result.isWhole())
        context.fail({failure_kind::refused, "not all files could be read", {}, 0, ""});
}

} // namespace

void addUsageCommands(CLI::App& app, cli_context& context)
{
    const auto paths = std::make_shared<std::vector<std::string>>();
    CLI::App* refs = app.add_subcommand("refs", "List the models and definitions of the archives that name a file");
    refs->add_option("PATH", *paths, "Internal paths of textures, models, definitions or skeletons")->required();
    context.addJsonOption(*refs);
    refs->callback([&context, paths] { runRefs(context, *paths); });

    const auto operands = std::make_shared<std::vector<std::string>>();
    CLI::App* needs = app.add_subcommand("needs", "List all files that a model or a figure needs, and what is missing");
    needs
        ->add_option("FILE", *operands,
                     "Models or variant mesh definitions, folders, or patterns with * and ?; on disk, or pack: and an "
                     "internal path or pattern")
        ->required();
    context.addJsonOption(*needs);
    needs->callback([&context, operands] { runNeeds(context, *operands); });
}

} // namespace korvane
