#include "Korvane/jobs/export_job.h"

#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/path_pattern.h"
#include "Korvane/document/open_definition.h"
#include "Korvane/fbx/export/scene_exporter.h"
#include "Korvane/jobs/export_subject.h"
#include "Korvane/jobs/export_textures.h"
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

    bool writesFolder() const { return isFolder(m_options.output) || m_options.animations.size() > 1; }
    std::vector<output_file> outputs() const;
    bool areFree(const std::vector<output_file>& files, failure& why) const;
    bool prepare(failure& why);
    bool exportFile(const output_file& file, std::size_t number, std::size_t total, failure& why);
    void reportFile(const output_file& file, const export_take& take);
    export_options sceneOptions() const;

    game_source& m_source;
    const export_job_options& m_options;
    const work_port& m_work;
    export_job_result& m_result;
    export_subject m_subject;
    std::unique_ptr<scene_exporter> m_exporter; // once there is something to write
};

std::vector<export_run::output_file> export_run::outputs() const
{
    const bool has_folder = writesFolder();
    const auto inFolder = [this](const std::string& name) {
        return toUtf8(toPath(m_options.output) / toPath(name + "." + m_options.folder_format.value_or("fbx")));
    };
    if (m_options.animations.empty())
    {
        const bool is_figure = isDefinitionPath(m_options.model);
        const std::string name = exportName(m_options.model, is_figure ? ".variantmeshdefinition" : ".rigid_model_v2");
        const bool is_bound = is_figure || m_options.with_bones || !m_options.skeleton.empty();
        return {{has_folder ? inFolder(is_bound ? name + std::string(bind_pose_suffix) : name) : m_options.output, ""}};
    }
    std::vector<output_file> files;
    std::set<std::string> taken; // in lower case, as Windows compares names
    for (const std::string& animation : m_options.animations)
    {
        const std::string name = exportName(animation, ".anim");
        std::string unique = name;
        for (int number = 2; !taken.insert(toLower(unique)).second; ++number)
            unique = name + "_" + std::to_string(number);
        files.push_back({has_folder ? inFolder(unique) : m_options.output, animation});
    }
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

// Before the first file is written, and not when there is none.
bool export_run::prepare(failure& why)
{
    if (m_exporter)
        return true;
    if (!extractExportTextures(m_source, m_options, m_subject.scene, m_work, m_result, why) ||
        (writesFolder() && !createFolder(m_options.output, why)))
        return false;
    const auto print = [this](const std::string& text) {
        const std::size_t begin = text.find_first_not_of('\n'), end = text.find_last_not_of('\n') + 1;
        tell(m_work.log, displayText(text.substr(begin, end - begin)));
    };
    m_exporter = std::make_unique<scene_exporter>(m_subject.scene, sceneOptions(), print);
    return true;
}

bool export_run::exportFile(const output_file& file, std::size_t number, std::size_t total, failure& why)
{
    const std::string line = displayText(exportingLine(fileName(file.path), number, total));
    m_work.report(number - 1, total, line);
    export_take take;
    const take_span span = m_options.is_full_span ? take_span::full : take_span::half;
    if ((!file.animation.empty() && !loadExportTake(m_source, m_subject, file.animation, span, m_work, take, why)) ||
        !prepare(why))
        return false;
    if (m_work.isStopped())
        return true;
    tell(m_work.log, line);
    if (!m_exporter->save(file.path, file.animation.empty() ? nullptr : &take, why))
        return false;
    reportFile(file, take);
    return true;
}

void export_run::reportFile(const output_file& file, const export_take& take)
{
    const export_scene& scene = m_subject.scene;
    exported_file written;
    written.path = file.path;
    if (!file.animation.empty())
        written.animations.push_back(file.animation);
    written.bones = scene.bones.size();
    written.meshes = scene.meshes.size();
    for (const export_mesh& mesh : scene.meshes)
    {
        written.points += mesh.points.size() / 3;
        written.triangles += mesh.triangles.size() / 3;
    }
    written.frames = take.frame_count;
    written.frame_rate = take.frame_rate;
    written.take_stop_seconds = take.stop_seconds;
    m_result.files.push_back(std::move(written));
    ++m_result.done;
}

export_options export_run::sceneOptions() const
{
    // Where paths in the file begin; empty for a bare name.
    const std::filesystem::path output = toPath(m_options.output);
    return {!m_options.is_without_materials,
            texturePathsFrom(writesFolder() ? output : output.parent_path(), m_result.textures)};
}

bool export_run::run(failure& why)
{
    const std::vector<output_file> files = outputs();
    m_result.wanted = files.size();
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
        m_work.nameFailure(reason);
        m_result.failed.push_back({files[i].animation, std::move(reason)});
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
    return hasExportExtension(path);
}

bool runExport(game_source& source, const export_job_options& options, const work_port& work, export_job_result& result,
               failure& why)
{
    result = {};
    return export_run(source, options, work, result).run(why);
}

} // namespace korvane
