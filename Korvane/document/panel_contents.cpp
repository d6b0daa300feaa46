#include "Korvane/document/panel_contents.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/game/game_path.h"
#include "Korvane/models/catalogue.h"

#include <algorithm>

namespace korvane
{

namespace
{

int clampIndex(int index, std::size_t count)
{
    if (count == 0)
        return -1;
    return index >= 0 && static_cast<std::size_t>(index) < count ? index : 0;
}

const lod_data* lodAt(const RMV2_FILE_DATA& model, int lod)
{
    return lod >= 0 && static_cast<std::size_t>(lod) < model.lods.size() ? &model.lods[static_cast<std::size_t>(lod)]
                                                                         : nullptr;
}

// With the separator.
std::size_t directoryLength(std::string_view path)
{
    return path.size() - fileName(path).size();
}

int typePosition(std::uint32_t type)
{
    const auto types = textureTypes();
    for (std::size_t i = 0; i < types.size(); ++i)
        if (types[i].number == type)
            return static_cast<int>(i);
    return -1;
}

} // namespace

model_selection clampSelection(const RMV2_FILE_DATA& model, model_selection wanted)
{
    model_selection selection;
    selection.lod = clampIndex(wanted.lod, model.lods.size());
    if (const lod_data* const lod = lodAt(model, selection.lod))
        selection.group = clampIndex(wanted.group, lod->groups.size());
    return selection;
}

std::vector<std::string> lodEntries(const RMV2_FILE_DATA& model)
{
    std::vector<std::string> entries;
    for (std::size_t i = 0; i < model.lods.size(); ++i)
        entries.push_back("LOD " + std::to_string(i + first_number));
    return entries;
}

std::vector<std::string> groupEntries(const RMV2_FILE_DATA& model, int lod)
{
    std::vector<std::string> entries;
    if (const lod_data* const chosen = lodAt(model, lod))
        for (std::size_t i = 0; i < chosen->groups.size(); ++i)
            entries.push_back("G " + std::to_string(i + first_number));
    return entries;
}

file_info_content fileInfo(const rmv2_file& model)
{
    return {model.path(), !game_path(model.path()).isInternal(), std::to_string(model.version()),
            std::string(versionLabel(model.version())), displayText(model.data().skeleton_id)};
}

group_info_content groupInfo(const group_data& group)
{
    const group_header& header = group.header;
    group_info_content content;
    content.material_id = std::to_string(header.material_id);
    content.material_name = materialName(header.material_id);
    content.group_name = displayText(header.group_name);
    content.shader_name = displayText(header.shader_name);
    content.vertex_format = std::to_string(header.vertex_format);
    content.vertex_label = vertexFormatShortLabel(header.vertex_format);
    return content;
}

group_tool_content groupTool(const group_data& group, model_selection selection)
{
    const group_header& header = group.header;
    group_tool_content content;
    content.caption = "L(" + std::to_string(selection.lod) + ") G(" + std::to_string(selection.group) + ")";
    content.group_name = displayText(header.group_name);
    content.vertex_format = std::to_string(header.vertex_format);
    content.vertex_label = vertexFormatLongLabel(header.vertex_format).value_or("");
    content.material_flags = std::to_string(group.material_flags);
    content.alpha_mode = static_cast<int>(alphaModeIndex(group.alpha_mode_field.u32()));
    return content;
}

texture_rows textureRows(const group_data& group)
{
    texture_rows rows;
    const std::size_t count = std::min(rows.size(), group.textures.size());
    for (std::size_t i = 0; i < count; ++i)
    {
        const texture_entry& entry = group.textures[i];
        const std::string path = entry.path_field.text();
        const std::size_t cut = directoryLength(path);
        texture_row_content& row = rows[i];
        row.is_used = true;
        row.type = entry.type;
        row.type_position = typePosition(entry.type);
        row.type_name = textureTypeName(entry.type);
        row.directory = displayText(path.substr(0, cut));
        row.file = displayText(path.substr(cut));
        row.directory_colour = {255, 230, 230};
        row.file_colour = {255, 240, 230};
    }
    return rows;
}

int rowOfType(const texture_rows& rows, std::uint32_t type)
{
    const auto found = std::find_if(rows.begin(), rows.end(), [type](const texture_row_content& row) {
        return row.is_used && row.type_position >= 0 && row.type == type;
    });
    return found == rows.end() ? -1 : static_cast<int>(found - rows.begin());
}

std::string pathWithChosenFile(const texture_entry& texture, std::string_view chosen_file)
{
    const std::string path = texture.path_field.text();
    return path.substr(0, directoryLength(path)) + std::string(fileName(chosen_file));
}

std::string modelSummary(const RMV2_FILE_DATA& model, int lod)
{
    std::string text = counted(model.lods.size(), "LOD", "LODs");
    const lod_data* const chosen = lodAt(model, lod);
    if (chosen == nullptr)
        return text;
    std::size_t vertices = 0;
    std::size_t triangles = 0;
    for (const group_data& group : chosen->groups)
    {
        vertices += group.store.vertices.size();
        triangles += group.store.indices.size() / 3;
    }
    return text + "; LOD " + std::to_string(lod + 1) + ": " + counted(chosen->groups.size(), "group", "groups") + ", " +
           counted(vertices, "vertex", "vertices") + ", " + counted(triangles, "triangle", "triangles");
}

} // namespace korvane
