#pragma once

// The textures of an exported scene: put where the file will look for them, and how it names them.

#include "EASY_GUI/services/work_port.h"
#include "Korvane/fbx/export/export_scene.h"
#include "Korvane/jobs/export_job.h"

#include <filesystem>
#include <functional>
#include <map>
#include <string>

namespace korvane
{

// Writes the diffuse and normal textures below the options' folder, when there is one, and fills the result's textures.
// Those that are nowhere, damaged or refused are named in the log and left out. False when the folder cannot be written
// to.
[[nodiscard]] bool extractExportTextures(game_source& source, const export_job_options& options,
                                         const export_scene& scene, const work_port& work, export_job_result& result,
                                         failure& why);

// From a texture's internal path to the path that stands in a file of that folder, relative to it, with '/': that of
// the copy, else the internal path itself. The map must outlive the function.
[[nodiscard]] std::function<std::string(const std::string& internal_path)>
texturePathsFrom(const std::filesystem::path& folder, const std::map<std::string, std::string>& textures);

} // namespace korvane
