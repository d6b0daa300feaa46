#pragma once

// The files that a job is given by their paths, read and decoded: on the disk or, with "pack:", out of the game.

#include "EASY_GUI/services/log_port.h"
#include "Korvane/animation/anim_file.h"
#include "Korvane/game/game_source.h"

#include <memory>

namespace korvane
{

// The model of a path, bytes alone or decoded. The log is told of one that can be read although its version word
// contradicts its headers.
[[nodiscard]] bool readModelBytes(game_source& source, const game_path& path, memory_file& bytes, failure& why);
[[nodiscard]] bool openModel(game_source& source, const game_path& path, rmv2_file& model, const log_port& log,
                             failure& why);

// The .anim file of a path, loaded that deep; null, and the reason, when that fails.
[[nodiscard]] std::shared_ptr<const anim_data> loadAnim(game_source& source, const game_path& path, anim_depth depth,
                                                        failure& why);

// The same of an archive's entry, whether another archive overrides it or not.
[[nodiscard]] std::shared_ptr<const anim_data> loadAnim(const pack_file_node& entry, anim_depth depth, failure& why);

} // namespace korvane
