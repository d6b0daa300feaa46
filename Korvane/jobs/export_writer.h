#pragma once

// Writes the files of one export in whichever format their names say. What does not depend on the animations is made
// for the first file, and the textures are put to their places then. One thread.

#include "EASY_GUI/services/work_port.h"
#include "Korvane/fbx/export/export_scene.h"
#include "Korvane/fbx/export/scene_exporter.h"
#include "Korvane/gltf/gltf_export.h"
#include "Korvane/jobs/export_job.h"

#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace korvane
{

[[nodiscard]] bool isGltfFile(std::string_view path); // ".glb" or ".gltf", in any case

class export_writer
{
public:
    // All must outlive the object; the scene stays as it is from the first file on. Folder: in which all files are
    // written; empty for bare names.
    export_writer(game_source& source, const export_job_options& options, const export_scene& scene,
                  const work_port& work, export_job_result& result)
        : m_source(source)
        , m_options(options)
        , m_scene(scene)
        , m_work(work)
        , m_result(result)
    {
    }

    // FBX and Collada take one take or none. False when the file, or the textures before the first one, could not be
    // written. After a stop nothing is written, and is_written stays as it is.
    [[nodiscard]] bool write(const std::string& path, std::span<const gltf_take> takes, const std::string& line,
                             bool& is_written, failure& why);

private:
    [[nodiscard]] bool prepare(const std::string& path, failure& why);
    [[nodiscard]] bool writeGltf(const std::string& path, std::span<const gltf_take> takes, failure& why) const;
    void say(const std::string& text) const;

    game_source& m_source;
    const export_job_options& m_options;
    const export_scene& m_scene;
    const work_port& m_work;
    export_job_result& m_result;
    std::unique_ptr<scene_exporter> m_fbx; // FBX and Collada
    std::unique_ptr<gltf_export> m_gltf;
};

} // namespace korvane
