#include "Korvane/presenters/texture_rows.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/document/texture_path_fault.h"

#include <algorithm>

namespace korvane
{

texture_row_state textureState(const game_data& game, const std::string& internal_path, const std::string& model_path)
{
    if (internal_path.empty())
        return {texture_origin::no_path, row_mark::dimmed, "This texture has no path."};
    if (const game_file found = game.find(internal_path))
    {
        if (const pack_file_node* const entry = found.entry())
            return {texture_origin::archive, row_mark::plain,
                    "In the archive " + displayText(fileName(entry->packPath())) + "."};
        return {texture_origin::mod_folder, row_mark::good, "In the mod folder: " + displayText(found.diskPath())};
    }
    if (const game_file found = game.findAround(internal_path, model_path))
        return {texture_origin::disk, row_mark::plain, "On the disk: " + displayText(found.diskPath())};
    if (const texture_path_fault fault = texturePathFault(internal_path); fault.is_fatal)
        return {texture_origin::nowhere, row_mark::error, displayText(fault.text)};
    if (!game.hasArchives())
        return {
            texture_origin::nowhere, row_mark::warning,
            "Not on the disk around the model, and no archives are loaded. Set the game's folders with Tools > Setup "
            "Game Folders."};
    return {texture_origin::nowhere, row_mark::error,
            "In no archive, mod folder or folder around the model. Correct the path, or choose a picture for it."};
}

texture_row_states textureRowStates(const game_data& game, const group_data& group, const std::string& model_path)
{
    texture_row_states states;
    const std::size_t count = std::min(states.size(), group.textures.size());
    for (std::size_t i = 0; i < count; ++i)
        states[i] = textureState(game, group.textures[i].currentPath(), model_path);
    return states;
}

} // namespace korvane
