#pragma once

// What the information panels show of a model, as plain texts and numbers: the window only puts them into its fields.
// Texts are UTF-8 and ready to be shown.

#include "Korvane/models/rmv2_file.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
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

// An index that lies outside its list becomes 0, and -1 when the list is empty.
[[nodiscard]] model_selection clampSelection(const RMV2_FILE_DATA& model, model_selection wanted);

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

struct group_tool_content
{
    std::string caption; // "L(0) G(2)"
    std::string group_name;
    std::string vertex_format;  // decimal
    std::string vertex_label;   // empty for formats without one
    std::string material_flags; // decimal
    int alpha_mode = 0;         // position in alphaModes()
};

struct texture_row_content
{
    bool is_used = false; // false: a grey row beyond the group's textures
    std::string type_name;
    std::string directory; // before the last separator
    std::string file;      // behind it
};
constexpr std::size_t texture_row_count = 8;
using texture_rows = std::array<texture_row_content, texture_row_count>;

[[nodiscard]] std::vector<std::string> lodEntries(const RMV2_FILE_DATA& model);
[[nodiscard]] std::vector<std::string> groupEntries(const RMV2_FILE_DATA& model, int lod);

[[nodiscard]] file_info_content fileInfo(const rmv2_file& model);
[[nodiscard]] group_info_content groupInfo(const group_data& group);
[[nodiscard]] group_tool_content groupTool(const group_data& group, model_selection selection);
[[nodiscard]] texture_rows textureRows(const group_data& group);
// "3 LODs; LOD 1: 5 groups, 4,213 vertices, 7,920 triangles"
[[nodiscard]] std::string modelSummary(const RMV2_FILE_DATA& model, int lod);

// "1 vertex", "4,213 vertices"
[[nodiscard]] std::string counted(std::size_t count, const char* one, const char* many);

} // namespace korvane
