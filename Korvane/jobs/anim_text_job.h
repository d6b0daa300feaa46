#pragma once

// Texts made of an .anim file: its dump, and the table of its bones. Paths of what is read are on the disk or, with
// "pack:", in the game; what is written is written whole or not at all, and never over what is read.

#include "Korvane/game/game_source.h"

#include <string>

namespace korvane
{

[[nodiscard]] bool dumpAnim(game_source& source, const game_path& anim, const std::string& output, failure& why);
[[nodiscard]] bool tabulateBones(game_source& source, const game_path& anim, const std::string& output, failure& why);

} // namespace korvane
