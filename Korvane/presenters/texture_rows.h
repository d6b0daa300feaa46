#pragma once

// What the rows of the texture panel say beside their paths: where each texture is found. No file is read, only looked
// for; for the window's thread or a worker.

#include "EASY_GUI/services/row_mark.h"
#include "Korvane/document/panel_contents.h"
#include "Korvane/game/game_data.h"

#include <array>
#include <string>

namespace korvane
{

enum class texture_origin
{
    unused,  // a grey row
    no_path, // the row is used, but names nothing
    mod_folder,
    archive,
    disk, // around the model
    nowhere
};

struct texture_row_state
{
    texture_origin origin = texture_origin::unused;
    row_mark mark = row_mark::dimmed;
    std::string tip = {}; // where it is, or why it cannot be found and what to do
};
using texture_row_states = std::array<texture_row_state, texture_row_count>;

// Of the first eight textures, with the paths that a save would write. model_path: on the disk or with "pack:".
[[nodiscard]] texture_row_states textureRowStates(const game_data& game, const group_data& group,
                                                  const std::string& model_path);
[[nodiscard]] texture_row_state textureState(const game_data& game, const std::string& internal_path,
                                             const std::string& model_path);

} // namespace korvane
