#pragma once

// A model by the path that a person or a document gives: on the disk or, with "pack:", out of the game.

#include "Korvane/game/game_data.h"
#include "Korvane/models/rmv2_file.h"

namespace korvane
{

// Reads a model's bytes; of a file on the disk that is no model only its start (readModelFile).
[[nodiscard]] bool readModelBytes(const game_data& game, const game_path& path, memory_file& bytes, failure& why);

// Reads and decodes it. A model that was not opened before: one that has read a version 5 file keeps its text widths.
[[nodiscard]] bool openModel(const game_data& game, const game_path& path, rmv2_file& model, failure& why);

} // namespace korvane
