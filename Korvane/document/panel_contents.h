#pragma once

// What the information panels show of a model, as plain texts and numbers: the window only puts them into its fields.
// Texts are UTF-8 and ready to be shown.

#include "Korvane/models/rmv2_file.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

// What is chosen in the lists "LOD:" and "Group:", counted from 0; -1 while there is nothing to choose.
struct model_selection
{
    int lod = -1;
    int group = -1;

    friend bool operator==(const model_selection&, const model_selection&) = default;
};

// What a person sees as the number of the first LOD, group and texture.
constexpr std::size_t first_number = 1;

// An index that lies outside its list becomes 0, and -1 when the list is empty.
[[nodiscard]] model_selection clampSelection(const RMV2_FILE_DATA& model, model_selection wanted);

struct rgb_colour
{
    std::uint8_t red = 0, green = 0, blue = 0;

    friend bool operator==(const rgb_colour&, const rgb_colour&) = default;
};

// The four fields of the file panel have this background while a model is open; the text stands in them before that.
constexpr rgb_colour loaded_colour{220, 219, 235};
constexpr std::string_view empty_file_field = "...";

struct file_info_content
{
    std::string path;
    bool is_on_disk = true; // false: it came out of an archive, there is no folder to show
    std::string version;    // decimal
    std::string game;
    std::string skeleton_id;
};

struct group_info_content
{
    std::string material_id; // decimal
    std::string material_name;
    std::string group_name;
    std::string shader_name;
    std::string vertex_format;               // decimal
    std::optional<std::string> vertex_label; // nothing: the field keeps the text it has
};

struct group_tool_content // the choices of its list are alphaModes(), each with its value
{
    std::string caption; // "L(0) G(2)"
    std::string group_name;
    std::string vertex_format;  // decimal
    std::string vertex_label;   // empty for formats without one
    std::string material_flags; // decimal
    int alpha_mode = 0;         // position in alphaModes() of what a save would write
};

struct texture_row_content
{
    bool is_used = false; // false: a grey row beyond the group's textures
    std::uint32_t type = 0;
    int type_position = -1; // in textureTypes(); -1: none of them, nothing is selected
    std::string type_name;
    std::string directory;                      // up to the last separator, that included: directory + file is the path
    std::string file;                           // behind it
    rgb_colour directory_colour{200, 200, 200}; // of the type list, too
    rgb_colour file_colour{200, 200, 200};
};
constexpr std::size_t texture_row_count = 8;
using texture_rows = std::array<texture_row_content, texture_row_count>;

[[nodiscard]] std::vector<std::string> lodEntries(const RMV2_FILE_DATA& model);
[[nodiscard]] std::vector<std::string> groupEntries(const RMV2_FILE_DATA& model, int lod);

[[nodiscard]] file_info_content fileInfo(const rmv2_file& model);
[[nodiscard]] group_info_content groupInfo(const group_data& group);
[[nodiscard]] group_tool_content groupTool(const group_data& group, model_selection selection);
// The first eight textures, with the paths that a save would write.
[[nodiscard]] texture_rows textureRows(const group_data& group);
// The first row whose type list has this number selected, or -1.
[[nodiscard]] int rowOfType(const texture_rows& rows, std::uint32_t type);
// The path of a texture for which a file was chosen: its own directory, and the file's name.
[[nodiscard]] std::string pathWithChosenFile(const texture_entry& texture, std::string_view chosen_file);
// "3 LODs; LOD 1: 5 groups, 4,213 vertices, 7,920 triangles"
[[nodiscard]] std::string modelSummary(const RMV2_FILE_DATA& model, int lod);

} // namespace korvane
