#include "Korvane/jobs/export_job.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/path_pattern.h"
#include "Korvane/document/open_definition.h"
#include "Korvane/fbx/export/scene_exporter.h"
#include "Korvane/jobs/export_subject.h"
#include "Korvane/jobs/export_writer.h"
#include "Korvane/jobs/output_paths.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <span>
#include <utility>

namespace korvane
{

namespace
{

struct output_file
{
    std::string path;
    std::vector<std::size_t> animations = {}; // their numbers; none: bind pose, or the model alone
};

bool writesFolder(const export_job_options& options)
{
    const bool is_one_gltf = isGltfFile(options.output) && !isFolder(options.output);
    return isFolder(options.output) || (options.animations.size() > 1 && !is_one_gltf);
}

// Of the animations' files, without ending.
std::vector<std::string> animationNames(const export_job_options& options)
{
    std::vector<std::string> names;
    std::set<std::string> taken; // in lower case, as Windows compares names
    for (const std::string& animation : options.animations)
    {
        const std::string name = exportName(animation, ".anim");
        std::string unique = name;
        for (int number = 2; !taken.insert(toLower(unique)).second; ++number)
            unique = name + "_" + std::to_string(number);
        names.push_back(unique);
    }
    return names;
}

std::vector<output_file> outputsOf(const export_job_options& options)
{
    const bool has_folder = writesFolder(options);
    const auto inFolder = [&options](const std::string& name) {
        return toUtf8(toPath(options.output) / toPath(name + "." + options.folder_format.value_or("fbx")));
    };
    const std::vector<std::string> names = animationNames(options);
    std::vector<output_file> files;
    if (names.empty())
    {
        const bool is_figure = isDefinitionPath(options.model);
        const std::string name = exportName(options.model, is_figure ? ".variantmeshdefinition" : ".rigid_model_v2");
        const bool is_bound =
            !options.is_without_bones && (is_figure || options.with_bones || !options.skeleton.empty());
        files.push_back(
            {has_folder ? inFolder(is_bound ? name + std::string(bind_pose_suffix) : name) : options.output});
    }
    for (std::size_t i = 0; i < names.size(); ++i)
        if (has_folder || i == 0)
            files.push_back({has_folder ? inFolder(names[i]) : options.output, {i}});
        else
            files.front().animations.push_back(i);
    return files;
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
    bool areFree(const std::vector<output_file>& files, failure& why) const;
    bool loadTakes(const output_file& file, std::vector<gltf_take>& takes, std::vector<std::string>& loaded,
                   failure& why);
    bool exportFile(const output_file& file, std::size_t number, std::size_t total, failure& why);
    void reportFile(const std::string& path, std::span<const gltf_take> takes, std::vector<std::string> animations);
    void nameFailed(const std::string& animation, failure reason);

    game_source& m_source;
    const export_job_options& m_options;
    const work_port& m_work;
    export_job_result& m_result;
    std::vector<std::string> m_names = animationNames(m_options);
    export_subject m_subject;
    export_writer m_writer{m_source, m_options, m_subject.scene, m_work, m_result};
};

// What is read is not written over. A folder in which nothing can be written is one failure, not one for each file.
bool export_run::areFree(const std::vector<output_file>& files, failure& why) const
{
    std::vector<std::string> inputs = m_options.animations;
    inputs.insert(inputs.end(), {m_options.model, m_options.skeleton});
    inputs.insert(inputs.end(), m_options.spared.begin(), m_options.spared.end());
    const input_files read(inputs);
    return std::all_of(files.begin(), files.end(),
                       [&](const output_file& file) { return read.isFreeToWrite(file.path, why); }) &&
           (!writesFolder(m_options) || canWriteBelow(m_options.output, why));
}

void export_run::nameFailed(const std::string& animation, failure reason)
{
    m_work.nameFailure(reason);
    m_result.failed.push_back({animation, std::move(reason)});
}

// Of several animations of a file those that fail are left out; false when none is left.
bool export_run::loadTakes(const output_file& file, std::vector<gltf_take>& takes, std::vector<std::string>& loaded,
                           failure& why)
{
    const take_span span = m_options.is_full_span || isGltfFile(file.path) ? take_span::full : take_span::half;
    for (const std::size_t number : file.animations)
    {
        if (m_work.isStopped())
            return true;
        const std::string& animation = m_options.animations[number];
        if (file.animations.size() > 1)
            m_work.report(number, file.animations.size(), displayText(animation));
        gltf_take take{displayText(m_names[number]), {}};
        failure reason;
        if (loadExportTake(m_source, m_options, m_subject, animation, span, m_work, take.take, reason))
        {
            takes.push_back(std::move(take));
            loaded.push_back(animation);
        }
        else if (file.animations.size() == 1)
        {
            why = std::move(reason);
            return false;
        }
        else
            nameFailed(animation, std::move(reason));
    }
    return file.animations.empty() || !takes.empty() ||
           fail(why, failure_kind::refused, "none of the animations can be exported", file.path);
}

bool export_run::exportFile(const output_file& file, std::size_t number, std::size_t total, failure& why)
{
    const std::string line = displayText(exportingLine(fileName(file.path), number, total));
    m_work.report(number - 1, total, line);
    std::vector<gltf_take> takes;
    std::vector<std::string> loaded;
    bool is_written = false;
    if (!loadTakes(file, takes, loaded, why))
        return false;
    if (m_work.isStopped())
        return true;
    if ((writesFolder(m_options) && !createFolder(m_options.output, why)) ||
        !m_writer.write(file.path, takes, line, is_written, why))
        return false;
    if (is_written)
        reportFile(file.path, takes, std::move(loaded));
    return true;
}

void export_run::reportFile(const std::string& path, std::span<const gltf_take> takes,
                            std::vector<std::string> animations)
{
    const export_scene& scene = m_subject.scene;
    exported_file written;
    written.path = path;
    m_result.done += std::max<std::size_t>(animations.size(), 1);
    written.animations = std::move(animations);
    written.bones = scene.bones.size();
    written.meshes = scene.meshes.size();
    for (const export_mesh& mesh : scene.meshes)
    {
        written.points += mesh.points.size() / 3;
        written.triangles += mesh.triangles.size() / 3;
    }
    for (const gltf_take& take : takes)
    {
        written.frames = std::max(written.frames, take.take.frame_count);
        written.take_stop_seconds = std::max(written.take_stop_seconds, take.take.stop_seconds);
    }
    written.frame_rate = takes.empty() ? 0 : takes.front().take.frame_rate;
    m_result.files.push_back(std::move(written));
}

bool export_run::run(failure& why)
{
    const std::vector<output_file> files = outputsOf(m_options);
    m_result.wanted = std::max<std::size_t>(m_options.animations.size(), 1);
    if (!areFree(files, why) || !loadExportSubject(m_source, m_options, m_work, m_subject, why))
        return false;
    m_result.warnings = m_subject.scene.warnings;
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
        nameFailed(m_options.animations[files[i].animations.front()], std::move(reason));
    }
    m_result.is_stopped = m_work.isStopped() && m_result.done + m_result.failed.size() < m_result.wanted;
    tell(m_work.log, exportedLine(m_result.files.size()));
    return true;
}

} // namespace

std::vector<std::string> exportPaths(const export_job_options& options)
{
    std::vector<std::string> paths;
    for (const output_file& file : outputsOf(options))
        paths.push_back(file.path);
    return paths;
}

std::string exportName(const std::string& operand, std::string_view ending)
{
    const game_path path(operand);
    std::string name = displayText(fileName(path.internalPath()));
    if (endsWithIgnoringCase(name, ending))
        name.resize(name.size() - ending.size());
    for (char& character : name)
        if (static_cast<unsigned char>(character) < 0x20 || std::string_view("<>:\"|?*").find(character) < 7)
            character = '_';
    name.resize(name.find_last_not_of(". ") + 1); // Windows drops them
    std::string reason;
    return name.empty() ? "model" : relativeDiskPath(name, reason) ? name : "_" + name; // the name of a device
}

bool isExportFile(std::string_view path)
{
    return hasExportExtension(path) || isGltfFile(path);
}

bool runExport(game_source& source, const export_job_options& options, const work_port& work, export_job_result& result,
               failure& why)
{
    result = {};
    return export_run(source, options, work, result).run(why);
}

} // namespace korvane
