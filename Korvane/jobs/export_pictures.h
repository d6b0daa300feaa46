#pragma once

// The pictures of a glTF export, made of the games' textures: base colour with metal and roughness (metal_roughness.h),
// and normal maps with Y upwards, all as PNG.

#include "EASY_GUI/services/work_port.h"
#include "Korvane/fbx/export/export_scene.h"
#include "Korvane/gltf/gltf_export.h"
#include "Korvane/jobs/export_job.h"

#include <string>

namespace korvane
{

// Where the pictures lie; both empty: within the file.
struct picture_place
{
    std::string folder;      // below which they are written, by the textures' internal paths
    std::string file_folder; // in which the file will be, that refers to them
};

// Textures that are nowhere or damaged are named in the log and left out. Fills the result's textures. After a stop
// pictures may be missing. False when one cannot be written.
[[nodiscard]] bool makeExportPictures(game_source& source, const export_job_options& options, const export_scene& scene,
                                      const picture_place& place, const work_port& work, gltf_pictures& pictures,
                                      export_job_result& result, failure& why);

} // namespace korvane
