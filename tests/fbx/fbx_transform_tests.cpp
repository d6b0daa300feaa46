#include "Korvane/fbx/scene/fbx_transform.h"

#include <glm/geometric.hpp>

#include <gtest/gtest.h>

namespace korvane
{
namespace
{

glm::dvec3 imageOf(const glm::dmat4& matrix, const glm::dvec3& point)
{
    return glm::dvec3(matrix * glm::dvec4(point, 1));
}

void expectNear(const glm::dvec3& actual, const glm::dvec3& expected, const char* what)
{
    EXPECT_LT(glm::distance(actual, expected), 1e-8)
        << what << ": " << actual.x << " " << actual.y << " " << actual.z << " instead of " << expected.x << " "
        << expected.y << " " << expected.z;
}

} // namespace

// Products of the three plain rotation matrices for 30, 60 and 90 degrees, the first letter next to the point.
TEST(fbx_transform, theFirstLetterOfAnOrderActsFirst)
{
    const struct
    {
        const char* name;
        fbx_rotation_order order;
        glm::dvec3 expected;
    } rows[] = {
        {"xyz", fbx_rotation_order::xyz, {-0.232050808, 3.616025404, 0.933012702}},
        {"xzy", fbx_rotation_order::xzy, {3, 1, 2}},
        {"yzx", fbx_rotation_order::yzx, {-2, 2.366025404, 2.098076211}},
        {"yxz", fbx_rotation_order::yxz, {-1.415063509, 3.098076211, 1.549038106}},
        {"zxy", fbx_rotation_order::zxy, {1.683012702, -0.633974596, 3.281088913}},
        {"zyx", fbx_rotation_order::zyx, {1.598076211, -0.75, 3.299038106}},
        {"spheric", fbx_rotation_order::spheric_xyz, {-0.232050808, 3.616025404, 0.933012702}},
    };
    for (const auto& row : rows)
        expectNear(quaternionFromEuler({30, 60, 90}, row.order) * glm::dvec3(1, 2, 3), row.expected, row.name);
}

TEST(fbx_transform, anglesOfARotationGiveItBackInEveryOrder)
{
    for (int order = 0; order < 6; ++order)
        for (double x = -180; x <= 180; x += 45)
            for (double y = -180; y <= 180; y += 45)
                for (double z = -150; z <= 150; z += 50)
                {
                    const auto kind = static_cast<fbx_rotation_order>(order);
                    const glm::dquat rotation = quaternionFromEuler({x, y, z}, kind);
                    const glm::dquat again = quaternionFromEuler(eulerFromQuaternion(rotation, kind), kind);
                    ASSERT_NEAR(std::abs(glm::dot(rotation, again)), 1, 1e-12)
                        << order << ": " << x << " " << y << " " << z;
                }
}

// Each row worked out by hand for the point (1, 2, 3): quarter turns about x (y z -> -z y), y (z x -> -x z) and z
// (x y -> -y x).
TEST(fbx_transform, everyTermOfALocalTransformActsAtItsPlace)
{
    constexpr auto zyx = fbx_rotation_order::zyx;
    const struct
    {
        const char* name;
        fbx_placement placement;
        glm::dvec3 expected;
    } rows[] = {
        {"translation", {.translation = {1, 2, 3}}, {2, 4, 6}},
        {"rotation", {.rotation = {90, 0, 0}}, {1, -3, 2}},
        {"scaling", {.scaling = {2, 3, -4}}, {2, 6, -12}},
        {"rotation offset is not turned", {.rotation = {0, 0, 90}, .rotation_offset = {1, 0, 0}}, {-1, 1, 3}},
        {"rotation pivot", {.rotation = {90, 0, 0}, .rotation_pivot = {0, 1, 0}}, {1, -2, 1}},
        {"scaling offset is turned", {.rotation = {0, 0, 90}, .scaling_offset = {5, 0, 0}}, {-2, 6, 3}},
        {"scaling pivot", {.scaling = {2, 2, 2}, .scaling_pivot = {1, 1, 1}}, {1, 3, 5}},
        {"pre-rotation acts last",
         {.rotation = {90, 0, 0}, .pre_rotation = {0, 0, 90}, .rotation_active = true},
         {3, 1, 2}},
        {"post-rotation acts first and backwards",
         {.rotation = {90, 0, 0}, .post_rotation = {0, 0, 90}, .rotation_active = true},
         {2, -3, -1}},
        {"pre-rotation keeps its own order",
         {.pre_rotation = {90, 90, 0}, .rotation_order = zyx, .rotation_active = true},
         {2, -3, -1}},
        {"without rotation_active",
         {.rotation = {90, 90, 0}, .pre_rotation = {0, 0, 90}, .post_rotation = {0, 0, 90}, .rotation_order = zyx},
         {2, -3, -1}},
        {"for limits only",
         {.rotation = {90, 90, 0},
          .pre_rotation = {0, 0, 90},
          .post_rotation = {0, 0, 90},
          .rotation_order = zyx,
          .rotation_active = true,
          .rotation_space_for_limit_only = true},
         {2, -3, -1}},
        {"together",
         {.translation = {1, 0, 0},
          .rotation = {0, 0, 90},
          .scaling = {3, 1, 1},
          .rotation_offset = {0, 1, 0},
          .rotation_pivot = {0, 0, 1},
          .scaling_offset = {2, 0, 0},
          .scaling_pivot = {1, 0, 0}},
         {-1, 4, 3}},
    };
    for (const auto& row : rows)
        expectNear(imageOf(localTransform(row.placement).matrix(), {1, 2, 3}), row.expected, row.name);
}

TEST(fbx_transform, theGeometricPartIsOfItsOwn)
{
    fbx_placement placement;
    placement.geometric_translation = {1, 0, 0};
    placement.geometric_rotation = {0, 0, 90};
    placement.geometric_scaling = {2, 1, 1};
    expectNear(imageOf(geometricTransform(placement).matrix(), {1, 2, 3}), {-1, 2, 3}, "geometric");
    expectNear(imageOf(localTransform(placement).matrix(), {1, 2, 3}), {1, 2, 3}, "local");
}

// Parent: (x, y) -> (10 - 3y, 2x). The child's origin (1, 1) lies at (7, 2) whatever is inherited; the three rows
// differ in what the parent's scale (2, 3) does to the child's axes, which are 5 and 7 long and turned by a quarter.
TEST(fbx_transform, inheritTypesDifferInTheParentsScale)
{
    const fbx_transform parent = {{10, 0, 0}, quaternionFromEuler({0, 0, 90}, fbx_rotation_order::xyz), {2, 3, 1}};
    const fbx_transform child = {{1, 1, 0}, quaternionFromEuler({0, 0, 90}, fbx_rotation_order::xyz), {5, 7, 1}};
    const struct
    {
        const char* name;
        fbx_inherit kind;
        glm::dvec3 x;
        glm::dvec3 y;
    } rows[] = {
        {"rs_rs", fbx_inherit::rs_rs, {-8, 2, 0}, {7, -12, 0}},
        {"rr_ss", fbx_inherit::rr_ss, {-3, 2, 0}, {7, -19, 0}},
        {"rr_s", fbx_inherit::rr_s, {2, 2, 0}, {7, -5, 0}},
    };
    const fbx_world above = worldTransform({}, fbx_inherit::rs_rs, parent);
    for (const auto& row : rows)
    {
        const fbx_world world = worldTransform(above, row.kind, child);
        expectNear(imageOf(world.matrix, {0, 0, 0}), {7, 2, 0}, row.name);
        expectNear(imageOf(world.matrix, {1, 0, 0}), row.x, row.name);
        expectNear(imageOf(world.matrix, {0, 1, 0}), row.y, row.name);
    }
}

// Two quarters turn x to -x; the grandparent's scale stays on the axes of the world.
TEST(fbx_transform, onlyTheParentsOwnScaleIsLeftOut)
{
    const glm::dquat quarter = quaternionFromEuler({0, 0, 90}, fbx_rotation_order::xyz);
    const fbx_world grandparent = worldTransform({}, fbx_inherit::rs_rs, {{}, {1, 0, 0, 0}, {2, 3, 1}});
    const fbx_world parent =
        worldTransform(grandparent, fbx_inherit::rs_rs, {{}, quarter, glm::dvec3(0)}); // cannot be divided by
    const fbx_world child = worldTransform(parent, fbx_inherit::rr_s, {{}, quarter, glm::dvec3(5)});
    expectNear(imageOf(child.matrix, {1, 1, 1}), {-10, -15, 5}, "child");
}

} // namespace korvane
