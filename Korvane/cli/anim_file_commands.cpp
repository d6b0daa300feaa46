// anim dump, bone-table, search: texts made of an animation, and which files belong to a skeleton.

#include "Korvane/cli/anim_commands.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/jobs/anim_text_job.h"
#include "Korvane/jobs/search_job.h"

namespace korvane
{

namespace
{

struct output_options
{
    std::string anim;
    std::string output;
};

void runDump(cli_context& context, const output_options& options)
{
    failure why;
    if (!dumpAnim(context.game(), options.anim, options.output, why))
        context.fail(why);
}

void runBoneTable(cli_context& context, const output_options& options)
{
    failure why;
    if (!tabulateBones(context.game(), options.anim, options.output, why))
        context.fail(why);
}

bool isOverridden(const path_tree& tree, const pack_file_node& entry)
{
    const path_node* const winner = tree.find(entry.internalPath());
    return winner && winner->file() != &entry;
}

json entriesJson(const path_tree& tree, const entry_list& entries)
{
    json list = json::array();
    for (const pack_file_node* entry : entries)
        list.push_back({{"path", displayText(entry->internalPath())},
                        {"archive", displayText(entry->packPath())},
                        {"overridden", isOverridden(tree, *entry)}});
    return list;
}

std::string entriesText(const path_tree& tree, const std::string& title, const entry_list& entries)
{
    std::size_t width = 0;
    for (const pack_file_node* entry : entries)
        width = std::max(width, terminalText(entry->internalPath()).size());
    std::string text = title + ": " + std::to_string(entries.size()) + "\n";
    for (const pack_file_node* entry : entries)
    {
        std::string path = terminalText(entry->internalPath());
        path.resize(width, ' ');
        text += "  " + path + "  " + terminalText(entry->archive().name) +
                (isOverridden(tree, *entry) ? "  (overridden)" : "") + "\n";
    }
    return text;
}

void runSearch(cli_context& context, const std::string& skeleton_id)
{
    failure why;
    work_port work;
    work.progress = [&context](const work_progress& step) { context.progress(step.what); };
    search_job_result found;
    if (!searchAnimations(context.game(), skeleton_id, work, found, why))
        return context.fail(why);
    const path_tree& tree = *found.game->archives();
    if (context.is_json)
        return context.printJson(
            {{"skeletons", entriesJson(tree, found.skeletons)}, {"animations", entriesJson(tree, found.animations)}});
    context.print(entriesText(tree, "skeletons", found.skeletons) + entriesText(tree, "animations", found.animations));
}

void addOutputCommand(CLI::App& anim, cli_context& context, const std::string& name, const std::string& about,
                      void (*run)(cli_context&, const output_options&))
{
    const auto options = std::make_shared<output_options>();
    CLI::App* command = anim.add_subcommand(name, about);
    command->add_option("ANIM", options->anim, "The file: a path on disk, or pack: and an internal path")
        ->required()
        ->check(notEmpty());
    command->add_option("-o,--output", options->output, "The file to write")
        ->type_name("FILE")
        ->required()
        ->check(notEmpty());
    command->callback([options, run, &context] { run(context, *options); });
}

} // namespace

void addAnimFileCommands(CLI::App& anim, cli_context& context)
{
    addOutputCommand(anim, context, "dump", "Write an animation's rotations, frame by frame, as text", runDump);
    addOutputCommand(anim, context, "bone-table", "Write the kind and the order of every bone as text", runBoneTable);

    const auto skeleton_id = std::make_shared<std::string>();
    CLI::App* search =
        anim.add_subcommand("search", "The archives' files for a skeleton and the animations made for it");
    search->add_option("SKELETON_ID", *skeleton_id, "The skeleton's name, as models and animations spell it")
        ->required()
        ->check(notEmpty());
    context.addJsonOption(*search);
    search->callback([skeleton_id, &context] { runSearch(context, *skeleton_id); });
}

} // namespace korvane
