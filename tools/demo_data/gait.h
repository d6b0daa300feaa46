#pragma once

// How a foot or a hoof goes round in a gait: on the ground it moves back at an even speed, as the ground does below a
// figure that walks on the spot; then it swings forward. The cycle is 1 long.

#include "tools/demo_data/demo_math.h"

namespace korvane::demo
{

struct step_shape
{
    double stride = 1; // metres that the figure travels in a cycle
    double duty = 0.6; // part of the cycle during which the foot is on the ground
    double lift = 0.1; // height of the swing
};

struct step
{
    double ahead = 0;  // metres before the middle of the step
    double height = 0; // above the ground
    double swing = -1; // 0 to 1 while the foot is in the air, else below zero
};

inline step stepAt(const step_shape& shape, double cycle)
{
    const double p = fraction(cycle), half = shape.stride * shape.duty / 2;
    if (p < shape.duty)
        return {half - shape.stride * p, 0, -1};
    // A cubic that begins and ends at the speed of the ground.
    const double s = (p - shape.duty) / (1 - shape.duty), slope = -shape.stride * (1 - shape.duty);
    const double swung = (3 - 2 * s) * s * s;
    const double ahead = mix(-half, half, swung) + slope * (((s - 2) * s + 1) * s + (s - 1) * s * s);
    const double up = sineOfTurns(s / 2);
    return {ahead, shape.lift * up * up, s};
}

} // namespace korvane::demo
