#pragma once

// Rotations as the Euler angles that FBX and Collada files animate: X acts first, then Y, then Z, in degrees. Between
// two keys a reader turns each angle by itself, so that neighbouring keys must lie close together. Plain values: any
// thread.

#include <glm/gtc/quaternion.hpp>
#include <glm/mat4x4.hpp>
#include <glm/vec3.hpp>

#include <span>
#include <vector>

namespace korvane
{

// Y within -90 to 90. Where Y is 90 or -90, X and Z turn about the same axis and only their difference or sum counts:
// Z then is what the caller asks for.
[[nodiscard]] glm::dvec3 principalAngles(const glm::dquat& rotation, double z_when_locked = 0);

// Back again.
[[nodiscard]] glm::dquat rotationOf(const glm::dvec3& euler_degrees);
// Where a bone is relative to its parent: turned by X, then Y, then Z, then moved.
[[nodiscard]] glm::dmat4 localMatrix(const glm::dvec3& translation, const glm::dvec3& euler_degrees);

// Of all angles that give the same rotation those that lie next to the reference: (x, y, z) and (x + 180, 180 - y,
// z + 180), each with any number of whole turns.
[[nodiscard]] glm::dvec3 nearestAngles(const glm::dvec3& euler_degrees, const glm::dvec3& reference);

// One key for each rotation; the first one's angles are the principal ones, every other key lies next to the one
// before.
[[nodiscard]] std::vector<glm::dvec3> unrolledAngles(std::span<const glm::dquat> rotations);

} // namespace korvane
