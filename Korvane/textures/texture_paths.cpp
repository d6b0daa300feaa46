#include "Korvane/textures/texture_paths.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/archives/internal_path.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace korvane
{

namespace
{

std::string_view folderOf(std::string_view path)
{
    return path.substr(0, path.size() - fileName(path).size());
}

void addModel(const std::string& model, std::vector<std::string>& models)
{
    const bool is_known = std::any_of(models.begin(), models.end(), [&model](const std::string& known) {
        return folderOf(known) == folderOf(model);
    });
    if (!model.empty() && !is_known)
        models.push_back(model);
}

} // namespace

void addWantedTextures(const RMV2_FILE_DATA& model, std::vector<wanted_texture>& wanted, const std::string& disk_path)
{
    std::unordered_map<std::string, std::size_t> position_of;
    for (std::size_t i = 0; i < wanted.size(); ++i)
        position_of.emplace(wanted[i].path, i);
    for (const lod_data& lod : model.lods)
        for (const group_data& group : lod.groups)
            for (const texture_entry& texture : group.textures)
            {
                std::string path = normalInternalPath(texture.currentPath());
                if (path.empty())
                    continue;
                const auto [found, is_new] = position_of.emplace(path, wanted.size());
                if (is_new)
                    wanted.push_back({std::move(path)});
                if (texture.type == normal_map_type)
                    wanted[found->second].is_normal_map = true;
                addModel(disk_path, wanted[found->second].models);
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
                table.rows.push_back({texture.type, folder, toLower(fileName(texture.currentPath()))});
                if (known.insert(table.rows.back().file).second)
                    table.files.push_back(table.rows.back().file);
            }
    return table;
}

} // namespace korvane
