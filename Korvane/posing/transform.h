#pragma once

// The arithmetic of poses, and the one place that says in which order things are multiplied.
//
// The games and DirectXMath count in row vectors: a transform A and then B is A x B, a point is v x M. GLM counts in
// columns, so factors change places here while the sixteen numbers in memory stay the same (the translation is matrix
// row 3 there and column [3] here; a shader reads both alike):
//
//                            row vectors, DirectXMath             GLM, in this program
//   matrices, A then B       A x B                                b * a
//   rotations, A then B      XMQuaternionMultiply(A, B)           b * a
//   a vector turned by q     XMVector3Rotate(v, q) = q* v q       q v q*      (the same turn; * is the conjugate)
//   matrix of q, then move   XMMatrixRotationQuaternion(q) x T    t * mat4_cast(q)
//
// Rotations of files are rounded to 16 bits and so a little off the unit length. Nothing is normalised on the way: what
// is shown is what the file says.

#include <glm/gtc/quaternion.hpp>
#include <glm/mat4x4.hpp>
#include <glm/vec3.hpp>

namespace korvane
{

// The rotation that does first and then second.
[[nodiscard]] inline glm::quat followedBy(const glm::quat& first, const glm::quat& second)
{
    return second * first;
}

// q v q*: for a rotation that is not of unit length the vector grows by its square.
[[nodiscard]] inline glm::vec3 rotated(const glm::vec3& vector, const glm::quat& rotation)
{
    const glm::vec3 axis(rotation.x, rotation.y, rotation.z);
    const float w = rotation.w;
    return vector * (w * w - glm::dot(axis, axis)) + axis * (2 * glm::dot(axis, vector)) +
           glm::cross(axis, vector) * (2 * w);
}

// Turns, then moves.
[[nodiscard]] inline glm::mat4 transformMatrix(const glm::vec3& translation, const glm::quat& rotation)
{
    glm::mat4 matrix = glm::mat4_cast(rotation);
    matrix[3] = glm::vec4(translation, 1);
    return matrix;
}

// The rotation at t (0 to 1) between two: spherical, along the shorter arc. From a cosine of the angle of 0.99999 on
// the two are blended linearly, without normalising.
[[nodiscard]] glm::quat shorterArc(const glm::quat& from, const glm::quat& to, float t);

[[nodiscard]] inline glm::vec3 between(const glm::vec3& from, const glm::vec3& to, float t)
{
    return from + (to - from) * t;
}

} // namespace korvane
