#include "Korvane/document/panel_contents.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/archives/game_file.h"
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

} // namespace

std::string counted(std::size_t count, const char* one, const char* many)
{
    std::string digits = std::to_string(count);
    for (std::size_t place = digits.size(); place > 3; place -= 3)
        digits.insert(place - 3, ",");
    return digits + ' ' + (count == 1 ? one : many);
}

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
        entries.push_back("LOD " + std::to_string(i + 1));
    return entries;
}

std::vector<std::string> groupEntries(const RMV2_FILE_DATA& model, int lod)
{
    std::vector<std::string> entries;
    if (const lod_data* const chosen = lodAt(model, lod))
        for (std::size_t i = 0; i < chosen->groups.size(); ++i)
            entries.push_back("G " + std::to_string(i + 1));
    return entries;
}

file_info_content fileInfo(const rmv2_file& model)
{
    return {model.path(), !isPackPath(model.path()), std::to_string(model.version()),
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
    content.alpha_mode = static_cast<int>(alphaModeIndex(group.alpha_mode));
    return content;
}

texture_rows textureRows(const group_data& group)
{
    texture_rows rows;
    const std::size_t count = std::min(rows.size(), group.textures.size());
    for (std::size_t i = 0; i < count; ++i)
    {
        const texture_entry& entry = group.textures[i];
        const std::string path = displayText(entry.path);
        // Internal paths are written with '/'; one that has only '\' is split there.
        std::size_t cut = path.rfind('/');
        if (cut == std::string::npos)
            cut = path.rfind('\\');
        texture_row_content& row = rows[i];
        row.is_used = true;
        row.type_name = textureTypeName(entry.type);
        row.directory = cut == std::string::npos ? "" : path.substr(0, cut);
        row.file = cut == std::string::npos ? path : path.substr(cut + 1);
    }
    return rows;
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
