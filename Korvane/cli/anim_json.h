#pragma once

// Values of skeletons and animations as JSON.

#include "Korvane/cli/cli_context.h"
#include "Korvane/posing/skeleton_node.h"

namespace korvane
{

[[nodiscard]] json arrayJson(const glm::vec3& value);
[[nodiscard]] json arrayJson(const glm::quat& value); // x, y, z, w

} // namespace korvane
