#include "Korvane/fbx/export/euler_keys.h"
#include "Korvane/fbx/export/export_scene.h"
#include "Korvane/fbx/scene/fbx_transform.h"
#include "tests/fbx/export_fixtures.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace korvane
{
namespace
{

using namespace test;

glm::dquat rotationOf(const glm::dvec3& euler_degrees)
{
    return quaternionFromEuler(euler_degrees, fbx_rotation_order::xyz);
}

// 0 for the same rotation, whichever of its two quaternions.
double difference(const glm::dquat& a, const glm::dquat& b)
{
    return 1 - std::abs(glm::dot(a, b));
}

double largestStep(const std::vector<glm::dvec3>& keys)
{
    double largest = 0;
    for (std::size_t i = 1; i < keys.size(); ++i)
        for (glm::length_t axis = 0; axis < 3; ++axis)
            largest = std::max(largest, std::abs(keys[i][axis] - keys[i - 1][axis]));
    return largest;
}

// A bone of which rotations are known, frame by frame.
export_take takeOf(const anim_data& data, take_span span = take_span::half)
{
    export_take take;
    failure why;
    EXPECT_TRUE(makeTake(std::make_shared<anim_data>(data), smallSkeleton(), span, take, why)) << describe(why);
    return take;
}

TEST(euler_keys, anglesGiveTheRotationBack)
{
    const glm::dvec3 rows[] = {{10, 20, 30},  {-170, 80, 100}, {0, 90, 0},      {40, 90, 10},
                               {40, -90, 10}, {0, 0, 180},     {1, 89.99999, 2}};
    for (const glm::dvec3& row : rows)
        for (const double z : {0.0, 25.0})
        {
            const glm::dvec3 angles = principalAngles(rotationOf(row), z);
            EXPECT_LT(difference(rotationOf(angles), rotationOf(row)), 1e-12) << row.x << ' ' << row.y << ' ' << row.z;
            EXPECT_LE(std::abs(angles.y), 90 + 1e-9);
        }
    EXPECT_NEAR(principalAngles(rotationOf({40, 90, 10}), 25).z, 25, 1e-9) << "Z is free when Y is 90";
}

TEST(euler_keys, theNearestOfBothFamiliesIsTaken)
{
    const struct
    {
        glm::dvec3 angles, reference, expected;
    } rows[] = {
        {{-179, 0, 0}, {179, 0, 0}, {181, 0, 0}},
        {{0, 0, 10}, {0, 0, 725}, {0, 0, 730}},
        {{-175, 85, 178}, {3, 93, -4}, {5, 95, -2}}, // the other family: 5, 95, 358
        {{5, 85, 2}, {3, 93, -4}, {5, 85, 2}},
    };
    for (const auto& row : rows)
        for (glm::length_t axis = 0; axis < 3; ++axis)
            EXPECT_NEAR(nearestAngles(row.angles, row.reference)[axis], row.expected[axis], 1e-9)
                << row.angles.x << ", component " << axis;
}

TEST(euler_keys, aTurnThroughYOf90HasNoJumps)
{
    std::vector<glm::dquat> rotations;
    for (int i = 0; i <= 180; ++i) // Y from 0 to 180: principal angles jump by 180 in X and Z
        rotations.push_back(rotationOf({10, static_cast<double>(i), 20}) * (i % 2 == 0 ? 1.0 : -1.0));
    const std::vector<glm::dvec3> keys = unrolledAngles(rotations);
    EXPECT_LT(largestStep(keys), 1.001);
    EXPECT_NEAR(keys.back().y, 180, 1e-6);
    for (std::size_t i = 0; i < keys.size(); ++i)
        EXPECT_LT(difference(rotationOf(keys[i]), rotations[i]), 1e-12) << "key " << i;
}

TEST(export_take, spansHalfOfItsFramesOrAll)
{
    const std::shared_ptr<anim_data> data = smallAnimation(40, 20);
    const export_take half = takeOf(*data);
    EXPECT_EQ(half.stop_seconds, 1.0);
    EXPECT_EQ(half.rotations.at(0).keys.size(), 40u) << "keys run for the whole length all the same";
    EXPECT_NEAR(takeOf(*data, take_span::full).stop_seconds, 1.95, 1e-12);
    EXPECT_EQ(takeOf(*smallAnimation(1, 20)).stop_seconds, 0.025);
    EXPECT_EQ(takeOf(*smallAnimation(0, 20), take_span::full).stop_seconds, 0);
}

TEST(export_take, onlyMovedBonesHaveKeys)
{
    const export_take take = takeOf(*smallAnimation(3, 20));
    ASSERT_EQ(take.translations.size(), 1u);
    EXPECT_EQ(take.translations[0].bone, 1u);
    EXPECT_NEAR(take.translations[0].keys[2].x, -2 * 39.37008, 1e-9);
    EXPECT_NEAR(take.translations[0].keys[2].z, 3 * 39.37008, 1e-9);
    ASSERT_EQ(take.rotations.size(), 1u);
    EXPECT_EQ(take.rotations[0].bone, 2u);
    EXPECT_NEAR(take.rotations[0].keys[2].y, -2, 1e-4) << "turns about y the other way round in the mirror";
}

TEST(export_take, keysGoOnBeyondAWholeTurn)
{
    const export_take take = takeOf(*smallAnimation(100, 20, 7));
    EXPECT_NEAR(take.rotations.at(0).keys.back().y, -7 * 99, 1e-3);
    EXPECT_LT(largestStep(take.rotations[0].keys), 7.001);
}

TEST(export_take, tracksOfBonesThatTheSkeletonLacksArePassedOver)
{
    auto data = smallAnimation(2, 20);
    data->animated_rotations = {40};
    const export_take take = takeOf(*data);
    EXPECT_TRUE(take.rotations.empty());
    EXPECT_EQ(take.translations.size(), 1u);
}

TEST(export_take, whatCannotBeTimedOrIsNoNumberIsRefused)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const auto refused = [](const std::shared_ptr<anim_data>& data) {
        export_take take;
        failure why;
        EXPECT_FALSE(makeTake(data, smallSkeleton(), take_span::half, take, why));
        EXPECT_EQ(take.frame_count, 0u);
        return why.what;
    };
    EXPECT_EQ(refused(smallAnimation(2, 0)), "a frame rate of 0 frames a second cannot be exported");
    EXPECT_EQ(refused(smallAnimation(2, nan)), "a frame rate of nan frames a second cannot be exported");
    auto data = smallAnimation(2, 20);
    data->translations[1].y = nan;
    EXPECT_EQ(refused(data), "frame 1, translation 0 is no number, or too large");
    data->translations[1].y = 1e37f; // as inches it is infinite
    EXPECT_EQ(refused(data), "frame 1, translation 0 is no number, or too large");
    EXPECT_EQ(refused(smallAnimation(101000, 0.001f)), "101,000 frames at 0.001 a second are too long for a file");
}

} // namespace
} // namespace korvane
