#include "Korvane/cli/commands.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/cli/output_files.h"
#include "Korvane/cli/picture_output.h"
#include "Korvane/jobs/normal_map_job.h"

#include <memory>

namespace korvane
{

namespace
{

struct direction_options
{
    std::vector<std::string> operands;
    normal_map_job_options job;
};

void runConversion(cli_context& context, const direction_options& options)
{
    normal_map_job_options job = options.job;
    job.force_hint = "; --force converts it all the same";
    if (!takePictures(context, options.operands, {".tga", ".png"}, job.batch))
        return;
    normal_map_job_result result;
    failure why;
    const bool is_done = convertNormalMaps(context.game(), job, context.workPort(), result, why);
    json files = json::array();
    for (const converted_picture& each : result.files)
        files.push_back({{"input", displayText(each.input)},
                         {"path", displayText(each.path)},
                         {"width", each.width},
                         {"height", each.height},
                         {"outcome", outcomeName(each.outcome)}});
    reportPictures(context, {{"files", std::move(files)}}, result.files.size(), "picture converted",
                   "pictures converted", result.left, is_done ? failure() : why);
}

void addDirection(CLI::App& command, cli_context& context, const std::string& name, const std::string& description,
                  normal_form form)
{
    const auto options = std::make_shared<direction_options>();
    options->job.form = form;
    CLI::App* direction = command.add_subcommand(name, description);
    direction->add_option("IN", options->operands, picture_operands_help)->required();
    direction
        ->add_option("-o,--output", options->job.batch.output,
                     "The file to write, .tga or .png; with several pictures, or if it is one, a folder")
        ->required()
        ->check(notEmpty());
    addOverwriteOption(*direction, options->job.batch.overwrites);
    direction->add_flag("--force", options->job.is_forced, "Convert also what does not look like such a normal map");
    context.addJsonOption(*direction);
    direction->callback([&context, options] { runConversion(context, *options); });
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
