#include "Korvane/fbx/export/dae_export.h"
#include "Korvane/fbx/export/dae_nodes.h"
#include "tests/fbx/export_fixtures.h"

#include <gtest/gtest.h>
#include <pugixml.hpp>

namespace korvane
{
namespace
{

using namespace test;

std::string textOf(const pugi::xml_document& document, const char* path)
{
    const pugi::xpath_node found = document.select_node(path);
    return found.attribute() ? found.attribute().value() : found.node().text().get();
}

TEST(dae_export, holdsTheSceneInInchesWithYUp)
{
    export_scene scene;
    failure why;
    ASSERT_TRUE(addBones(smallSkeleton(), scene, why));
    std::vector<group_data> groups;
    groups.push_back(triangleGroup("a & <b>\x01\xef\xbf\xbf"));
    groups[0].textures = {{0, "my tex/d.dds", {}}};
    ASSERT_TRUE(addMeshes(modelOfGroups(std::move(groups)), 0, scene, why));
    export_take take;
    ASSERT_TRUE(makeTake(smallAnimation(4, 20), smallSkeleton(), take_span::half, take, why));
    const auto slashes = [](const std::string&) { return std::string("my tex/d.dds"); };
    pugi::xml_document document;
    ASSERT_TRUE(document.load_string(dae_export(scene, {true, slashes}).text(&take).c_str()));

    EXPECT_EQ(textOf(document, "//unit/@meter"), "0.0254");
    EXPECT_EQ(textOf(document, "//up_axis"), "Y_UP");
    EXPECT_EQ(textOf(document, "//image/init_from"), "my%20tex/d.dds");
    EXPECT_EQ(textOf(document, "//geometry/@name"), "a & <b>___group_01_lod0_mesh");
    EXPECT_EQ(textOf(document, "//triangles/p"), "0 2 1");
    EXPECT_EQ(textOf(document, "//controller/@name"), "a & <b>___group_01_lod0_skin  ");
    EXPECT_EQ(textOf(document, "//skin//Name_array"), "spine arm_left arm_right") << "the joints";
    EXPECT_EQ(textOf(document, "//vertex_weights/v"), "0 0 1 1 2 2");
    EXPECT_EQ(textOf(document, "//node[@id='spine']/@type"), "JOINT");
    EXPECT_EQ(textOf(document, "//node[@id='spine']/matrix"), "1 0 0 -19.68504 0 1 0 39.37008 0 0 1 0 0 0 0 1");
    EXPECT_EQ(textOf(document, "//node[@id='arm_left']/matrix"), "0 1 0 0 -1 0 0 39.37008 0 0 1 0 0 0 0 1");
    EXPECT_EQ(textOf(document, "//animation_clip/@end"), "0.1") << "half of four frames at 20 a second";
    EXPECT_EQ(textOf(document, "//channel[@target='spine/transform']/@source"), "#spine_sampler");
    EXPECT_EQ(textOf(document, "//float_array[@id='spine_keys-array']").substr(0, 90),
              "1 0 0 0 0 1 0 78.74016 0 0 1 118.11024 0 0 0 1 1 0 0 -39.37008 0 1 0 78.74016 0 0 1 118.11");
    EXPECT_EQ(textOf(document, "//float_array[@id='take-times-array']"), "0 0.05 0.1 0.15");
}

TEST(dae_export, idsAreMadeOfWhatXmlTakesAndNeverTwice)
{
    dae_nodes::id_list ids;
    EXPECT_EQ(ids.make("bone a"), "bone_a");
    EXPECT_EQ(ids.make("bone:a"), "bone_a_2");
    EXPECT_EQ(ids.make("1st"), "_1st");
    EXPECT_EQ(ids.make(""), "_");
    EXPECT_EQ(ids.make("\xc3\xa4"), "__");
}

TEST(dae_export, aModelAloneHasNoControllersAndWithoutMaterialsNone)
{
    export_scene scene;
    failure why;
    std::vector<group_data> groups;
    groups.push_back(triangleGroup());
    ASSERT_TRUE(addMeshes(modelOfGroups(std::move(groups)), 0, scene, why));
    pugi::xml_document document;
    ASSERT_TRUE(document.load_string(dae_export(scene, {false, {}}).text(nullptr).c_str()));
    EXPECT_EQ(textOf(document, "//instance_geometry/@url"), "#body_group_01_lod0_mesh");
    for (const char* absent : {"//library_controllers", "//library_materials", "//library_animations", "//skeleton"})
        EXPECT_FALSE(document.select_node(absent)) << absent;
}

} // namespace
} // namespace korvane
