#pragma once

// Rotations for generated poses, with the restrictions of demo_math.h: no function of the C library but the square
// root.

#include "tools/demo_data/demo_math.h"

namespace korvane::demo
{

struct quaternion // unit length
{
    double x = 0, y = 0, z = 0, w = 1;
};

// First b, then a.
constexpr quaternion operator*(const quaternion& a, const quaternion& b)
{
    return {a.w * b.x + a.x * b.w + a.y * b.z - a.z * b.y, a.w * b.y - a.x * b.z + a.y * b.w + a.z * b.x,
            a.w * b.z + a.x * b.y - a.y * b.x + a.z * b.w, a.w * b.w - a.x * b.x - a.y * b.y - a.z * b.z};
}
constexpr quaternion inverse(const quaternion& q)
{
    return {-q.x, -q.y, -q.z, q.w};
}
constexpr vec3 rotated(const quaternion& q, vec3 v)
{
    const vec3 axis{q.x, q.y, q.z};
    const vec3 t = cross(axis, v) * 2;
    return v + t * q.w + cross(axis, t);
}
inline quaternion normalisedTurn(const quaternion& q)
{
    const double size = std::sqrt(q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w);
    return size > 1e-12 ? quaternion{q.x / size, q.y / size, q.z / size, q.w / size} : quaternion{};
}
inline quaternion turnAbout(vec3 unit_axis, double degrees)
{
    const double s = sineOfTurns(degrees / 720), c = cosineOfTurns(degrees / 720);
    return {unit_axis.x * s, unit_axis.y * s, unit_axis.z * s, c};
}
// The shortest way from one direction to another, both of unit length; half a turn about otherwise when they oppose.
inline quaternion turnBetween(vec3 from, vec3 to, vec3 otherwise)
{
    const double w = 1 + dot(from, to);
    if (w < 1e-9)
        return {otherwise.x, otherwise.y, otherwise.z, 0};
    const vec3 axis = cross(from, to);
    return normalisedTurn({axis.x, axis.y, axis.z, w});
}
// Takes a direction and one across it to another such pair; all of unit length.
inline quaternion turnOfFrame(vec3 along, vec3 across, vec3 new_along, vec3 new_across)
{
    const quaternion first = turnBetween(along, new_along, across);
    return normalisedTurn(turnBetween(rotated(first, across), new_across, new_along) * first);
}

// Degrees as seen by a figure that looks along -z with its left at +x: x leans forward, y turns to the left, z leans to
// the left. The lean to the side is applied first, the turn last.
inline quaternion turnOf(vec3 degrees)
{
    return turnAbout({0, 1, 0}, -degrees.y) * turnAbout({1, 0, 0}, -degrees.x) * turnAbout({0, 0, 1}, -degrees.z);
}
// Half of the turn about the axis that is in a rotation.
inline quaternion halfTwist(const quaternion& q, vec3 unit_axis)
{
    const double along = q.x * unit_axis.x + q.y * unit_axis.y + q.z * unit_axis.z;
    const double sign = q.w < 0 ? -1 : 1;
    const quaternion twist = normalisedTurn(
        {unit_axis.x * along * sign, unit_axis.y * along * sign, unit_axis.z * along * sign, q.w * sign});
    return normalisedTurn({twist.x, twist.y, twist.z, twist.w + 1});
}

} // namespace korvane::demo
