#include "Korvane/fbx/export/export_scene.h"
#include "tests/fbx/export_fixtures.h"
#include "tests/support/mesh_builder.h"

#include <gtest/gtest.h>

#include <limits>

namespace korvane
{
namespace
{

using namespace test;

constexpr double inch = 39.37008; // inches a metre

void expectNear(const glm::dvec3& actual, const glm::dvec3& expected, double tolerance = 1e-5)
{
    for (glm::length_t i = 0; i < 3; ++i)
        EXPECT_NEAR(actual[i], expected[i], tolerance) << "component " << i;
}

export_scene sceneOf(const anim_data* skeleton, const RMV2_FILE_DATA& model)
{
    export_scene scene;
    failure why;
    EXPECT_TRUE(!skeleton || addBones(*skeleton, scene, why)) << describe(why);
    EXPECT_TRUE(addMeshes(model, 0, scene, why)) << describe(why);
    return scene;
}

TEST(export_scene, bonesAreMirroredIntoTheFilesSpaceAndInInches)
{
    export_scene scene;
    failure why;
    ASSERT_TRUE(addBones(smallSkeleton(), scene, why));
    expectNear(scene.bones[1].translation, {-0.5 * inch, inch, 0});
    // 90 degrees about z in the mirror are -90.
    expectNear(scene.bones[2].euler_degrees, {0, 0, -90});
    expectNear(scene.bones[2].global[3], {-0.5 * inch, 2 * inch, 0});
    expectNear(scene.bones[2].global[0], {0, -1, 0}); // where its x axis points
}

TEST(export_scene, limbColoursComeFromNames)
{
    const struct
    {
        const char* name;
        glm::dvec3 colour;
    } rows[] = {{"hand_left", {0, 0, 1}},
                {"hand_right", {1, 0, 0}},
                {"right_of_left", {0, 0, 1}},
                {"Left_hand", {1, 1, 0}},
                {"spine", {1, 1, 0}}};
    for (const auto& row : rows)
    {
        export_scene scene;
        failure why;
        ASSERT_TRUE(addBones(skeletonOf({bone("left_root", -1, {}), bone(row.name, 0, {})}), scene, why));
        EXPECT_EQ(scene.bones[0].limb_colour, glm::dvec3(0, 1, 1)) << "the root's";
        EXPECT_EQ(scene.bones[1].limb_colour, row.colour) << row.name;
    }
}

TEST(export_scene, aSkeletonThatIsNoTreeIsRefused)
{
    const float infinity = std::numeric_limits<float>::infinity();
    const struct
    {
        const char* name;
        anim_data skeleton;
        const char* text;
    } rows[] = {
        {"no bones", skeletonOf({}), "no bones"},
        {"a parent beyond the end", skeletonOf({bone("a", -1, {}), bone("b", 2, {})}), "bone 1 (b) has the parent 2"},
        {"its own parent", skeletonOf({bone("a", 0, {})}), "among its own descendants"},
        {"a ring of two", skeletonOf({bone("r", -1, {}), bone("a", 2, {}), bone("b", 1, {})}), "among its own"},
        {"infinity", skeletonOf({bone("a", -1, {infinity, 0, 0})}),
         "bone 0 (a) has a bind pose that is no number, or too large"},
        {"too far away", skeletonOf({bone("a", -1, {0, 1e37f, 0})}), "bone 0 (a) has a bind pose that is no number"},
    };
    for (const auto& row : rows)
    {
        export_scene scene;
        failure why;
        EXPECT_FALSE(addBones(row.skeleton, scene, why)) << row.name;
        EXPECT_NE(why.what.find(row.text), std::string::npos) << row.name << ": " << why.what;
        EXPECT_TRUE(scene.bones.empty()) << row.name;
    }
}

TEST(export_scene, aChildMayStandBeforeItsParent)
{
    export_scene scene;
    failure why;
    ASSERT_TRUE(
        addBones(skeletonOf({bone("a", 2, {0, 1, 0}), bone("b", 0, {0, 1, 0}), bone("c", -1, {0, 1, 0})}), scene, why));
    EXPECT_NEAR(scene.bones[1].global[3].y, 3 * inch, 1e-4);
    EXPECT_FALSE(scene.bones[0].is_root); // the first bone, but it has a parent
    EXPECT_TRUE(scene.bones[2].is_root);
}

TEST(export_scene, meshesAreMirroredAndTheirTrianglesRunTheOtherWayRound)
{
    const export_scene scene = sceneOf(nullptr, modelOf(triangleGroup()));
    const export_mesh& mesh = scene.meshes.at(0);
    expectNear({mesh.points[0], mesh.points[1], mesh.points[2]}, {-inch, 2 * inch, 3 * inch}, 1e-4);
    EXPECT_EQ(mesh.normals[0], -1);
    EXPECT_EQ(mesh.triangles, (std::vector<std::int32_t>{0, 2, 1}));
    EXPECT_EQ((std::vector<double>{mesh.uvs[0], mesh.uvs[1]}), (std::vector<double>{0.25, 0.75}));
    EXPECT_TRUE(mesh.clusters.empty()) << "without a skeleton there is no skin";
}

TEST(export_scene, nodesAreNumberedFromOneBehindAZero)
{
    std::vector<group_data> groups;
    for (int i = 0; i < 10; ++i)
        groups.push_back(triangleGroup());
    const export_scene scene = sceneOf(nullptr, modelOfGroups(std::move(groups)));
    EXPECT_EQ(scene.meshes[0].name, "body_group_01_lod0");
    EXPECT_EQ(scene.meshes[9].name, "body_group_010_lod0");
    EXPECT_EQ(scene.materials[9].name, "body");

    export_scene other;
    failure why;
    EXPECT_FALSE(addMeshes(modelOf(), 1, other, why));
    EXPECT_EQ(why.what, "there is no LOD 1, the model has 1");
}

TEST(export_scene, weightsOfAPointAddUpToOne)
{
    const anim_data skeleton = smallSkeleton();
    const export_scene scene =
        sceneOf(&skeleton, modelOf(groupOf("skin",
                                           {{{}, {{1, 0.5f}, {2, 0.25f}, {3, 0.25f}}}, // as it is
                                            {{}, {{1, 0.25f}, {3, 0.25f}}},            // half of it is missing
                                            {{}, {}},                                  // nothing: bone 0
                                            {{}, {{9, 0.5f}, {2, 0.5f}}},              // bone 9 does not exist
                                            {{}, {{9, 1.0f}}},
                                            {{}, {{3, 0.5f}, {3, 0.5f}}}}, // the same bone twice
                                           {})));
    const struct
    {
        std::uint32_t bone;
        std::vector<std::int32_t> points;
        std::vector<double> weights;
    } expected[] = {
        {0, {2, 4}, {1, 1}}, {1, {0, 1}, {0.5, 0.5}}, {2, {0, 3}, {0.25, 1}}, {3, {0, 1, 5}, {0.25, 0.5, 1}}};
    const auto& clusters = scene.meshes[0].clusters;
    ASSERT_EQ(clusters.size(), std::size(expected));
    for (std::size_t i = 0; i < clusters.size(); ++i)
    {
        EXPECT_EQ(clusters[i].bone, expected[i].bone);
        EXPECT_EQ(clusters[i].points, expected[i].points);
        EXPECT_EQ(clusters[i].weights, expected[i].weights);
    }
    ASSERT_EQ(scene.warnings.size(), 1u);
    EXPECT_EQ(scene.warnings[0], "skin_group_01_lod0: 2 weights left out: for bones up to 9, but the skeleton has 4");
}

TEST(export_scene, damageIsLeftOutAndSaid)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const export_scene scene = sceneOf(
        nullptr, modelOf(groupOf("", {{{1, 1, 1}, {}}, {{nan, 1, 1}, {}}, {{2, 2, 2}, {}}}, {0, 1, 2, 0, 1, 3})));
    EXPECT_EQ(scene.meshes[0].triangles.size(), 3u);
    group_data unknown = groupOf("odd", {}, {0, 1, 2}); // the reader decodes no vertices
    unknown.header.vertex_count = 3;
    unknown.header.vertex_format = 2;
    EXPECT_EQ(sceneOf(nullptr, modelOf(std::move(unknown))).warnings,
              (std::vector<std::string>{"odd_group_01_lod0: empty, its vertex format 2 is not known"}));
    EXPECT_EQ(scene.meshes[0].points[3], 0);
    EXPECT_EQ(scene.warnings,
              (std::vector<std::string>{
                  "_group_01_lod0: 1 vertex value became 0: the file holds no number there, or one that is too large",
                  "_group_01_lod0: 1 triangle left out: an index is out of range"}));
}

TEST(export_scene, materialsNameTheDiffuseAndTheNormalTexture)
{
    group_data group = triangleGroup("head"), coloured = triangleGroup(), plain = triangleGroup();
    group.textures = {{11, "s.dds", {}}, {1, "tex/n.dds", {}}, {0, "tex/d.dds", {}}, {27, "b.dds", {}}};
    coloured.textures = {{27, "b.dds", {}}};
    std::vector<group_data> groups;
    for (group_data* each : {&group, &coloured, &plain})
        groups.push_back(std::move(*each));
    const export_scene scene = sceneOf(nullptr, modelOfGroups(std::move(groups)));
    EXPECT_EQ(scene.materials[0].diffuse_path, "tex\\d.dds");
    EXPECT_EQ(scene.materials[0].normal_path, "tex\\n.dds");
    EXPECT_EQ(scene.materials[1].diffuse_path, "b.dds") << "the base colour where there is no diffuse texture";
    EXPECT_EQ(scene.materials[2].diffuse_path + scene.materials[2].normal_path, "");
}

} // namespace
} // namespace korvane
