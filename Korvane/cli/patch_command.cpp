// patch: models of version 6 become models of version 7.

#include "Korvane/cli/commands.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/cli/output_files.h"
#include "Korvane/jobs/operands.h"
#include "Korvane/models/rmv2_writer.h"

#include <memory>
#include <utility>

namespace korvane
{

namespace
{

struct patch_options
{
    std::vector<std::string> models;
    std::string output;
    bool is_repair = false;
};

bool patchModel(cli_context& context, bool is_repair, const std::string& operand, const std::string& output, json& row,
                failure& why)
{
    memory_file bytes;
    if (!readModelBytes(context.game(), operand, bytes, why))
        return false;
    if (isVersion7OverVersion6(bytes.bytes()))
    {
        if (!is_repair)
            return fail(why, failure_kind::refused,
                        "This RigidModel file is already version 7! But its LOD headers are those of version 6: with "
                        "--repair a version 7 file is made of it",
                        operand);
        repairVersionWord(bytes);
    }
    rmv2_file model;
    if (!model.openFromMemory(std::move(bytes), operand, why) || !patchToVersion7(model, output, why))
        return false;
    if (!context.is_json)
        context.print(terminalText(output) + ": version 7\n");
    row["outcome"] = "written";
    return true;
}

} // namespace

void addPatchCommand(CLI::App& app, cli_context& context)
{
    const auto options = std::make_shared<patch_options>();
    CLI::App* command = app.add_subcommand("patch", "Make models of version 6 models of version 7");
    command->add_option("MODEL", options->models, model_operands_help)->required();
    command->add_option("-o,--output", options->output, "The file to write, or for several models the folder")
        ->type_name("OUT")
        ->required()
        ->check(notEmpty());
    command->add_flag("--repair", options->is_repair,
                      "Take models that say version 7 over the LOD headers of version 6, too");
    context.addJsonOption(*command);
    command->callback([options, &context] {
        forEachModel(context, options->models, {options->output},
                     [&](const std::string& model, const std::string& output, json& row, failure& why) {
                         return patchModel(context, options->is_repair, model, output, row, why);
                     });
    });
}

} // namespace korvane
