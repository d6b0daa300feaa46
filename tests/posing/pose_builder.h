#pragma once

// Skeletons and animations put together by hand, and comparisons of poses.

#include "Korvane/animation/anim_file.h"
#include "Korvane/posing/joint.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace korvane::test
{

inline const float half_root = std::sqrt(0.5f);
inline const glm::quat about_x_90(half_root, half_root, 0, 0); // (w, x, y, z)
inline const glm::quat about_z_90(half_root, 0, 0, half_root);

struct test_bone
{
    std::uint32_t index;
    std::int32_t parent;
    glm::vec3 translation{0};
    glm::quat rotation{1, 0, 0, 0};
};

inline std::vector<joint> joints(const std::vector<test_bone>& bones)
{
    std::vector<joint> result;
    for (const test_bone& bone : bones)
    {
        joint& target = result.emplace_back();
        target.name = "bone_" + std::to_string(bone.index);
        target.index = bone.index;
        target.parent = bone.parent;
        target.translation = bone.translation;
        target.rotation = bone.rotation;
    }
    return result;
}

inline anim_data skeleton(const std::vector<test_bone>& bones)
{
    anim_data data;
    data.version = 5;
    for (const test_bone& bone : bones)
        data.bones.push_back(
            {"bone_" + std::to_string(bone.index), bone.index, bone.parent, bone.translation, bone.rotation});
    return data;
}

// A named result, so that a failing row says which one it is.
inline void expectNear(const glm::vec3& actual, const glm::vec3& expected, const std::string& what)
{
    for (int i = 0; i < 3; ++i)
        EXPECT_NEAR(actual[i], expected[i], 1e-6f) << what << ", component " << i;
}

inline void expectNear(const glm::quat& actual, const glm::quat& expected, const std::string& what)
{
    for (const auto& [a, e, name] : {std::tuple{actual.w, expected.w, "w"},
                                     {actual.x, expected.x, "x"},
                                     {actual.y, expected.y, "y"},
                                     {actual.z, expected.z, "z"}})
        EXPECT_NEAR(a, e, 2e-7f) << what << ", " << name;
}

} // namespace korvane::test
