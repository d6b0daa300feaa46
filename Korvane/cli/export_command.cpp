#include "Korvane/cli/commands.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/fbx/export/scene_exporter.h"
#include "Korvane/jobs/export_job.h"
#include "Korvane/jobs/output_paths.h"

#include <memory>

namespace korvane
{

namespace
{

json resultJson(const export_job_result& result)
{
    json files = json::array(), failed = json::array(), textures = json::array();
    for (const exported_file& file : result.files)
        files.push_back({{"path", displayText(file.path)},
                         {"animation", file.animation.empty() ? json(nullptr) : json(displayText(file.animation))},
                         {"bones", file.bones},
                         {"meshes", file.meshes},
                         {"points", file.points},
                         {"triangles", file.triangles},
                         {"frames", file.frames},
                         {"frame_rate", file.frame_rate},
                         {"take_stop", file.take_stop_seconds}});
    for (const failed_export& each : result.failed)
        failed.push_back({{"animation", displayText(each.animation)}, {"reason", displayText(describe(each.why))}});
    for (const auto& [internal_path, path] : result.textures)
        textures.push_back({{"internal_path", displayText(internal_path)},
                            {"path", path.empty() ? json(nullptr) : json(displayText(path))}});
    return {{"files", std::move(files)},
            {"failed", std::move(failed)},
            {"textures", std::move(textures)},
            {"warnings", result.warnings}};
}

void runCommand(cli_context& context, const export_job_options& options)
{
    work_port work;
    work.log = context.notePort();
    work.progress = [&context](const work_progress& step) { context.progress(terminalText(step.what)); };
    export_job_result result;
    failure why;
    if (!runExport(context.game(), options, work, result, why))
        return context.fail(why);
    if (context.is_json)
        context.printJson(resultJson(result));
    if (const std::size_t missing = result.wanted - result.files.size(); missing > 0)
        context.fail(
            {failure_kind::refused,
             std::to_string(missing) + " of " + std::to_string(result.wanted) + " animations could not be exported",
             options.output, 0, ""});
}

// What the command line's options cannot say of each other by themselves.
void checkOptions(const export_job_options& options)
{
    if (!options.animations.empty() && options.skeleton.empty())
        throw CLI::RequiresError("--anim", "--skeleton");
    const bool is_file = hasExportExtension(options.output) && !isFolder(options.output);
    if (options.animations.size() > 1 && is_file)
        throw CLI::ValidationError("-o", "several animations need a folder, one file is written for each");
    if (is_file && options.folder_format && !endsWithIgnoringCase(options.output, "." + *options.folder_format))
        throw CLI::ValidationError("--format", "the file's name says another format: " + options.output);
    if (options.animations.size() < 2 && !is_file && !isFolder(options.output))
        throw CLI::ValidationError("-o",
                                   "the name must end in .fbx or .dae, or be that of a folder: " + options.output);
}

} // namespace

void addExportCommand(CLI::App& app, cli_context& context)
{
    const auto options = std::make_shared<export_job_options>();
    CLI::App* command = app.add_subcommand("export", "Write a model as FBX or Collada, with skeleton and animations");
    command->add_option("MODEL", options->model, "The model: a path on disk, or pack: and an internal path")
        ->required();
    command
        ->add_option("-o", options->output,
                     "The file to write, .fbx or .dae; or a folder, whose files get their names from the animations")
        ->required()
        ->check(notEmpty());
    command->add_option("--skeleton", options->skeleton, "The skeleton's .anim file; without it the model alone")
        ->type_name("ANIM");
    command->add_option("--anim", options->animations, "An animation; may be given more than once, with a folder as -o")
        ->type_name("ANIM")
        ->allow_extra_args(false);
    command->add_option("--lod", options->lod, "Level of detail; 0, the finest, without it")
        ->type_name("N")
        ->check(wholeNumber());
    command->add_option("--textures", options->texture_folder, "Copy the diffuse and normal textures below this folder")
        ->type_name("DIR")
        ->check(notEmpty());
    command->add_option("--format", options->folder_format, "Of the files in a folder: fbx or dae; fbx without it")
        ->type_name("FORMAT")
        ->check(CLI::IsMember({"fbx", "dae"}));
    command->add_flag("--no-materials", options->is_without_materials, "Neither materials nor textures");
    command->add_flag("--full-span", options->is_full_span, "The take's time span ends with the last frame");
    context.addJsonOption(*command);
    command->callback([options, &context] {
        checkOptions(*options);
        options->spared = {context.config_path};
        runCommand(context, *options);
    });
}

} // namespace korvane
