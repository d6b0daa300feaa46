#pragma once

// An FBX scene as JSON, for `korvane fbx --scene`.

#include "Korvane/cli/cli_context.h"
#include "Korvane/fbx/scene/fbx_scene.h"

#include <vector>

namespace korvane
{

// The times, in seconds, add samples to each take: the local transforms of the nodes that it moves.
[[nodiscard]] json sceneJson(const fbx_scene& scene, const std::vector<double>& times);

} // namespace korvane
