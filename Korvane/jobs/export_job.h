#pragma once

// Writes a model as FBX or Collada: alone, in a skeleton's bind pose, or one file for each of several animations, with
// the textures that its materials name beside them. The console program and the export dialog run this one.

#include "EASY_GUI/services/work_port.h"
#include "Korvane/game/game_source.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace korvane
{

// Paths are on the disk or, of what is read, with "pack:" in the game.
struct export_job_options
{
    std::string model;
    std::string output;   // ".fbx" or ".dae"; or a folder, whose files get their names from the animations
    std::string skeleton; // empty: the model alone
    std::vector<std::string> animations;      // several need a folder, and any a skeleton
    std::size_t lod = 0;                      // 0 is the finest
    std::string texture_folder;               // diffuse and normal textures are copied below it; empty: none
    std::optional<std::string> folder_format; // "fbx" or "dae", of the files in a folder; without: "fbx"
    bool is_without_materials = false;
    bool is_full_span = false;       // the take's time span ends with the last frame
    std::vector<std::string> spared; // further files that are not written over, as the configuration
};

struct exported_file
{
    std::string path;
    std::string animation; // as it was given; empty: bind pose, or the model alone
    std::size_t bones = 0;
    std::size_t meshes = 0;
    std::size_t points = 0;
    std::size_t triangles = 0;
    std::uint32_t frames = 0;
    double frame_rate = 0; // frames a second
    double take_stop_seconds = 0;
};

struct failed_export
{
    std::string animation;
    failure why;
};

struct export_job_result
{
    std::vector<exported_file> files;
    std::vector<failed_export> failed;           // of several animations those that could not be exported
    std::map<std::string, std::string> textures; // internal path in lower case to the copy; empty: there is none
    std::vector<std::string> warnings;           // about the model
    std::size_t wanted = 0;                      // files that were to be written
};

// False when nothing could be done: the failure is that of the model, the skeleton, or of the only file. Of several
// animations one that fails is named in the log and in the result, and the others go on. A stop is heeded between
// files.
[[nodiscard]] bool runExport(game_source& source, const export_job_options& options, const work_port& work,
                             export_job_result& result, failure& why);

} // namespace korvane
