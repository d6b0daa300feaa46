#pragma once

// An FBX scene as JSON, for `korvane fbx --scene`.

#include "Korvane/cli/json_stream.h"
#include "Korvane/fbx/scene/fbx_scene.h"

#include <vector>

namespace korvane
{

// The times, in seconds, add samples to each take: the local transforms of the nodes that it moves. With its geometry
// each mesh says all of its points, corners and weights.
void printScene(json_stream& out, const fbx_scene& scene, const std::vector<double>& times, bool has_geometry);

} // namespace korvane
