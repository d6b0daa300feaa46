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
        std::vector<std::size_t> animations = {}; // their numbers; none: bind pose, or the model alone
    };

    bool isOneGltf() const { return isGltfFile(m_options.output) && !isFolder(m_options.output); }
    bool writesFolder() const
    {
        return isFolder(m_options.output) || (m_options.animations.size() > 1 && !isOneGltf());
    }
    void nameAnimations();
    std::vector<output_file> outputs() const;
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
    std::vector<std::string> m_names; // of the animations' files, without ending
    export_subject m_subject;
    export_writer m_writer{m_source, m_options, m_subject.scene, m_work, m_result};
};

void export_run::nameAnimations()
{
    std::set<std::string> taken; // in lower case, as Windows compares names
    for (const std::string& animation : m_options.animations)
    {
        const std::string name = exportName(animation, ".anim");
        std::string unique = name;
        for (int number = 2; !taken.insert(toLower(unique)).second; ++number)
            unique = name + "_" + std::to_string(number);
        m_names.push_back(unique);
    }
}

std::vector<export_run::output_file> export_run::outputs() const
{
    const auto inFolder = [this](const std::string& name) {
        return toUtf8(toPath(m_options.output) / toPath(name + "." + m_options.folder_format.value_or("fbx")));
    };
    std::vector<output_file> files;
    if (m_names.empty())
    {
        const bool is_figure = isDefinitionPath(m_options.model);
        const std::string name = exportName(m_options.model, is_figure ? ".variantmeshdefinition" : ".rigid_model_v2");
        const bool is_bound = is_figure || m_options.with_bones || !m_options.skeleton.empty();
        files.push_back(
            {writesFolder() ? inFolder(is_bound ? name + std::string(bind_pose_suffix) : name) : m_options.output});
    }
    for (std::size_t i = 0; i < m_names.size(); ++i)
        if (writesFolder() || i == 0)
            files.push_back({writesFolder() ? inFolder(m_names[i]) : m_options.output, {i}});
        else
            files.front().animations.push_back(i);
    return files;
}

// What is read is not written over. A folder in which nothing can be written is one failure, not one for each file.
bool export_run::areFree(const std::vector<output_file>& files, failure& why) const
{
    std::vector<std::string> inputs = m_options.animations;
    inputs.insert(inputs.end(), {m_options.model, m_options.skeleton});
    inputs.insert(inputs.end(), m_options.spared.begin(), m_options.spared.end());
    return std::all_of(files.begin(), files.end(),
                       [&](const output_file& file) { return isFreeToWrite(inputs, file.path, why); }) &&
           (!writesFolder() || canWriteBelow(m_options.output, why));
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
    if ((writesFolder() && !createFolder(m_options.output, why)) ||
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
    nameAnimations();
    const std::vector<output_file> files = outputs();
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
