#include "Korvane/cli/commands.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/jobs/normal_map_job.h"
#include "Korvane/jobs/output_paths.h"
#include "Korvane/textures/picture_file.h"

#include <memory>

namespace korvane
{

namespace
{

void runConversion(cli_context& context, const normal_map_job_options& options)
{
    work_port work;
    work.log = context.notePort();
    work.progress = [&context](const work_progress& step) { context.progress(step.what); };
    normal_map_job_result result;
    failure why;
    if (!convertNormalMaps(context.game(), options, work, result, why))
        return context.fail(why);
    json files = json::array(), failed = json::array();
    for (const converted_picture& each : result.files)
        files.push_back(
            {{"input", displayText(each.input)}, {"path", each.path}, {"width", each.width}, {"height", each.height}});
    for (const failed_picture& each : result.failed)
        failed.push_back({{"input", displayText(each.input)}, {"reason", displayText(describe(each.why))}});
    if (context.is_json)
        context.printJson({{"files", std::move(files)}, {"failed", std::move(failed)}});
    else if (!result.files.empty())
        context.print(counted(result.files.size(), "picture") + " converted\n");
    if (!result.failed.empty())
        context.fail({failure_kind::refused,
                      std::to_string(result.failed.size()) + " of " + std::to_string(options.inputs.size()) +
                          " pictures could not be converted",
                      options.output, 0, ""});
}

void addDirection(CLI::App& command, cli_context& context, const std::string& name, const std::string& description,
                  normal_form form)
{
    const auto options = std::make_shared<normal_map_job_options>();
    CLI::App* direction = command.add_subcommand(name, description);
    direction->add_option("IN", options->inputs, "Pictures: Targa, PNG, or DDS; on disk, or pack: and an internal path")
        ->required();
    direction
        ->add_option("-o", options->output,
                     "The file to write, .tga or .png; with several pictures, or if it is one, a folder")
        ->required()
        ->check(notEmpty());
    context.addJsonOption(*direction);
    direction->callback([&context, options, form] {
        const bool is_picture = pictureKind(options->output) && !isFolder(options->output);
        if (options->inputs.size() > 1 && is_picture)
            throw CLI::ValidationError("-o", "several pictures need a folder, one file is written for each");
        if (options->inputs.size() > 1 && !isFolder(options->output))
            options->output += '/';
        if (!is_picture && !isFolder(options->output))
            throw CLI::ValidationError("-o",
                                       "the name must end in .tga or .png, or be that of a folder: " + options->output);
        options->form = form;
        runConversion(context, *options);
    });
}

} // namespace

void addNormalMapCommand(CLI::App& app, cli_context& context)
{
    CLI::App* command =
        app.add_subcommand("normal-map", "Convert normal maps between the games' form and the usual one");
    command->require_subcommand(1);
    addDirection(*command, context, "to-orange",
                 "From X, Y, Z in red, green, blue to the games' Y in green, X in alpha", normal_form::orange);
    addDirection(*command, context, "to-blue", "From the games' Y in green, X in alpha to X, Y, Z in red, green, blue",
                 normal_form::blue);
}

} // namespace korvane
