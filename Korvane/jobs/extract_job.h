#pragma once

// Writes files out of the game to the disk, as they are or textures as pictures: one, or many below a folder.

#include "EASY_GUI/services/work_port.h"
#include "Korvane/game/game_source.h"
#include "Korvane/jobs/output_paths.h"
#include "Korvane/textures/picture_file.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace korvane
{

struct extract_job_options
{
    std::string pattern; // over internal paths, with * and ?
    std::string folder;
    bool overwrites = false; // files that differ are written over
    bool is_flat = false;    // without the folders of the internal paths; a second file of a name becomes "name_2.dds"
    // Of DDS textures, their largest level; faces of a cube and elements of an array lie one below the other. One that
    // cannot be decoded is written as it is. Nothing: all as they are. A picture whose name another file has taken is
    // numbered, too.
    std::optional<picture_kind> form = std::nullopt;
};

struct extracted_file
{
    std::string internal_path;
    std::string archive = {}; // its path on disk; empty for a file of a mod folder
    std::string path = {};    // on disk; empty where it has no place there
    output_outcome outcome = output_outcome::written;
    failure why = {};            // set when it failed
    failure no_picture = {};     // set when it should be one, and was written as it is
    std::size_t surfaces = 0;    // of the picture that it became; 0: it is none
    std::string named_like = {}; // the name that another file of this run has taken before it
};

struct extract_job_result
{
    std::vector<extracted_file> files; // that match, in the order of their paths; up to a stop
    std::size_t matches = 0;
    std::size_t written = 0; // with those that are there already
    std::size_t kept = 0;
    std::size_t failed = 0; // each is named as it fails
};

// One file, to that path, over what is there. On failure, too, file says as much as is known.
[[nodiscard]] bool extractFile(game_source& source, const game_path& path, const std::string& output,
                               extracted_file& file, failure& why);

// False, with the reason, when the archives cannot be loaded. A stop is heeded between files.
[[nodiscard]] bool extractMatching(game_source& source, const extract_job_options& options, const work_port& work,
                                   extract_job_result& result, failure& why);

// These copies, whether they count or not.
void extractEntries(const std::shared_ptr<const path_tree>& tree, std::span<const pack_file_node* const> files,
                    const extract_job_options& options, const work_port& work, extract_job_result& result);

// "2 files extracted": for progress, and at the end.
[[nodiscard]] std::string filesExtracted(std::size_t count);

} // namespace korvane
