#include "Korvane/cli/commands.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/cli/output_files.h"
#include "Korvane/jobs/textures_job.h"

#include <memory>

namespace korvane
{

namespace
{

struct textures_options
{
    std::vector<std::string> operands;
    textures_job_options job;
    std::string form;
    std::string normals;
};

void report(cli_context& context, const textures_job_result& result)
{
    for (const std::string& path : result.textures.missing)
        context.nameFailure(terminalText(path) + ": in no archive, and not on the disk around the models");
    for (const std::string& path : result.textures.empty)
        context.nameFailure(terminalText(path) + ": empty in the archive that counts");
    if (result.failures.size() > 1) // a single one is what the program ends with
        for (const failure& why : result.failures)
            context.nameFailure(why);
    for (const extracted_texture& file : result.textures.kept)
        context.nameFailure(keptFailure(file.path));
    if (!context.is_json)
    {
        std::string text = extractedText(result.textures.files.size());
        text.insert(text.size() - 1, keptText(result.textures.kept.size())); // before the full stop
        return context.print(text + "\n");
    }
    const auto texts = [](const std::vector<std::string>& paths) {
        json list = json::array();
        for (const std::string& path : paths)
            list.push_back(displayText(path));
        return list;
    };
    json files = json::array();
    for (const extracted_texture& file : result.textures.files)
        files.push_back({{"internal_path", displayText(file.internal_path)},
                         {"archive", file.archive.empty() ? json() : json(displayText(file.archive))},
                         {"source", file.source.empty() ? json() : json(displayText(file.source))},
                         {"path", displayText(file.path)},
                         {"normal_map", file.is_normal_map},
                         {"outcome", outcomeName(file.outcome)}});
    json kept = json::array();
    for (const extracted_texture& file : result.textures.kept)
        kept.push_back({{"internal_path", displayText(file.internal_path)}, {"path", displayText(file.path)}});
    json failed = json::array();
    for (const failure& why : result.failures)
        failed.push_back({{"path", displayText(why.path)}, {"reason", displayText(describe(why))}});
    context.printJson({{"count", result.textures.files.size()},
                       {"files", std::move(files)},
                       {"kept", std::move(kept)},
                       {"missing", texts(result.textures.missing)},
                       {"empty", texts(result.textures.empty)},
                       {"failed", std::move(failed)}});
}

void runTextures(cli_context& context, const textures_job_options& options)
{
    textures_job_result result;
    failure why;
    if (!extractModelTextures(context.game(), options, context.workPort(), result, why))
        return context.fail(why);
    report(context, result);
    if (result.failures.size() == 1)
        context.fail(result.failures.front());
    else if (!result.failures.empty())
        context.fail({failure_kind::refused,
                      counted(result.failures.size(), "model or texture", "models or textures") + " failed",
                      options.extraction.folder, 0, ""});
}

} // namespace

void addTexturesCommand(CLI::App& app, cli_context& context)
{
    const auto options = std::make_shared<textures_options>();
    CLI::App* command = app.add_subcommand(
        "textures", "Extract the textures that models name out of the archives, or from the disk around them");
    command
        ->add_option("MODEL", options->operands,
                     "Models, variant mesh definitions with all their models, folders, or patterns with * and ?; on "
                     "disk, or pack: and an internal path or pattern")
        ->required();
    command->add_option("-o,--output", options->job.extraction.folder, "The folder below which they come to lie")
        ->required()
        ->type_name("DIR")
        ->check(notEmpty());
    command->add_flag("--flat", options->job.extraction.is_flat,
                      "All in this folder, without those of the internal paths");
    command->add_option("--as", options->form, "Write pictures instead of DDS files: png or tga")
        ->type_name("KIND")
        ->check(CLI::IsMember({"png", "tga"}));
    command->add_option("--normal", options->normals, "blue: turn the games' normal maps into ordinary ones")
        ->type_name("FORM")
        ->check(CLI::IsMember({"blue"}));
    addOverwriteOption(*command, options->job.extraction.overwrites);
    context.addJsonOption(*command);
    command->callback([&context, options] {
        if (!options->form.empty())
            options->job.extraction.form = pictureKind("." + options->form);
        options->job.extraction.makes_normals_blue = !options->normals.empty();
        requireFolder(options->job.extraction.folder);
        operand_list list(definitionOperands());
        if (!listOperands(context, options->operands, list))
            return;
        for (const operand_file& file : list.files())
            options->job.models.push_back(file.path);
        runTextures(context, options->job);
    });
}

} // namespace korvane
