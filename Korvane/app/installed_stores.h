#pragma once

// Where the game stores of this computer say that they put games, for findGames(): out of the registry, and the usual
// folders. For any thread.

#include "Korvane/game/game_finder.h"

namespace korvane
{

[[nodiscard]] game_stores installedStores();

} // namespace korvane
