#pragma once

// A mesh group of what a scene shows, by its part of the scene and its place in the shown level of detail.

#include <compare>
#include <cstdint>
#include <vector>

namespace korvane
{

struct shown_group
{
    std::uint32_t part = 0;
    std::uint32_t group = 0;

    friend auto operator<=>(const shown_group&, const shown_group&) = default;
};
using shown_groups = std::vector<shown_group>; // sorted

} // namespace korvane
