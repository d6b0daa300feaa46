#include "Korvane/cli/commands.h"

#include "D3D11_RENDER_LIB/model_texture_source.h"
#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/game_file.h"
#include "Korvane/archives/path_pattern.h"
#include "Korvane/cli/anim_commands.h"
#include "Korvane/cli/game_files.h"
#include "Korvane/cli/output_files.h"
#include "Korvane/fbx/export/scene_exporter.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <utility>

namespace korvane
{

namespace
{

struct export_command_options
{
    std::string model;
    std::string output;
    std::string skeleton;
    std::vector<std::string> animations;
    std::size_t lod = 0;
    std::string texture_folder;
    std::optional<std::string> folder_format; // "fbx" or "dae"
    bool is_without_materials = false;
    bool is_full_span = false;
};

// "guard" of "pack:models\guard.rigid_model_v2"; a name that no disk takes becomes "model".
std::string baseName(const std::string& operand, std::string_view extension)
{
    std::string name(fileName(internalPathOf(operand)));
    if (endsWithIgnoringCase(name, extension))
        name.resize(name.size() - extension.size());
    std::string reason;
    return relativeDiskPath(name, reason).value_or("model");
}

class export_run
{
public:
    export_run(cli_context& context, const export_command_options& options) : m_context(context), m_options(options) {}

    void run();

private:
    struct output_file
    {
        std::string path;
        std::string animation; // operand; empty: bind pose, or the model alone
    };

    bool load(failure& why);
    void noteMismatch(const std::string& what, const std::string& named) const;
    bool writesFolder() const { return isFolder(m_options.output) || m_options.animations.size() > 1; }
    std::vector<output_file> outputs() const;
    bool isFree(const std::string& output, failure& why) const;
    bool prepare(failure& why);
    bool exportFile(const output_file& file, std::size_t number, std::size_t total, failure& why);
    bool loadTake(const output_file& file, export_take& take, failure& why);
    void reportFile(const output_file& file, const export_take& take);
    bool extractTextures(failure& why);
    bool extractTexture(const std::string& internal_path, const model_texture_source& source, failure& why);
    std::filesystem::path outputFolder() const;
    export_options sceneOptions() const;
    void report(std::size_t total);

