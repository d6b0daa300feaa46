#include "Korvane/jobs/export_job.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/path_pattern.h"
#include "Korvane/fbx/export/scene_exporter.h"
#include "Korvane/jobs/operands.h"
#include "Korvane/jobs/output_paths.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <set>
#include <utility>

namespace korvane
{

namespace
{

// "guard" of "pack:models\guard.rigid_model_v2"; a name that no disk takes becomes "model".
std::string baseName(const std::string& operand, std::string_view extension)
{
    const game_path path(operand);
    std::string name(fileName(path.internalPath()));
    if (endsWithIgnoringCase(name, extension))
        name.resize(name.size() - extension.size());
    std::string reason;
    return relativeDiskPath(name, reason).value_or("model");
}

class export_run
{
public:
    export_run(game_source& source, const export_job_options& options, const work_port& work, export_job_result& result)
        : m_source(source)
        , m_options(options)
        , m_work(work)
        , m_result(result)
    {
    }

    bool run(failure& why);

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
    bool extractTexture(const std::string& internal_path, const game_data& game, failure& why);
    std::filesystem::path outputFolder() const;
    export_options sceneOptions() const;

    game_source& m_source;
    const export_job_options& m_options;
    const work_port& m_work;
    export_job_result& m_result;
    rmv2_file m_model;
    std::shared_ptr<const anim_data> m_skeleton;
    export_scene m_scene;
    std::unique_ptr<scene_exporter> m_exporter; // once there is something to write
};

void export_run::noteMismatch(const std::string& what, const std::string& named) const
{
    if (!named.empty() && !equalsIgnoringCase(named, m_skeleton->skeleton_name))
        tell(m_work.log, displayText(what) + " is made for the skeleton " + displayText(named) + ", not for " +
                             displayText(m_skeleton->skeleton_name));
}

bool export_run::load(failure& why)
{
    if (!openModel(m_source, m_options.model, m_model, m_work.log, why))
        return false;
    if (!m_options.skeleton.empty())
    {
        m_skeleton = loadAnim(m_source, m_options.skeleton, anim_depth::skeleton, why);
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
        tell(m_work.log, displayText(warning));
    m_result.warnings = m_scene.warnings;
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
    inputs.insert(inputs.end(), {m_options.model, m_options.skeleton});
    inputs.insert(inputs.end(), m_options.spared.begin(), m_options.spared.end());
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
        tell(m_work.log, displayText(text.substr(begin, end - begin)));
    };
    m_exporter = std::make_unique<scene_exporter>(m_scene, sceneOptions(), print);
    return true;
}

bool export_run::loadTake(const output_file& file, export_take& take, failure& why)
{
    const auto animation = loadAnim(m_source, file.animation, anim_depth::animation, why);
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
    const std::string line = displayText(exportingLine(fileName(file.path), number, total));
    m_work.report(number - 1, total, line);
    export_take take;
    if ((!file.animation.empty() && !loadTake(file, take, why)) || !prepare(why))
        return false;
    tell(m_work.log, line);
    if (!m_exporter->save(file.path, file.animation.empty() ? nullptr : &take, why))
        return false;
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
    m_result.files.push_back({file.path, file.animation, m_scene.bones.size(), m_scene.meshes.size(), points, triangles,
                              take.frame_count, take.frame_rate, take.stop_seconds});
}

// Copies the textures that the materials name below the folder. Those that are nowhere are named and left out.
bool export_run::extractTextures(failure& why)
{
    if (m_options.texture_folder.empty() || m_options.is_without_materials)
        return true;
    const std::shared_ptr<const game_data> game = m_source.archivesOrDisk(why);
    if (!game)
        return false;
    for (const export_material& material : m_scene.materials)
        for (const std::string& internal_path : {material.diffuse_path, material.normal_path})
            if (!internal_path.empty() && !m_result.textures.contains(toLower(internal_path)) &&
                !extractTexture(internal_path, *game, why))
                return false;
    return true;
}

// Spellings that differ in case mean one texture: the file's name is in lower case.
bool export_run::extractTexture(const std::string& internal_path, const game_data& game, failure& why)
{
    const std::string key = toLower(internal_path);
    std::string reason;
    const std::optional<std::string> relative = relativeDiskPath(key, reason);
    const std::optional<memory_file> bytes =
        relative ? game.readTexture(internal_path, m_options.model, m_work.log) : std::nullopt;
    if (!bytes)
    {
        tell(m_work.log, displayText(internal_path) + ": the texture " +
                             (relative ? "was found nowhere" : "is refused: " + reason));
        m_result.textures.emplace(key, "");
        return true;
    }
    const std::filesystem::path target = toPath(m_options.texture_folder) / toPath(*relative);
    const std::string path = toUtf8(target);
    if (!isFree(path, why) || !createFolder(toUtf8(target.parent_path()), why) ||
        !writeWholeFile(path, bytes->bytes(), why))
        return false;
    m_result.textures.emplace(key, path);
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
        const auto found = m_result.textures.find(toLower(internal_path));
        if (found == m_result.textures.end() || found->second.empty())
            return slashed(displayText(internal_path));
        std::string path = toUtf8((here / toPath(found->second)).lexically_normal().lexically_proximate(folder));
        std::replace(path.begin(), path.end(), '\\', '/'); // it may lie on another drive
        return path;
    };
    return {!m_options.is_without_materials, texturePath};
}

bool export_run::run(failure& why)
{
    const std::vector<output_file> files = outputs();
    m_result.wanted = files.size();
    for (const output_file& file : files)
        if (!isFree(file.path, why))
            return false;
    if (!load(why))
        return false;
    for (std::size_t i = 0; i < files.size() && !m_work.isStopped(); ++i)
    {
        failure reason;
        if (exportFile(files[i], i + 1, files.size(), reason))
            continue;
        if (files.size() == 1)
        {
            why = std::move(reason);
            return false;
        }
        m_work.nameFailure(reason);
        m_result.failed.push_back({files[i].animation, std::move(reason)});
    }
    tell(m_work.log, exportedLine(m_result.files.size()));
    return true;
}

} // namespace

bool runExport(game_source& source, const export_job_options& options, const work_port& work, export_job_result& result,
               failure& why)
{
    result = {};
    return export_run(source, options, work, result).run(why);
}

} // namespace korvane
