#pragma once

// Writes a model, or all models of a definition as one figure, for 3D programs: alone, in its skeleton's bind pose, or
// with animations, and the textures that its materials name. The console program and the export dialog run this one.
//
// FBX and Collada: one file for each animation. glTF (".glb", ".gltf"): as one file is named, all animations in it,
// named after their files; in a folder one file for each, too.

#include "EASY_GUI/services/work_port.h"
#include "Korvane/game/game_source.h"
#include "Korvane/jobs/model_snapshot.h"
#include "Korvane/scene/figure.h"
#include "Korvane/scene/loaded_scene.h"
#include "Korvane/textures/picture_file.h"
#include "Korvane/textures/texture_paths.h"

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
    std::string model; // a model, or a definition: its figure has its skeletons, whatever is said of them below
    std::optional<model_snapshot> edited; // with edits that the file does not have yet; of a figure one of its models
    scene_pointer known;                  // of a figure: its models and skeletons are not read again
    figure_choice choice;                 // which alternatives of a definition's slots; the first ones without
    std::string output; // a file with an export ending; or a folder, whose files get their names from the animations

    // The model's bones: of a skeleton that is given, or else when bones are asked for, or an animation, of the one
    // that the model names, looked up by its id. Neither: the model alone. Of a figure the given one takes the place of
    // the one of that name.
    std::string skeleton;
    bool with_bones = false;
    bool is_without_bones = false; // of a figure: its models alone, as they stand in the bind pose
    // Each moves the skeleton that it names; where nothing has that one, the first skeleton, and the log says so.
    std::vector<std::string> animations;
    // Those that no path finds, for another archive overrides them. They live as long as the source's archives.
    std::map<std::string, const pack_file_node*> copies;

    std::optional<std::size_t> lod = 0; // 0 is the finest; nothing: all of them, as meshes of the same file

    // Textures. Without a folder the file names them as the model does, which other programs find only where the game's
    // files lie around it. With one they are put below it by their internal paths, and the file points there: as the
    // DDS files that they are, or as pictures, which every program shows. glTF always has PNG files with blue normals:
    // without a folder within a ".glb" file, or beside a ".gltf" file in a folder NAME_textures.
    std::string texture_folder;
    std::optional<picture_kind> texture_form; // nothing: DDS
    bool makes_normals_blue = false;          // of pictures: the normal maps as other programs want them
    bool keeps_normals_down = false;          // of those: with the games' Y, so that they can be turned back
    bool keeps_textures = false;              // copies that differ stay, they may have been worked on
    bool is_without_materials = false;        // neither materials nor textures

    std::optional<std::string>
        folder_format;               // of the files in a folder: "fbx", which stands without it, "dae", "glb" or "gltf"
    bool is_full_span = false;       // the take's time span ends with the last frame
    std::vector<std::string> spared; // further files that are not written over, as the configuration
};

struct exported_file
{
    std::string path;
    std::vector<std::string> animations; // as they were given; empty: bind pose, or the model alone
    std::size_t bones = 0;
    std::size_t meshes = 0;
    std::size_t points = 0;
    std::size_t triangles = 0;
    std::uint32_t frames = 0;     // of its longest animation
    double frame_rate = 0;        // of its first, frames a second
    double take_stop_seconds = 0; // of its longest
};

struct failed_export
{
    std::string animation; // as it was given
    failure why;
};

struct export_job_result
{
    std::vector<exported_file> files;            // each was written as a whole
    std::vector<failed_export> failed;           // of several animations those that could not be exported
    std::map<std::string, std::string> textures; // internal path in lower case to the copy; empty: not found
    std::vector<wanted_texture> kept_textures;   // whose copies differ and stayed
    std::vector<std::string> warnings;           // about the model
    std::size_t wanted = 0;                      // animations, or 1 without
    std::size_t done = 0;                        // of them; those that neither are done nor failed came behind a stop
    bool is_stopped = false;
};

// The name of an animation's, or a model's, file without folder and ending, as a name that any disk takes: what no file
// name may hold becomes '_'. "hu1_wave" of "pack:animations\hu1_wave.anim" and ".anim". What the files of a folder and
// the animations of a glTF file are called; a second one of that name is "hu1_wave_2".
[[nodiscard]] std::string exportName(const std::string& operand, std::string_view ending);

// The files that would be written, but for textures.
[[nodiscard]] std::vector<std::string> exportPaths(const export_job_options& options);

// Whether a path ends as the files do that are written, in any case: .fbx, .dae, .glb, .gltf.
[[nodiscard]] bool isExportFile(std::string_view path);

// False when nothing could be done: the failure is that of the model, the skeleton, the folder, or of the only file. Of
// several animations one that fails is named in the log and in the result, and the others go on. A stop is heeded
// between files and textures; what had begun is whole.
[[nodiscard]] bool runExport(game_source& source, const export_job_options& options, const work_port& work,
                             export_job_result& result, failure& why);

// After an export that kept textures: writes them over. False when one of them failed; the result keeps those.
[[nodiscard]] bool replaceKeptTextures(game_source& source, const export_job_options& options, const work_port& work,
                                       export_job_result& result, failure& why);

} // namespace korvane
