// Everything by hand: quarter turns, and the half-angle formulas.

#include "Korvane/posing/transform.h"
#include "tests/posing/pose_builder.h"

#include <gtest/gtest.h>

#include <cstring>

namespace korvane
{

namespace
{

using namespace test;

TEST(transform, firstAndThenSecondIsTheOrderOfTheFactors)
{
    // About z: x to y. About x: y to z. So x goes to z; the other way round x stays at first and ends as y.
    expectNear(rotated({1, 0, 0}, about_z_90), {0, 1, 0}, "about z");
    expectNear(rotated({0, 1, 0}, about_x_90), {0, 0, 1}, "about x");
    expectNear(followedBy(about_z_90, about_x_90), {0.5f, 0.5f, -0.5f, 0.5f}, "z then x");
    expectNear(followedBy(about_x_90, about_z_90), {0.5f, 0.5f, 0.5f, 0.5f}, "x then z");
    expectNear(rotated({1, 0, 0}, followedBy(about_z_90, about_x_90)), {0, 0, 1}, "z then x");
    expectNear(rotated({1, 0, 0}, followedBy(about_x_90, about_z_90)), {0, 1, 0}, "x then z");
    // Twice as long a quaternion: q v q* makes vectors four times as long.
    expectNear(rotated({1, 0, 0}, {2 * half_root, 0, 0, 2 * half_root}), {0, 4, 0}, "not of unit length");
}

TEST(transform, matricesLieInMemoryAsRowVectorsReadThem)
{
    // Rows: where x, y and z go, and the translation.
    const float expected[16] = {0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 1, 2, 3, 1};
    const glm::mat4 matrix = transformMatrix({1, 2, 3}, about_z_90);
    float actual[16];
    std::memcpy(actual, &matrix, sizeof actual);
    for (int i = 0; i < 16; ++i)
        EXPECT_NEAR(actual[i], expected[i], 1e-6f) << i;
    // A then B: x by A to (1, 3, 3), by B (about x, then up by 10) to (1, -3, 3 + 10).
    const glm::mat4 both = transformMatrix({0, 0, 10}, about_x_90) * matrix;
    expectNear(glm::vec3(both * glm::vec4(1, 0, 0, 1)), {1, -3, 13}, "A then B");
}

TEST(transform, interpolationTakesTheShorterArcAndIsLinearFrom099999On)
{
    const glm::quat none(1, 0, 0, 0);
    const struct
    {
        const char* name;
        glm::quat from, to;
        float t;
        glm::quat expected;
    } rows[] = {
        {"a third of 90 degrees", none, about_z_90, 1.0f / 3, {0.96592583f, 0, 0, 0.25881905f}},
        {"the same, named by its negative", none, -about_z_90, 1.0f / 3, {0.96592583f, 0, 0, 0.25881905f}},
        {"from the negative: the result keeps the sign of the first",
         -none,
         about_z_90,
         1.0f / 3,
         {-0.96592583f, 0, 0, -0.25881905f}},
        {"300 degrees are 60 the other way",
         none,
         {-std::sqrt(0.75f), 0, 0.5f, 0},
         0.5f,
         {0.96592583f, 0, -0.25881905f, 0}},
        {"half a turn", none, {0, 0, 1, 0}, 0.25f, {0.92387953f, 0, 0.38268343f, 0}},
        {"the end", none, about_x_90, 1, about_x_90},
        // A cosine of 0.999995: the chord's middle. Spherical would give w = 0.99999875.
        {"above the threshold", none, {0.999995f, 0.0031622737f, 0, 0}, 0.5f, {0.9999975f, 0.00158113685f, 0, 0}},
        // A cosine of 0.99998: half the angle. Linear would give w = 0.99999.
        {"below the threshold", none, {0.99998f, 0.0063245236f, 0, 0}, 0.5f, {0.999995f, 0.0031622776f, 0, 0}},
        {"longer than one: linear", {1.5f, 0, 0, 0}, {1.5f, 0, 0, 0.5f}, 0.5f, {1.5f, 0, 0, 0.25f}},
    };
    for (const auto& row : rows)
        expectNear(shorterArc(row.from, row.to, row.t), row.expected, row.name);
}

} // namespace

} // namespace korvane
