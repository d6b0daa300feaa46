#include "Korvane/scene/scene_geometry.h"

#include <algorithm>
#include <cmath>

namespace korvane
{

float usableCoordinate(float value)
{
    return std::isfinite(value) ? std::clamp(value, -furthest_coordinate, furthest_coordinate) : 0.0f;
}

glm::vec3 usableCoordinates(const glm::vec3& value)
{
    return {usableCoordinate(value.x), usableCoordinate(value.y), usableCoordinate(value.z)};
}

void model_bounds::add(const model_bounds& box, const glm::mat4& place)
{
    if (box.isEmpty())
        return;
    for (int corner = 0; corner < 8; ++corner)
        add(usableCoordinates(
            glm::vec3(place * glm::vec4(corner & 1 ? box.max.x : box.min.x, corner & 2 ? box.max.y : box.min.y,
                                        corner & 4 ? box.max.z : box.min.z, 1))));
}

triangle_count measureGroup(const vertex_store& store, model_bounds& bounds)
{
    return forEachTriangle(store, [&](std::size_t first) {
        for (std::size_t corner = first; corner < first + 3; ++corner)
            bounds.add(usableCoordinates(store.vertices[store.indices[corner]].position));
    });
}

} // namespace korvane
