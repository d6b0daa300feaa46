#include "Korvane/cli/commands.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/archives/extraction_folder.h"
#include "Korvane/cli/output_files.h"
#include "Korvane/jobs/export_job.h"
#include "Korvane/jobs/output_paths.h"

#include <map>
#include <memory>

namespace korvane
{

namespace
{

// Of one model, or of several one after the other.
class export_report
{
public:
    void add(const std::string& model, const export_job_result& result)
    {
        for (const exported_file& file : result.files)
            m_files.push_back(
                {{"path", displayText(file.path)},
                 {"model", displayText(model)},
                 {"animation", file.animations.empty() ? json(nullptr) : json(displayText(file.animations.front()))},
                 {"animations", shown(file.animations)},
                 {"bones", file.bones},
                 {"meshes", file.meshes},
                 {"points", file.points},
                 {"triangles", file.triangles},
                 {"frames", file.frames},
                 {"frame_rate", file.frame_rate},
                 {"take_stop", file.take_stop_seconds}});
        for (const failed_export& each : result.failed)
            addFailure(model, displayText(each.animation), each.why);
        for (const auto& [internal_path, path] : result.textures)
            m_textures.emplace(internal_path, path);
        m_warnings.insert(m_warnings.end(), result.warnings.begin(), result.warnings.end());
    }
    void addFailure(const std::string& model, const json& animation, const failure& why)
    {
        m_failed.push_back(
            {{"model", displayText(model)}, {"animation", animation}, {"reason", displayText(describe(why))}});
    }
    json document() const
    {
        json textures = json::array();
        for (const auto& [internal_path, path] : m_textures)
            textures.push_back({{"internal_path", displayText(internal_path)},
                                {"path", path.empty() ? json(nullptr) : json(displayText(path))}});
        return {{"files", m_files}, {"failed", m_failed}, {"textures", std::move(textures)}, {"warnings", m_warnings}};
    }

private:
    static json shown(const std::vector<std::string>& texts)
    {
        json list = json::array();
        for (const std::string& text : texts)
            list.push_back(displayText(text));
        return list;
    }

