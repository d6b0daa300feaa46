#pragma once

// The textures that a model names: which of them are normal maps, and the table behind "Copy textures paths".

#include "Korvane/models/rmv2_data.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

// The texture type "Normal Map" of catalogue.h.
inline constexpr std::uint32_t normal_map_type = 1;

struct wanted_texture
{
    std::string path; // as archives store it: lower case, '\' between components
    bool is_normal_map = false;
    std::vector<std::string> models = {}; // on the disk that name it, one of each folder
};
// Adds the textures of all LODs and groups that are not in the list yet, in the order of the file. A texture counts as
// a normal map when one group uses it as such. disk_path is the model's; empty for one out of an archive.
void addWantedTextures(const RMV2_FILE_DATA& model, std::vector<wanted_texture>& wanted,
                       const std::string& disk_path = {});

inline constexpr std::string_view copy_paths_announcement = "Copy textures paths";
inline constexpr std::string_view copy_paths_success = "Copy textures paths: SUCCESS!";

struct texture_path_row
{
    std::uint32_t type = 0;
    std::string model_folder; // of the model's own path, lower case, without the last separator
    std::string file;         // lower case
};
struct texture_path_table
{
    std::vector<texture_path_row> rows; // LOD by LOD, group by group
    std::vector<std::string> files;     // the distinct file names, in the order of their first use
    // For the clipboard: the distinct file names, a line each.
    [[nodiscard]] std::string text() const;
};
[[nodiscard]] texture_path_table texturePathTable(const RMV2_FILE_DATA& model, std::string_view model_path);

} // namespace korvane
