#include "Korvane/fbx/scene/fbx_scene.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace korvane
{

std::size_t fbx_mesh::entryOf(const fbx_layer_element& element, std::size_t corner, std::size_t polygon) const
{
    std::size_t entry = 0;
    switch (element.mapping)
    {
    case fbx_layer_element::mapping_kind::control_point:
        entry = corners[corner];
        break;
    case fbx_layer_element::mapping_kind::corner:
        entry = corner;
        break;
    case fbx_layer_element::mapping_kind::polygon:
        entry = polygon;
        break;
    case fbx_layer_element::mapping_kind::all_same:
        break;
    }
    if (element.indices.empty())
        return entry;
    const std::int32_t index = element.indices[entry];
    return index < 0 ? fbx_none : static_cast<std::size_t>(index);
}

std::size_t fbx_mesh::triangleCount() const
{
    std::size_t count = 0;
    std::size_t begin = 0;
    for (const std::uint32_t end : polygon_ends)
    {
        count += end - begin > 2 ? end - begin - 2 : 0;
        begin = end;
    }
    return count;
}

fbx_ticks fbx_scene::ticks(double seconds) const
{
    const double wanted = std::round(seconds * ticks_per_second);
    constexpr double limit = 9.2e18; // inside the range of ticks
    return std::isnan(wanted) ? 0 : static_cast<fbx_ticks>(std::clamp(wanted, -limit, limit));
}

std::string fbx_scene::path(std::size_t node) const
{
    std::vector<std::size_t> way;
    for (std::size_t step = node; step != fbx_none; step = nodes[step].parent)
        way.push_back(step);
    std::string text;
    for (auto step = way.rbegin(); step != way.rend(); ++step)
        text += (step == way.rbegin() ? "" : "|") + nodes[*step].name;
    return text;
}

bool fbx_scene::keySpan(const fbx_stack& stack, fbx_ticks& first, fbx_ticks& last) const
{
    fbx_ticks begin = std::numeric_limits<fbx_ticks>::max();
    fbx_ticks end = std::numeric_limits<fbx_ticks>::min();
    for (const fbx_animation_layer& layer : stack.layers)
        for (const fbx_curve_node& curve_node : layer.curve_nodes)
            for (const std::size_t curve : curve_node.curves)
                if (curve != fbx_none && curves[curve].hasKeys())
                {
                    begin = std::min(begin, curves[curve].times.front());
                    end = std::max(end, curves[curve].times.back());
                }
    if (begin > end)
        return false;
    first = begin;
    last = end;
    return true;
}

} // namespace korvane
