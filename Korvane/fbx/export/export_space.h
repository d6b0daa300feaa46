#pragma once

// From the program's space, left-handed and in metres, to that of exported files (export_scene.h).

#include "Korvane/fbx/export/export_scene.h"

#include <glm/geometric.hpp>
#include <glm/gtc/quaternion.hpp>
#include <glm/mat4x4.hpp>
#include <glm/vec3.hpp>

#include <cmath>

namespace korvane
{

inline bool isFinite(const glm::vec3& value)
{
    return std::isfinite(value.x) && std::isfinite(value.y) && std::isfinite(value.z);
}

inline bool isFinite(const glm::quat& value)
{
    return std::isfinite(value.x) && std::isfinite(value.y) && std::isfinite(value.z) && std::isfinite(value.w);
}

// Larger ones would be infinite as the binary32 inches of keys, when many bones add up.
inline constexpr float largest_exported = 1e30f;

inline bool isExportable(float value)
{
    return std::abs(value) <= largest_exported; // false for what is no number
}

inline bool isExportable(const glm::vec3& value)
{
    return isExportable(value.x) && isExportable(value.y) && isExportable(value.z);
}

inline glm::dvec3 exportedDirection(const glm::vec3& value)
{
    // 0 - x, which is never -0: a file of minus signs is hard to read.
    return {0 - static_cast<double>(value.x), static_cast<double>(value.y), static_cast<double>(value.z)};
}

inline glm::dvec3 exportedTranslation(const glm::vec3& metres)
{
    return exportedDirection(metres) * inches_per_metre;
}

// Of unit length, which the 16 bits of files are not quite; no turn at all when there is none in the file.
inline glm::dquat exportedRotation(const glm::quat& rotation)
{
    const glm::dquat mirrored(static_cast<double>(rotation.w), static_cast<double>(rotation.x),
                              -static_cast<double>(rotation.y), -static_cast<double>(rotation.z));
    const double length = glm::length(mirrored);
    return length > 1e-9 ? mirrored / length : glm::dquat(1, 0, 0, 0);
}

inline glm::dmat4 exportedPlace(const glm::mat4& place)
{
    glm::dmat4 mirrored(place);
    for (glm::length_t i = 1; i < 4; ++i) // x against everything else
    {
        mirrored[0][i] = 0 - mirrored[0][i];
        mirrored[i][0] = 0 - mirrored[i][0];
    }
    mirrored[3] = glm::dvec4(glm::dvec3(mirrored[3]) * inches_per_metre, 1);
    return mirrored;
}

} // namespace korvane
