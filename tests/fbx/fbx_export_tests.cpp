#include "EASY_GUI/services/version.h"
#include "Korvane/fbx/export/fbx_export.h"
#include "Korvane/fbx/export/scene_exporter.h"
#include "tests/fbx/export_fixtures.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <glm/gtc/type_ptr.hpp>

#include <map>

namespace korvane
{
namespace
{

using namespace test;

constexpr std::int64_t second = 46186158000; // ticks

// What an exported document says, found by the records alone.
class exported
{
public:
    explicit exported(const fbx_document& document) : m_document(document)
    {
        for (const fbx_record& object : document.find("Objects")->children)
            m_objects[object.integerAt(0)] = &object;
    }

    // By the name before the separator.
    const fbx_record& object(const std::string& class_name, const std::string& name) const
    {
        for (const fbx_record& candidate : m_document.find("Objects")->children)
            if (candidate.name == class_name && nameOf(candidate) == name)
                return candidate;
        ADD_FAILURE() << "there is no " << class_name << " " << name;
        static const fbx_record none("none");
        return none;
    }

    std::size_t count(const std::string& class_name) const
    {
        std::size_t number = 0;
        for (const fbx_record& candidate : m_document.find("Objects")->children)
            number += candidate.name == class_name;
        return number;
    }

    // The names of what is connected to an object, in the order of the connections; "" is the scene.
    std::vector<std::string> below(const std::string& class_name, const std::string& name) const
    {
        const std::int64_t id = class_name.empty() ? 0 : object(class_name, name).integerAt(0);
        std::vector<std::string> names;
        for (const fbx_record& connection : m_document.find("Connections")->children)
            if (connection.integerAt(2) == id)
                names.push_back(nameOf(*m_objects.at(connection.integerAt(1))));
        return names;
    }

    // What hangs on a property of an object; null: nothing.
    const fbx_record* at(const fbx_record& parent, const std::string& property) const
    {
        for (const fbx_record& connection : m_document.find("Connections")->children)
            if (connection.integerAt(2) == parent.integerAt(0) && connection.textAt(3) == property)
                return m_objects.at(connection.integerAt(1));
        return nullptr;
    }

    const fbx_document& document() const { return m_document; }

    static std::string nameOf(const fbx_record& object)
    {
        const std::string_view full = object.textAt(1);
        return std::string(full.substr(0, full.find('\0')));
    }

private:
    const fbx_document& m_document;
    std::map<std::int64_t, const fbx_record*> m_objects;
};

const fbx_record* property(const fbx_record& object, std::string_view name)
{
    for (const fbx_record& candidate : object.find("Properties70")->children)
        if (candidate.textAt(0) == name)
            return &candidate;
    return nullptr;
}

class fbx_export_test : public testing::Test
{
protected:
    void build(bool with_skeleton, std::vector<group_data> groups)
    {
        failure why;
        ASSERT_TRUE(!with_skeleton || addBones(smallSkeleton(), m_scene, why));
        ASSERT_TRUE(addMeshes(modelOfGroups(std::move(groups)), 0, m_scene, why));
    }

    export_take take(std::uint32_t frames, float rate)
    {
        export_take result;
        failure why;
        EXPECT_TRUE(makeTake(smallAnimation(frames, rate), smallSkeleton(), take_span::half, result, why));
        return result;
    }

    static std::vector<group_data> oneGroup()
    {
        std::vector<group_data> groups;
        groups.push_back(triangleGroup());
        return groups;
    }