    cli_context& m_context;
    const export_command_options& m_options;
    rmv2_file m_model;
    std::shared_ptr<const anim_data> m_skeleton;
    export_scene m_scene;
    std::map<std::string, std::string> m_textures; // internal path in lower case to the extracted file
    std::unique_ptr<scene_exporter> m_exporter;    // once there is something to write
    std::size_t m_written = 0;
    json m_files = json::array();
    json m_failed = json::array();
};

void export_run::noteMismatch(const std::string& what, const std::string& named) const
{
    if (!named.empty() && !equalsIgnoringCase(named, m_skeleton->skeleton_name))
        m_context.note(terminalText(what) + " is made for the skeleton " + terminalText(named) + ", not for " +
                       terminalText(m_skeleton->skeleton_name));
}

bool export_run::load(failure& why)
{
    if (!openModel(m_context, m_options.model, m_model, why))
        return false;
    if (!m_options.skeleton.empty())
    {
        m_skeleton = loadAnim(m_context, m_options.skeleton, anim_depth::skeleton, why);
        if (!m_skeleton)
            return false;
        noteMismatch(m_options.model, m_model.data().skeleton_id);
        if (!addBones(*m_skeleton, m_scene, why))
        {
            why.path = m_options.skeleton;
            return false;
        }
    }
    if (!addMeshes(m_model.data(), m_options.lod, m_scene, why))
    {
        why.path = m_options.model;
        return false;
    }
    for (const std::string& warning : m_scene.warnings)
        m_context.note(terminalText(warning));
    return true;
}

std::vector<export_run::output_file> export_run::outputs() const
{
    const bool has_folder = writesFolder();
    const auto inFolder = [this](const std::string& name) {
        return toUtf8(toPath(m_options.output) / toPath(name + "." + m_options.folder_format.value_or("fbx")));
    };
    if (m_options.animations.empty())
    {
        const std::string name = baseName(m_options.model, ".rigid_model_v2");
        return {{has_folder ? inFolder(!m_options.skeleton.empty() ? name + std::string(bind_pose_suffix) : name)
                            : m_options.output,
                 ""}};
    }
    std::vector<output_file> files;
    std::set<std::string> taken; // in lower case, as Windows compares names
    for (const std::string& animation : m_options.animations)
    {
        const std::string name = baseName(animation, ".anim");
        std::string unique = name;
        for (int number = 2; !taken.insert(toLower(unique)).second; ++number)
            unique = name + "_" + std::to_string(number);
        files.push_back({has_folder ? inFolder(unique) : m_options.output, animation});
    }
    return files;
}

bool export_run::isFree(const std::string& output, failure& why) const
{
    std::vector<std::string> inputs = m_options.animations;
    inputs.insert(inputs.end(), {m_options.model, m_options.skeleton, m_context.config_path});
    return isFreeToWrite(inputs, output, why);
}

// Before the first file is written, and not when there is none.
bool export_run::prepare(failure& why)
{
    if (m_exporter)
        return true;
    if (!extractTextures(why) || (writesFolder() && !createFolder(m_options.output, why)))
        return false;
    const auto print = [this](const std::string& text) {
        const std::size_t begin = text.find_first_not_of('\n'), end = text.find_last_not_of('\n') + 1;
        m_context.note(terminalText(text.substr(begin, end - begin)));
    };
    m_exporter = std::make_unique<scene_exporter>(m_scene, sceneOptions(), print);
    return true;
}

bool export_run::loadTake(const output_file& file, export_take& take, failure& why)
{
    const auto animation = loadAnim(m_context, file.animation, anim_depth::animation, why);
    if (!animation)
        return false;
    noteMismatch(file.animation, animation->skeleton_name);
    if (makeTake(animation, *m_skeleton, m_options.is_full_span ? take_span::full : take_span::half, take, why))
        return true;
    why.path = file.animation;
    return false;
}

bool export_run::exportFile(const output_file& file, std::size_t number, std::size_t total, failure& why)
{
    const std::string line = terminalText(exportingLine(fileName(file.path), number, total));
    m_context.progress(line);
    export_take take;
    if ((!file.animation.empty() && !loadTake(file, take, why)) || !prepare(why))
        return false;
    m_context.note(line);
    if (!m_exporter->save(file.path, file.animation.empty() ? nullptr : &take, why))
        return false;
    ++m_written;
    reportFile(file, take);
    return true;
}

void export_run::reportFile(const output_file& file, const export_take& take)
{
    std::size_t points = 0, triangles = 0;
    for (const export_mesh& mesh : m_scene.meshes)
    {
        points += mesh.points.size() / 3;
        triangles += mesh.triangles.size() / 3;
    }
    m_files.push_back({{"path", displayText(file.path)},
                       {"animation", file.animation.empty() ? json(nullptr) : json(displayText(file.animation))},
                       {"bones", m_scene.bones.size()},
                       {"meshes", m_scene.meshes.size()},
                       {"points", points},
                       {"triangles", triangles},
                       {"frames", take.frame_count},
                       {"frame_rate", take.frame_rate},
                       {"take_stop", take.stop_seconds}});
}

// Copies the textures that the materials name below the folder. Those that are nowhere are named and left out.
bool export_run::extractTextures(failure& why)
{
    if (m_options.texture_folder.empty() || m_options.is_without_materials)
        return true;
    if (hasDataFolders(m_context) && !loadArchives(m_context, why))
        return false;
    const model_texture_source source(m_options.model,
                                      [this](const std::string& line) { m_context.note(terminalText(line)); });
    for (const export_material& material : m_scene.materials)
        for (const std::string& internal_path : {material.diffuse_path, material.normal_path})
            if (!internal_path.empty() && !m_textures.contains(toLower(internal_path)) &&
                !extractTexture(internal_path, source, why))
                return false;
    return true;
}

// Spellings that differ in case mean one texture: the file's name is in lower case.
bool export_run::extractTexture(const std::string& internal_path, const model_texture_source& source, failure& why)
{
    const std::string key = toLower(internal_path);
    std::string reason;
    const std::optional<std::string> relative = relativeDiskPath(key, reason);
    const std::optional<memory_file> bytes = relative ? source.read(internal_path) : std::nullopt;
    if (!bytes)
    {
        m_context.note(terminalText(internal_path) + ": the texture " +
                       (relative ? "was found nowhere" : "is refused: " + reason));
        m_textures.emplace(key, "");
        return true;
    }
    const std::filesystem::path target = toPath(m_options.texture_folder) / toPath(*relative);
    const std::string path = toUtf8(target);
    if (!isFree(path, why) || !createFolder(toUtf8(target.parent_path()), why) ||
        !writeWholeFile(path, bytes->bytes(), why))
        return false;
    m_textures.emplace(key, path);
    return true;
}

// Where paths in the file begin; empty for a bare name.
std::filesystem::path export_run::outputFolder() const
{
    std::filesystem::path folder = toPath(m_options.output);
    if (!writesFolder())
        folder = folder.parent_path();
    return folder;
}

// With '/', and without a drive or a root in front: the path is to be relative.
std::string slashed(std::string path)
{
    std::replace(path.begin(), path.end(), '\\', '/');
    if (path.size() > 1 && path[1] == ':')
        path.erase(0, 2);
    return path.substr(std::min(path.find_first_not_of('/'), path.size()));
}

export_options export_run::sceneOptions() const
{
    std::error_code ignored;
    const std::filesystem::path here = std::filesystem::current_path(ignored);
    const std::filesystem::path folder = (here / outputFolder()).lexically_normal();
    const auto texturePath = [this, here, folder](const std::string& internal_path) {
        const auto found = m_textures.find(toLower(internal_path));
        if (found == m_textures.end() || found->second.empty())
            return slashed(displayText(internal_path));
        std::string path = toUtf8((here / toPath(found->second)).lexically_normal().lexically_proximate(folder));
        std::replace(path.begin(), path.end(), '\\', '/'); // it may lie on another drive
        return path;
    };
    return {!m_options.is_without_materials, texturePath};
}

void export_run::run()
{
    failure why;
    const std::vector<output_file> files = outputs();
    for (const output_file& file : files)
        if (!isFree(file.path, why))
            return m_context.fail(why);
    if (!load(why))
        return m_context.fail(why);
    for (std::size_t i = 0; i < files.size(); ++i)
    {
        failure reason;
        if (exportFile(files[i], i + 1, files.size(), reason))
            continue;
        if (files.size() == 1)
            return m_context.fail(reason);
        m_context.note(terminalText(describe(reason)));
        m_failed.push_back({{"animation", displayText(files[i].animation)}, {"reason", displayText(describe(reason))}});
    }
    report(files.size());
}

void export_run::report(std::size_t total)
{
    m_context.note(exportedLine(m_written));
    if (m_context.is_json)
    {
        json textures = json::array();
        for (const auto& [internal_path, path] : m_textures)
            textures.push_back({{"internal_path", displayText(internal_path)},
                                {"path", path.empty() ? json(nullptr) : json(displayText(path))}});
        m_context.printJson({{"files", std::move(m_files)},
                             {"failed", std::move(m_failed)},
                             {"textures", std::move(textures)},
                             {"warnings", m_scene.warnings}});
    }
    if (m_written < total)
        m_context.fail(
            {failure_kind::refused,
             std::to_string(total - m_written) + " of " + std::to_string(total) + " animations could not be exported",
             m_options.output, 0, ""});
}

// What the command line's options cannot say of each other by themselves.
void checkOptions(const export_command_options& options)
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
    const auto options = std::make_shared<export_command_options>();
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
        export_run(context, *options).run();
    });
}

} // namespace korvane
