#pragma once

// Makes DDS files of pictures: format, mip maps, normal maps in the games' form or the ordinary one.

#include "Korvane/jobs/picture_batch.h"
#include "Korvane/textures/dds_encoder.h"
#include "Korvane/textures/normal_map.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

// The formats by the names that people know, sRGB or not.
[[nodiscard]] std::span<const std::string_view> ddsFormatNames(); // "bc1", "bc3", ...
// The one without sRGB; unknown for another name.
[[nodiscard]] dds_format ddsFormatNamed(std::string_view name);
[[nodiscard]] std::string_view nameOfDdsFormat(dds_format format);

struct dds_job_options
{
    picture_batch batch;
    std::optional<dds_format> format = std::nullopt;       // one without sRGB; nothing: that of like, else BC7
    std::optional<bool> is_srgb = std::nullopt;            // nothing: as like is, else unless normals is given
    std::optional<std::uint32_t> mip_count = std::nullopt; // 0: all; nothing: that of like, else all
    // A DDS file, on the disk or with "pack:" in the game. "pack:" alone: for each picture the game's texture whose
    // path is that of the picture, or its end; there it comes to lie below the output folder. What is as the game has
    // it is left out, or, where something else was made of it before, written as the game has it.
    std::string like = {};
    game_file like_file = {}; // the DDS file itself, where the caller has found it; like is then its name
    std::optional<normal_form> normals = std::nullopt; // convert to this form; nothing: blue becomes that of like
    bool is_forced = false;                            // also what does not look like a normal map
    bool keeps_coverage = false;
    encoding_effort effort = encoding_effort::usual;
};

struct made_dds
{
    std::string input;
    std::string path;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t mip_count = 0;
    dds_format format = dds_format::unknown;
    std::optional<normal_form> normals = std::nullopt; // averaged as vectors
    output_outcome outcome = output_outcome::written;
};

struct dds_job_result
{
    std::vector<made_dds> files;
    std::vector<std::string> unchanged; // inputs
    picture_batch_result left;
};

// False, with the reason, when like cannot be taken or the only picture failed. The log is told of normal maps that
// have the wanted form already: they stay as they are.
[[nodiscard]] bool makeDdsFiles(game_source& source, const dds_job_options& options, const work_port& work,
                                dds_job_result& result, failure& why);

} // namespace korvane