    export_scene m_scene;
};

TEST_F(fbx_export_test, theRootIsALimbNodeWithARootAttribute)
{
    build(true, oneGroup());
    fbx_export exporter(m_scene, {});
    const exported file(exporter.document(nullptr));
    EXPECT_EQ(file.object("Model", "animroot").textAt(2), "LimbNode");
    EXPECT_EQ(file.object("NodeAttribute", "animroot").textAt(2), "Root");
    EXPECT_EQ(file.object("NodeAttribute", "spine").textAt(2), "LimbNode");
    EXPECT_EQ(file.below("", ""), (std::vector<std::string>{"animroot", "body_group_01_lod0"}));
    EXPECT_EQ(file.below("Model", "spine"), (std::vector<std::string>{"spine", "arm_left", "arm_right"}));
    const fbx_record* colour = property(file.object("NodeAttribute", "arm_right"), "Color");
    EXPECT_EQ((std::vector<double>{colour->numberAt(4), colour->numberAt(5), colour->numberAt(6)}),
              (std::vector<double>{1, 0, 0}));
}

TEST_F(fbx_export_test, clustersUndoTheBindPose)
{
    build(true, oneGroup());
    fbx_export exporter(m_scene, {});
    const exported file(exporter.document(nullptr));
    EXPECT_EQ(file.below("Deformer", "body_group_01_lod0_skin  "),
              (std::vector<std::string>{"spine__CLUSTER", "arm_left__CLUSTER", "arm_right__CLUSTER"}));
    const fbx_record& cluster = file.object("Deformer", "arm_left__CLUSTER");
    EXPECT_EQ(cluster.find("Mode")->textAt(0), "Total1");
    const std::vector<double> link = cluster.find("TransformLink")->numbers();
    const std::vector<double> transform = cluster.find("Transform")->numbers();
    ASSERT_EQ(link.size(), 16u);
    // Worked out by hand: 0.5 m and two times 1 m up, turned by -90 degrees about z; columns one after another.
    const double expected[] = {0, -1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, -19.68504, 78.74016, 0, 1};
    for (std::size_t i = 0; i < 16; ++i)
        EXPECT_NEAR(link[i], expected[i], 1e-5) << i;
    const glm::dmat4 product = glm::make_mat4(link.data()) * glm::make_mat4(transform.data());
    for (glm::length_t i = 0; i < 4; ++i)
        for (glm::length_t j = 0; j < 4; ++j)
            EXPECT_NEAR(product[i][j], i == j ? 1 : 0, 1e-9);
    const fbx_record& pose = file.object("Pose", "BindPose01");
    EXPECT_EQ(pose.find("NbPoseNodes")->integerAt(0), 5);
}

TEST_F(fbx_export_test, aModelWithoutSkeletonHasMeshesAlone)
{
    build(false, oneGroup());
    fbx_export exporter(m_scene, {false, {}});
    const exported file(exporter.document(nullptr));
    EXPECT_EQ(file.document().find("Objects")->children.size(), 2u) << "geometry and node";
    EXPECT_EQ(file.object("Geometry", "body_group_01_lod0_mesh").find("PolygonVertexIndex")->integers(),
              (std::vector<std::int64_t>{0, 2, -2}));
}

TEST_F(fbx_export_test, everyClassIsDefinedOrReadersDropIt)
{
    std::vector<group_data> groups = oneGroup();
    groups[0].textures = {{0, "d.dds", {}}};
    build(true, std::move(groups));
    fbx_export exporter(m_scene, {});
    const export_take moving = take(4, 20);
    const exported file(exporter.document(&moving));
    std::map<std::string, std::int64_t> defined;
    for (const fbx_record& type : file.document().find("Definitions")->children)
        if (type.name == "ObjectType")
            defined[std::string(type.textAt(0))] = type.find("Count")->integerAt(0);
    std::int64_t total = 1; // the global settings
    for (const fbx_record& object : file.document().find("Objects")->children)
    {
        EXPECT_EQ(defined[object.name], static_cast<std::int64_t>(file.count(object.name))) << object.name;
        ++total;
    }
    EXPECT_EQ(file.document().find("Definitions")->find("Count")->integerAt(0), total);
}

TEST_F(fbx_export_test, fortyFramesAtTwentyEndAtOneSecondAndGoOn)
{
    build(true, oneGroup());
    fbx_export exporter(m_scene, {});
    const export_take moving = take(40, 20);
    const exported file(exporter.document(&moving));
    const fbx_record& stack = file.object("AnimationStack", "Take 001 (Korvane)");
    EXPECT_EQ(property(stack, "Description")->textAt(4), "The first FbxAnimStack");
    EXPECT_EQ(property(stack, "LocalStop")->integerAt(4), second);
    EXPECT_EQ(file.below("AnimationStack", "Take 001 (Korvane)"), (std::vector<std::string>{"Anim Layer 01"}));
    EXPECT_EQ(file.count("AnimationCurve"), 6u);

    const fbx_record* node = file.at(file.object("Model", "spine"), "Lcl Translation");
    ASSERT_NE(node, nullptr);
    const fbx_record* curve = file.at(*node, "d|X");
    ASSERT_NE(curve, nullptr);
    const std::vector<std::int64_t> times = curve->find("KeyTime")->integers();
    ASSERT_EQ(times.size(), 40u);
    EXPECT_EQ(times[1], second / 20);
    EXPECT_EQ(times[39], second / 20 * 39); // 1.95 s
    EXPECT_NEAR(curve->find("KeyValueFloat")->numbers()[3], -3 * 39.37008, 1e-4);
    EXPECT_EQ(curve->find("KeyAttrRefCount")->integers(), (std::vector<std::int64_t>{40}));
    EXPECT_EQ(curve->find("KeyAttrFlags")->integers(), (std::vector<std::int64_t>{4}));
    EXPECT_EQ(file.at(file.object("Model", "arm_right"), "Lcl Rotation"), nullptr) << "not moved";
}

TEST_F(fbx_export_test, frameRatesThatAreInNoListAreGivenAsTheyAre)
{
    build(true, {});
    fbx_export exporter(m_scene, {});
    const struct
    {
        float rate;
        std::int64_t mode;
    } rows[] = {{30, 6}, {25, 10}, {20, 14}, {24.5f, 14}};
    for (const auto& row : rows)
    {
        const export_take moving = take(3, row.rate);
        const fbx_record* settings = exporter.document(&moving).find("GlobalSettings");
        EXPECT_EQ(property(*settings, "TimeMode")->integerAt(4), row.mode) << row.rate;
        EXPECT_EQ(property(*settings, "CustomFrameRate")->numberAt(4), static_cast<double>(row.rate));
        EXPECT_EQ(property(*settings, "UnitScaleFactor")->numberAt(4), 2.54);
    }
}

TEST_F(fbx_export_test, materialsReferToTexturesByTheGivenPath)
{
    std::vector<group_data> groups;
    for (int i = 0; i < 2; ++i)
    {
        groups.push_back(triangleGroup("same"));
        groups.back().textures = {{0, "a/d.dds", {}}, {1, "a/n.dds", {}}};
    }
    build(true, std::move(groups));
    const auto below_tex = [](const std::string& path) { return "tex/" + path; };
    fbx_export exporter(m_scene, {true, below_tex});
    const exported file(exporter.document(nullptr));
    EXPECT_EQ(file.count("Material"), 2u) << "equal names stay two materials";
    EXPECT_EQ(file.count("Texture"), 2u) << "two pictures, however many materials show them";
    const fbx_record& material = file.object("Material", "same");
    const fbx_record* normal = file.at(material, "NormalMap");
    ASSERT_NE(normal, nullptr);
    EXPECT_EQ(normal->find("RelativeFilename")->textAt(0), "tex/a\\n.dds");
    EXPECT_EQ(file.below("Texture", "n.dds"), (std::vector<std::string>{"n.dds"}));
}

TEST_F(fbx_export_test, whatIsUsedAgainGivesTheSameBytesAsWhatIsMadeAnew)
{
    std::vector<group_data> groups; // with arrays that are large enough to be compressed
    groups.push_back(groupOf("body", std::vector<test_vertex>(300, {{1, 2, 3}, {{1, 1.0f}}}), {0, 1, 2}));
    build(true, std::move(groups));
    const export_take longer = take(300, 20), shorter = take(200, 25);
    fbx_export again(m_scene, {});
    static_cast<void>(again.file(&longer));
    const std::vector<std::byte> second_time = again.file(&shorter);
    fbx_export anew(m_scene, {});
    EXPECT_EQ(second_time, writeFbx(anew.document(&shorter)));
    EXPECT_NE(second_time, writeFbx(anew.document(nullptr)));
}

TEST_F(fbx_export_test, whatWroteTheFileIsSaidAndWhatFailed)
{
    build(true, oneGroup());
    const temporary_folder folder;
    std::string console;
    scene_exporter exporter(m_scene, {}, [&console](const std::string& text) { console += text; });
    failure why;
    ASSERT_TRUE(exporter.save(folder.file("out.FBX"), nullptr, why)) << describe(why);
    EXPECT_EQ(console,
              "Korvane FBX exchange version " + std::string(program_version) + "\nFBX file format version 7.4.0\n\n");
    console.clear();
    EXPECT_FALSE(exporter.save(folder.file("missing/out.fbx"), nullptr, why));
    EXPECT_NE(console.find("Call to FbxExporter::Initialize() failed.\nError returned: "), std::string::npos)
        << console;
    EXPECT_TRUE(console.ends_with("\n\n"));
}

TEST(export_lines, areThoseOfTheLog)
{
    EXPECT_EQ(exportingLine("walk.fbx", 2, 10), "Exporting File: walk.fbx   (2 / 10 )");
    EXPECT_EQ(exportedLine(10), "Done. Files Exported: 10");
    EXPECT_TRUE(hasExportExtension("A.FBX") && hasExportExtension("b.dae"));
    EXPECT_FALSE(hasExportExtension("a.fbx2"));
}

} // namespace
} // namespace korvane
