#include "Korvane/textures/texture_paths.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/archives/variant_mesh_def.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace korvane
{

void addWantedTextures(const RMV2_FILE_DATA& model, std::vector<wanted_texture>& wanted)
{
    std::unordered_map<std::string, std::size_t> position_of;
    for (std::size_t i = 0; i < wanted.size(); ++i)
        position_of.emplace(wanted[i].path, i);
    for (const lod_data& lod : model.lods)
        for (const group_data& group : lod.groups)
            for (const texture_entry& texture : group.textures)
            {
                std::string path = normalInternalPath(texture.path);
                if (path.empty())
                    continue;
                const auto [found, is_new] = position_of.emplace(path, wanted.size());
                if (is_new)
                    wanted.push_back({std::move(path), false});
                if (texture.type == normal_map_type)
                    wanted[found->second].is_normal_map = true;
            }
}

std::string texture_path_table::text() const
{
    std::string lines;
    for (const std::string& file : files)
        lines += file + "\r\n";
    return lines;
}

texture_path_table texturePathTable(const RMV2_FILE_DATA& model, std::string_view model_path)
{
    const std::size_t separator = model_path.find_last_of("\\/");
    const std::string folder = toLower(model_path.substr(0, separator == std::string_view::npos ? 0 : separator));
    texture_path_table table;
    std::unordered_set<std::string> known;
    for (const lod_data& lod : model.lods)
        for (const group_data& group : lod.groups)
            for (const texture_entry& texture : group.textures)
            {
                table.rows.push_back({texture.type, folder, toLower(fileName(texture.path))});
                if (known.insert(table.rows.back().file).second)
                    table.files.push_back(table.rows.back().file);
            }
    return table;
}

} // namespace korvane
