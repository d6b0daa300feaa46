#pragma once

// Static pieces of the demo data. Metres, y up, standing on y = 0 around the origin.

#include "tools/demo_data/figure.h"

#include <cstdint>

namespace korvane::demo
{

[[nodiscard]] std::vector<figure_part> buildBarrel(double density);
[[nodiscard]] std::vector<figure_part> buildColumn(double density,
                                                   std::uint32_t seed); // broken off, with a fallen drum
[[nodiscard]] std::vector<figure_part> buildBanner(double density);
[[nodiscard]] std::vector<figure_part> buildGrass(double density, std::uint32_t seed);
[[nodiscard]] mesh buildColumnHull(); // a coarse closed body around the column, for collisions

} // namespace korvane::demo