    json m_files = json::array(), m_failed = json::array();
    std::map<std::string, std::string> m_textures; // by internal path
    std::vector<std::string> m_warnings;
};

void exportModel(cli_context& context, const export_job_options& options)
{
    export_job_result result;
    failure why;
    if (!runExport(context.game(), options, context.workPort(), result, why))
        return context.fail(why);
    export_report report;
    report.add(options.model, result);
    if (context.is_json)
        context.printJson(report.document());
    if (const std::size_t failed = result.failed.size(); failed > 0)
        context.fail(
            {failure_kind::refused,
             std::to_string(failed) + " of " + std::to_string(result.wanted) + " animations could not be exported",
             options.output, 0, ""});
}

// Each into the folder below the output's where it belongs.
void exportModels(cli_context& context, const export_job_options& options, const std::vector<operand_file>& models)
{
    extraction_folder folder(options.output);
    export_report report;
    std::size_t failed = 0;
    for (const operand_file& model : models)
    {
        export_job_options its = options;
        its.model = model.path;
        export_job_result result;
        failure why;
        if (folder.locate(model.below, its.output, why))
        {
            its.output.resize(its.output.size() - fileName(its.output).size());
            if (runExport(context.game(), its, context.workPort(), result, why))
            {
                report.add(model.path, result);
                continue;
            }
        }
        ++failed;
        context.nameFailure(why);
        report.addFailure(model.path, nullptr, why);
    }
    if (context.is_json)
        context.printJson(report.document());
    if (failed > 0)
        context.fail({failure_kind::refused,
                      std::to_string(failed) + " of " + std::to_string(models.size()) + " models could not be exported",
                      options.output, 0, ""});
}

// What the command line's options cannot say of each other by themselves.
void checkOptions(const export_job_options& options, bool is_one_model)
{
    if (options.texture_folder.empty() && (options.texture_form || options.makes_normals_blue))
        throw CLI::RequiresError(options.texture_form ? "--as" : "--normal", "--textures");
    if (options.makes_normals_blue && !options.texture_form)
        throw CLI::RequiresError("--normal", "--as");
    if (!options.animations.empty() && !is_one_model)
        throw CLI::ValidationError("--anim", "animations go with one model");
    const bool is_file = isExportFile(options.output) && !isFolder(options.output);
    const bool is_gltf =
        is_file && !endsWithIgnoringCase(options.output, ".fbx") && !endsWithIgnoringCase(options.output, ".dae");
    const bool is_one_file = is_one_model && (options.animations.size() < 2 || is_gltf);
    if (!is_one_file && is_file)
        throw CLI::ValidationError("-o", "several " + std::string(is_one_model ? "animations" : "models") +
                                             " need a folder, one file is written for each");
    if (is_file && options.folder_format && !endsWithIgnoringCase(options.output, "." + *options.folder_format))
        throw CLI::ValidationError("--format", "the file's name says another format: " + options.output);
    if ((is_one_file || isNamedLikeFile(options.output)) && !is_file && !isFolder(options.output))
        throw CLI::ValidationError("-o", "the name must end in .fbx, .dae, .glb or .gltf, or be that of a folder: " +
                                             options.output);
}

struct console_export_options
{
    std::vector<std::string> operands;
    export_job_options job;
    std::string lod = "0", form, normals;
};

// "all", or a number that wholeNumber() has looked at.
std::optional<std::size_t> levelOf(const std::string& text)
{
    return text == "all" ? std::nullopt : std::optional<std::size_t>(std::stoull(text));
}

void runCommand(cli_context& context, console_export_options& options)
{
    options.job.lod = levelOf(options.lod);
    if (!options.form.empty())
        options.job.texture_form = pictureKind("." + options.form);
    options.job.makes_normals_blue = !options.normals.empty();
    options.job.keeps_normals_down = options.normals == "blue-down";
    operand_list list(modelOperands(), options.job.output);
    if (!listOperands(context, options.operands, list))
        return;
    checkOptions(options.job, list.isOneFile());
    options.job.spared = {context.config_path};
    options.job.model = list.files().front().path;
    if (list.isOneFile())
        exportModel(context, options.job);
    else
        exportModels(context, options.job, list.files());
}

} // namespace

void addExportCommand(CLI::App& app, cli_context& context)
{
    const auto options = std::make_shared<console_export_options>();
    CLI::App* command =
        app.add_subcommand("export", "Write models and figures for 3D programs, with skeleton and animations");
    command->add_option("MODEL", options->operands, model_operands_help)->required();
    command
        ->add_option("-o,--output", options->job.output,
                     "The file to write, .fbx, .dae, .glb or .gltf; or a folder, whose files get their names from the "
                     "animations or "
                     "the models")
        ->required()
        ->check(notEmpty());
    command
        ->add_option("--skeleton", options->job.skeleton,
                     "The skeleton's .anim file; without it the model alone, or with --bind or --anim its own")
        ->type_name("ANIM");
    command->add_flag("--bind", options->job.with_bones,
                      "With the skeleton that the model names, in its bind pose; a definition always has its own");
    command
        ->add_option("--anim", options->job.animations,
                     "An animation; may be given more than once, with a folder or a glTF file as -o")
        ->type_name("ANIM")
        ->allow_extra_args(false);
    command->add_option("--lod", options->lod, "Level of detail, or all; 0, the finest, without it")
        ->type_name("N")
        ->check(CLI::IsMember({"all"}) | wholeNumber());
    command
        ->add_option("--textures", options->job.texture_folder,
                     "Copy the diffuse and normal textures below this folder")
        ->type_name("DIR")
        ->check(notEmpty());
    command->add_option("--as", options->form, "The textures as pictures instead of DDS files: png or tga")
        ->type_name("KIND")
        ->check(CLI::IsMember({"png", "tga"}));
    command
        ->add_option("--normal", options->normals,
                     "blue: turn the games' normal maps into ordinary ones; blue-down: with their own Y, downwards")
        ->type_name("FORM")
        ->check(CLI::IsMember({"blue", "blue-down"}));
    command
        ->add_option("--format", options->job.folder_format,
                     "Of the files in a folder: fbx, dae, glb or gltf; fbx without it")
        ->type_name("FORMAT")
        ->check(CLI::IsMember({"fbx", "dae", "glb", "gltf"}));
    command->add_flag("--no-materials", options->job.is_without_materials, "Neither materials nor textures");
    command->add_flag("--full-span", options->job.is_full_span, "The take's time span ends with the last frame");
    context.addJsonOption(*command);
    command->callback([options, &context] { runCommand(context, *options); });
}

} // namespace korvane
