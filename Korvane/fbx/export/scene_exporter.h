#pragma once

// Writes an export_scene to files, one for each animation or one in bind pose: FBX or Collada, whichever the path's
// extension says. What does not depend on the animation is made once. The console program and the export dialog drive
// it. One thread at a time.

#include "EASY_GUI/services/failure.h"
#include "Korvane/fbx/export/export_scene.h"
#include "Korvane/fbx/export/fbx_export.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace korvane
{

// Behind the name of a file in bind pose, before its extension.
inline constexpr std::string_view bind_pose_suffix = "__BIND_POSE";

[[nodiscard]] bool hasExportExtension(std::string_view path); // ".fbx" or ".dae", in any case

// Lines of the log; number counts from 1.
[[nodiscard]] std::string exportingLine(std::string_view file_name, std::size_t number, std::size_t total);
[[nodiscard]] std::string exportedLine(std::size_t count);

class dae_export;

class scene_exporter
{
public:
    // Takes texts for a console, with the line feeds that they have.
    using print_port = std::function<void(const std::string& text)>;

    // The scene must outlive the object and stay as it is.
    scene_exporter(const export_scene& scene, export_options options, print_port print);
    ~scene_exporter();
    scene_exporter(const scene_exporter&) = delete;
    scene_exporter& operator=(const scene_exporter&) = delete;

    // Writes the scene with a take, or in bind pose (null), to a UTF-8 path with an export extension. False when the
    // file cannot be written; what stood there then still stands.
    [[nodiscard]] bool save(const std::string& path, const export_take* take, failure& why);

private:
    const export_scene& m_scene;
    export_options m_options;
    print_port m_print;
    std::unique_ptr<fbx_export> m_fbx; // made for the first FBX file
    std::unique_ptr<dae_export> m_dae; // and for the first Collada file
};

} // namespace korvane
