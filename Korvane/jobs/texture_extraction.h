#pragma once

// Takes the textures that models name out of the game, or where it does not have them from the disk around the models,
// and puts them below a folder, as they are or as pictures. Of several copies the one that counts in the game is taken,
// and entries of no bytes are left alone. One bad texture does not stop the others.

#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/work_port.h"
#include "Korvane/game/game_data.h"
#include "Korvane/jobs/output_paths.h"
#include "Korvane/textures/picture_file.h"
#include "Korvane/textures/texture_paths.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace korvane
{

struct texture_extraction_options
{
    std::string folder = {};
    bool is_flat = false; // all in the folder itself; a second file of a name becomes "name_2.dds"
    std::optional<picture_kind> form = std::nullopt; // nothing: the DDS files as they are
    bool overwrites = false;                         // files that differ are written over
    bool makes_normals_blue = false;                 // the normal maps, as pictures: Targa where form says nothing
    bool turns_green = false;                        // of the blue ones, as most other programs expect it
    std::vector<std::string> spared = {};            // files that are never written over
};

struct extracted_texture
{
    std::string internal_path;
    std::string archive; // its path on disk; empty where the texture came from the disk
    std::string source;  // on disk, where it came from there
    std::string path;    // on disk
    bool is_normal_map = false;
    output_outcome outcome = output_outcome::written;
};

struct texture_extraction_result
{
    std::vector<extracted_texture> files; // what was written, or is there already
    std::vector<extracted_texture> kept;  // what was not, because another file is there
    std::vector<std::string> missing;     // in no archive and not around its models
    std::vector<std::string> empty;       // there, without a byte
    std::vector<failure> failures;        // the texture's internal path is in why.path, or in what
    bool is_stopped = false;
};

// Progress counts textures. After a stop request what has begun is finished.
[[nodiscard]] texture_extraction_result extractTextures(const game_data& game,
                                                        const std::vector<wanted_texture>& wanted,
                                                        const texture_extraction_options& options,
                                                        const work_port& port = {});

// "12 DDS files extracted."; form as in the options.
[[nodiscard]] std::string extractedText(std::size_t count, std::optional<picture_kind> form = std::nullopt);

} // namespace korvane
