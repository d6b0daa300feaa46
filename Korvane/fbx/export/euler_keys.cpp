#include "Korvane/fbx/export/euler_keys.h"

#include <glm/geometric.hpp>
#include <glm/trigonometric.hpp>

#include <algorithm>
#include <cmath>

namespace korvane
{

namespace
{

// Below this cosine of Y the angles of X and Z are made of rounding errors: rotations of files have 16 bits.
constexpr double locked_cosine = 1e-6;
constexpr double rounding_error = 1e-12; // of sines and cosines

double nearestTurn(double degrees, double reference)
{
    return degrees + 360 * std::round((reference - degrees) / 360);
}

} // namespace

glm::dvec3 principalAngles(const glm::dquat& rotation, double z_when_locked)
{
    const glm::dmat3 m = glm::mat3_cast(rotation); // m[column][row]
    const double cosine = std::hypot(m[0][0], m[0][1]);
    const double y = std::atan2(-m[0][2], cosine);
    if (cosine > locked_cosine)
        return glm::degrees(glm::dvec3(std::atan2(m[1][2], m[2][2]), y, std::atan2(m[0][1], m[0][0])));
    // Turned back by Z what is left is Y and then X, and the middle column shows X alone.
    const double z = glm::radians(z_when_locked);
    const double sine_of_x = -(m[2][1] * std::cos(z) - m[2][0] * std::sin(z));
    const double cosine_of_x = m[1][1] * std::cos(z) - m[1][0] * std::sin(z);
    return glm::degrees(glm::dvec3(std::atan2(sine_of_x, cosine_of_x), y, z));
}

glm::dquat rotationOf(const glm::dvec3& euler_degrees)
{
    return glm::dquat(glm::radians(euler_degrees));
}

glm::dmat4 localMatrix(const glm::dvec3& translation, const glm::dvec3& euler_degrees)
{
    glm::dmat4 matrix = glm::mat4_cast(rotationOf(euler_degrees));
    for (glm::length_t column = 0; column < 3; ++column)
        for (glm::length_t row = 0; row < 3; ++row)
            if (std::abs(matrix[column][row]) < rounding_error)
                matrix[column][row] = 0;
    matrix[3] = glm::dvec4(translation, 1);
    return matrix;
}

glm::dvec3 nearestAngles(const glm::dvec3& euler_degrees, const glm::dvec3& reference)
{
    const auto turned = [&reference](const glm::dvec3& angles) {
        return glm::dvec3(nearestTurn(angles.x, reference.x), nearestTurn(angles.y, reference.y),
                          nearestTurn(angles.z, reference.z));
    };
    const auto distance = [&reference](const glm::dvec3& angles) {
        return glm::dot(angles - reference, angles - reference);
    };
    const glm::dvec3 same = turned(euler_degrees);
    const glm::dvec3 other = turned({euler_degrees.x + 180, 180 - euler_degrees.y, euler_degrees.z + 180});
    return distance(other) < distance(same) ? other : same;
}

std::vector<glm::dvec3> unrolledAngles(std::span<const glm::dquat> rotations)
{
    std::vector<glm::dvec3> keys;
    keys.reserve(rotations.size());
    for (const glm::dquat& rotation : rotations)
        keys.push_back(keys.empty() ? principalAngles(rotation)
                                    : nearestAngles(principalAngles(rotation, keys.back().z), keys.back()));
    return keys;
}

} // namespace korvane
