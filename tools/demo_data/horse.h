#pragma once

// A saddled bay horse for the skeleton of beast.h, about 1.5 metres high at the withers. It stands on y = 0 and looks
// along -z.

#include "tools/demo_data/figure.h"

#include <vector>

namespace korvane::demo
{

// density multiplies rows and columns: 1 is LOD 0.
[[nodiscard]] std::vector<figure_part> buildHorse(double density);

// Where the space of a figure begins that sits in the saddle.
[[nodiscard]] vec3 saddlePlace();

} // namespace korvane::demo
