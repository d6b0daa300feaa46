#pragma once

// What of a decoded group can be shown at all: coordinates that are numbers, and triangles whose vertices exist.
// Whatever draws, frames or counts asks here, so that all agree.

#include "Korvane/models/rmv2_data.h"

#include <glm/common.hpp>
#include <glm/gtc/quaternion.hpp>
#include <glm/mat4x4.hpp>
#include <glm/vec3.hpp>

#include <cstddef>
#include <limits>
#include <utility>

namespace korvane
{

// NaN and infinity become 0; beyond a kilometre a coordinate is damage too, and would swallow the rest of the model.
inline constexpr float furthest_coordinate = 1000.0f;
[[nodiscard]] float usableCoordinate(float value);
[[nodiscard]] glm::vec3 usableCoordinates(const glm::vec3& value);

// A number with which bones can be placed: beyond a thousand kilometres it is damage, and products would overflow.
[[nodiscard]] inline bool isUsable(float value)
{
    return value >= -1e6f && value <= 1e6f; // false for what is no number
}
[[nodiscard]] inline bool isUsable(const glm::vec3& value)
{
    return isUsable(value.x) && isUsable(value.y) && isUsable(value.z);
}
[[nodiscard]] inline bool isUsable(const glm::quat& value)
{
    return isUsable(value.x) && isUsable(value.y) && isUsable(value.z) && isUsable(value.w);
}
[[nodiscard]] inline bool isUsable(const glm::mat4& value)
{
    return isUsable(glm::vec3(value[0])) && isUsable(glm::vec3(value[1])) && isUsable(glm::vec3(value[2])) &&
           isUsable(glm::vec3(value[3]));
}

// An axis-aligned box.
struct model_bounds
{
    glm::vec3 min{std::numeric_limits<float>::max()};
    glm::vec3 max{std::numeric_limits<float>::lowest()};

    bool isEmpty() const { return min.x > max.x; }
    glm::vec3 centre() const { return isEmpty() ? glm::vec3(0) : (min + max) * 0.5f; }
    glm::vec3 extent() const { return isEmpty() ? glm::vec3(0) : max - min; }
    void add(const glm::vec3& point)
    {
        min = glm::min(min, point);
        max = glm::max(max, point);
    }
    void add(const model_bounds& box, const glm::mat4& place); // the corners of a box that stands there
};

struct triangle_count
{
    std::size_t drawn = 0;
    std::size_t dropped = 0; // name a vertex that does not exist
};

// Calls visit(index of the first corner) for each triangle that can be drawn, in their order: of those between two
// places in the indices that are multiples of three, or of all.
template <class visitor>
triangle_count forEachTriangle(const vertex_store& store, std::size_t first, std::size_t end, visitor&& visit)
{
    triangle_count count;
    const auto exists = [&store](std::size_t corner) { return store.indices[corner] < store.vertices.size(); };
    for (std::size_t i = first; i + 2 < end; i += 3)
    {
        if (exists(i) && exists(i + 1) && exists(i + 2))
        {
            visit(i);
            ++count.drawn;
        }
        else
            ++count.dropped;
    }
    return count;
}
template <class visitor>
triangle_count forEachTriangle(const vertex_store& store, visitor&& visit)
{
    return forEachTriangle(store, 0, store.indices.size(), std::forward<visitor>(visit));
}

// Takes the vertices that triangles use into the bounds (a group's stored box may say anything).
triangle_count measureGroup(const vertex_store& store, model_bounds& bounds);

} // namespace korvane
