#include "Korvane/fbx/scene/fbx_scene.h"

#include "Korvane/fbx/scene/fbx_evaluator.h"
#include "Korvane/fbx/scene/fbx_model_import.h"
#include "tests/fbx/figure_document.h"

#include <glm/geometric.hpp>
#include <glm/trigonometric.hpp>

#include <gtest/gtest.h>

namespace korvane
{
namespace
{

using test::scene_builder;
using test::ticks_a_second;

fbx_scene readOrFail(const fbx_document& document)
{
    fbx_scene scene;
    failure why;
    EXPECT_TRUE(readScene(document, scene, why)) << describe(why);
    return scene;
}

void expectNear(const glm::dvec3& actual, const glm::dvec3& expected, const std::string& what)
{
    EXPECT_LT(glm::distance(actual, expected), 1e-9)
        << what << ": " << actual.x << " " << actual.y << " " << actual.z << " instead of " << expected.x << " "
        << expected.y << " " << expected.z;
}

glm::dvec3 image(const glm::dmat4& matrix, const glm::dvec3& point)
{
    return glm::dvec3(matrix * glm::dvec4(point, 1));
}

// One node and a stack whose layers the test adds to.
struct animated_node
{
    scene_builder builder{7400};

    animated_node()
    {
        builder.model(1, "node", "Null");
        builder.connect(1, 0);
        builder.object("AnimationStack", 2, "take", "AnimStack", "");
    }

    void addLayer(std::int64_t number, const std::vector<std::pair<std::string, double>>& properties)
    {
        fbx_record& layer = builder.object("AnimationLayer", number, "layer", "AnimLayer", "");
        for (const auto& [name, value] : properties)
            builder.property(layer, name, {value});
        builder.connect(number, 2);
    }
};

} // namespace

TEST(fbx_scene, oldAndNewVersionsGiveTheSameFigure)
{
    for (const std::uint32_t version : {6100u, 7100u, 7400u, 7700u})
    {
        SCOPED_TRACE(version);
        const fbx_scene scene = readOrFail(test::makeFigure(version).document());
        ASSERT_EQ(scene.nodes.size(), 4u);
        EXPECT_TRUE(scene.notes.empty()) << scene.notes.front();
        ASSERT_EQ(scene.roots, (std::vector<std::size_t>{0, 1}));
        EXPECT_EQ(scene.nodes[0].name, "body");
        EXPECT_EQ(scene.nodes[0].type, fbx_node_type::mesh);
        EXPECT_EQ(scene.nodes[1].name, "root");
        EXPECT_EQ(scene.nodes[1].skeleton_kind, "Root");
        EXPECT_EQ(scene.path(2), "body|nested");
        EXPECT_EQ(scene.path(3), "root|tip");
        EXPECT_EQ(scene.nodes[3].type, fbx_node_type::skeleton);
        EXPECT_EQ(scene.nodes[3].size, 100);
        EXPECT_EQ(scene.nodes[1].color, version < 7000 ? glm::dvec3(0.8) : glm::dvec3(0, 1, 1));

        const fbx_mesh& mesh = scene.meshes[scene.nodes[0].mesh];
        EXPECT_EQ(mesh.name, version < 7000 ? "body" : "body mesh");
        EXPECT_EQ(mesh.point(3), glm::dvec3(0, 1, 0.5));
        EXPECT_EQ(mesh.corners, (std::vector<std::uint32_t>{0, 1, 2, 3, 0, 2, 3}));
        EXPECT_EQ(mesh.polygon_ends, (std::vector<std::uint32_t>{4, 7}));
        EXPECT_EQ(mesh.triangleCount(), 3u);
        ASSERT_EQ(mesh.normals.size(), 1u);
        EXPECT_EQ(mesh.entryOf(mesh.normals[0], 6, 1), 3u); // by control point
        ASSERT_EQ(mesh.uv_sets.size(), 1u);
        EXPECT_EQ(mesh.uv_sets[0].name, "map");
        EXPECT_EQ(mesh.entryOf(mesh.uv_sets[0], 5, 1), 2u); // by corner, through the indices
        EXPECT_EQ(mesh.entryOf(mesh.uv_sets[0], 3, 0), fbx_none);
        EXPECT_EQ(mesh.nodes, (std::vector<std::size_t>{0}));
    }
}

TEST(fbx_scene, oldAndNewVersionsBindAndMoveTheFigureAlike)
{
    for (const std::uint32_t version : {6100u, 7400u})
    {
        SCOPED_TRACE(version);
        const fbx_scene scene = readOrFail(test::makeFigure(version).document());
        ASSERT_EQ(scene.meshes[0].skins.size(), 1u);
        const fbx_skin& skin = scene.meshes[0].skins[0];
        ASSERT_EQ(skin.clusters.size(), 2u);
        EXPECT_EQ(skin.clusters[1].name, "high");
        EXPECT_EQ(skin.clusters[1].bone, 3u);
        EXPECT_EQ(skin.clusters[1].indices, (std::vector<std::int32_t>{1, 2, 3}));
        EXPECT_EQ(skin.clusters[0].weights, (std::vector<double>{1, 0.5}));
        expectNear(image(skin.clusters[0].bone_to_world, {0, 0, 0}), {0, 2, 0}, "TransformLink");
        expectNear(image(skin.clusters[0].mesh_to_bone, {0, 0, 0}), {0, -2, 0}, "Transform");
        ASSERT_EQ(scene.poses.size(), 1u);
        EXPECT_TRUE(scene.poses[0].is_bind);
        EXPECT_EQ(scene.poses[0].entries[0].node, 1u);

        ASSERT_EQ(scene.stacks.size(), 1u);
        EXPECT_EQ(scene.stacks[0].name, "walk");
        EXPECT_EQ(scene.seconds(scene.stacks[0].end), 0.5);
        fbx_ticks first = 1;
        fbx_ticks last = 0;
        ASSERT_TRUE(scene.keySpan(scene.stacks[0], first, last));
        EXPECT_EQ(first, 0);
        EXPECT_EQ(last, ticks_a_second);
        const fbx_evaluator walk(scene, 0);
        EXPECT_TRUE(walk.isAnimated(3));
        EXPECT_FALSE(walk.isAnimated(1));
        // The missing curves have the curve node's values; the keys outlive the stated span.
        expectNear(walk.placement(3, scene.ticks(0.75)).rotation, {67.5, 0, 7}, "angles");
        // At the last key y points to z, before the turn of 7 degrees about z.
        const glm::dmat4 world = walk.world(ticks_a_second)[3].matrix;
        expectNear(image(world, {0, 0, 0}), {0, 3, 0}, "origin");
        expectNear(image(world, {0, 1, 0}), {0, 3, 1}, "y");
        expectNear(image(fbx_evaluator(scene).world(ticks_a_second)[3].matrix, {0, 1, 0}), {0, 4, 0}, "at rest");
    }
}

// A letter list of version 6100 with each kind of key; numbers by the rules of the curves.
TEST(fbx_scene, oldKeysOfEveryLetter)
{
    const std::int64_t second = ticks_a_second;
    fbx_document document = test::makeFigure(6100).document();
    fbx_record& rotation = document.records[2].children[0].children[1].children[0].children[0]; // Takes, ..., R
    ASSERT_EQ(rotation.textAt(0), "R");
    fbx_record& x = rotation.children[0];
    x.children.clear();
    fbx_record keys("Key", std::int64_t{0}, 1.0, 'C', 's');
    const auto add = [&keys](auto... values) { (keys.values.emplace_back(values), ...); };
    add(second, 2.0, 'C', 'n');
    add(2 * second, 3.0, 'L');
    add(3 * second, 0.0, 'U', 's', 3.0, 0.0, 'n');
    add(4 * second, 1.0, 'U', 'b', 0.0, 0.0, 'a', 1.0, 0.9);
    add(5 * second, 0.0, 'U', 't', 0.5, 0.0, 0.0, 'n');
    add(6 * second, 2.0, 'U', 'a', 'n');
    add(8 * second, 1.0, 'U', 's', 0.0, 0.0); // no letter of weights in older lists
    x.children.push_back(keys);
    const fbx_scene scene = readOrFail(document);
    const fbx_curve& curve = scene.curves[scene.stacks[0].layers[0].curve_nodes[0].curves[0]];
    ASSERT_EQ(curve.times.size(), 8u);
    const struct
    {
        double seconds;
        double expected;
    } rows[] = {{0.5, 1},
                {1.5, 3},
                {2.5, 1.5},
                {3.5, 0.5 + 3.0 / 8},
                // Weights 1 and 0.9 at the parameter 1/2: time 3/8 * 1 + 3/8 * 0.1 + 1/8. The slope before the key at 5
                // s is its own, 0.25: its control point lies 0.25 * 0.9 below it and counts 3/8.
                {4 + 0.375 + 0.0375 + 0.125, 0.5 - 0.225 * 0.375},
                // TCB, t = 0.5: secants -1 and 2, slope 0.25; automatic at 6 s: secants 2 and -0.5, slope 0.75.
                {5.5, 1 + (0.25 - 0.75) / 8},
                {7, 1.5 + 2 * 0.75 / 8}};
    for (const auto& row : rows)
        EXPECT_NEAR(curve.evaluate(scene.ticks(row.seconds)), row.expected, 1e-8) << row.seconds;
}

TEST(fbx_scene, layersAddReplaceAndMix)
{
    const struct
    {
        const char* name;
        std::vector<std::pair<std::string, double>> layer;
        glm::dvec3 translation; // base (1, 2, 3), layer (10, 0, 0)
        glm::dvec3 rotation;    // base (0, 0, 90), layer (90, 0, 0)
        glm::dvec3 scaling;     // base (2, 2, 2), layer (3, 1, 4)
    } rows[] = {
        // As wholes: x by 90 degrees, then z by 90 degrees, is what the angles (90, 0, 90) say.
        {"additive", {}, {11, 2, 3}, {90, 0, 90}, {6, 2, 8}},
        {"additive, half", {{"Weight", 50}}, {6, 2, 3}, {45, 0, 90}, {2 * std::sqrt(3.0), 2, 4}},
        {"by channel",
         {{"Weight", 50}, {"RotationAccumulationMode", 1}, {"ScaleAccumulationMode", 1}},
         {6, 2, 3},
         {45, 0, 90},
         {3.5, 2.5, 4}},
        {"replace", {{"BlendMode", 1}, {"Weight", 50}}, {10, 0, 0}, {90, 0, 0}, {3, 1, 4}},
        // Half way between the quaternions (1, 0, 0, 1) and (1, 1, 0, 0): (2, 1, 0, 1), whose y angle has the sine
        // -1/3.
        {"mix",
         {{"BlendMode", 2}, {"Weight", 50}},
         {5.5, 1, 1.5},
         {45, glm::degrees(std::asin(-1 / 3.0)), 45},
         {std::sqrt(6.0), std::sqrt(2.0), std::sqrt(8.0)}},
        {"mix by channel",
         {{"BlendMode", 2}, {"Weight", 50}, {"RotationAccumulationMode", 1}, {"ScaleAccumulationMode", 1}},
         {5.5, 1, 1.5},
         {45, 0, 45},
         {2.5, 1.5, 3}},
        {"muted", {{"Mute", 1}}, {1, 2, 3}, {0, 0, 90}, {2, 2, 2}},
    };
    for (const auto& row : rows)
    {
        animated_node animated;
        animated.addLayer(3, {});
        animated.addLayer(4, row.layer);
        test::addCurveNode(animated.builder, 5, 3, 1, "Lcl Translation", {1, 2, 3});
        test::addCurveNode(animated.builder, 6, 4, 1, "Lcl Translation", {10, 0, 0});
        test::addCurveNode(animated.builder, 7, 3, 1, "Lcl Rotation", {0, 0, 90});
        test::addCurveNode(animated.builder, 8, 4, 1, "Lcl Rotation", {90, 0, 0});
        test::addCurveNode(animated.builder, 9, 3, 1, "Lcl Scaling", {2, 2, 2});
        test::addCurveNode(animated.builder, 10, 4, 1, "Lcl Scaling", {3, 1, 4});
        const fbx_scene scene = readOrFail(animated.builder.document());
        const fbx_placement placement = fbx_evaluator(scene, 0).placement(0, 0);
        expectNear(placement.translation, row.translation, row.name);
        expectNear(placement.rotation, row.rotation, row.name);
        expectNear(placement.scaling, row.scaling, row.name);
    }
}

// The order of two turns shows in the result: 90 degrees about z below, 90 about y on top.
TEST(fbx_scene, anAdditiveTurnActsBeforeTheOneBelow)
{
    animated_node animated;
    animated.addLayer(3, {});
    animated.addLayer(4, {});
    test::addCurveNode(animated.builder, 5, 3, 1, "Lcl Rotation", {0, 0, 90});
    test::addCurveNode(animated.builder, 6, 4, 1, "Lcl Rotation", {0, 90, 0});
    const fbx_scene scene = readOrFail(animated.builder.document());
    const fbx_transform local = fbx_evaluator(scene, 0).local(0, 0);
    expectNear(local.rotation * glm::dvec3(1, 0, 0), {0, 0, -1}, "x"); // x to -z, which z leaves alone
}

TEST(fbx_scene, theWeightOfALayerMayMove)
{
    animated_node animated;
    animated.addLayer(3, {});
    animated.addLayer(4, {{"Weight", 0}});
    test::addCurveNode(animated.builder, 5, 4, 1, "Lcl Translation", {8, 0, 0});
    test::addCurveNode(animated.builder, 6, 4, 4, "Weight", {});
    test::addCurve(animated.builder, 7, {0, ticks_a_second}, {0, 100});
    animated.builder.connect(7, 6, "d|Weight");
    const fbx_scene scene = readOrFail(animated.builder.document());
    expectNear(fbx_evaluator(scene, 0).placement(0, ticks_a_second / 4).translation, {2, 0, 0}, "a quarter");
}

TEST(fbx_scene, attributesServeRunsOfKeys)
{
    animated_node animated;
    animated.addLayer(3, {});
    test::addCurveNode(animated.builder, 4, 3, 1, "Lcl Translation", {0, 5, 0});
    fbx_record& curve = animated.builder.object("AnimationCurve", 5, "", "AnimCurve", "");
    const std::int64_t s = ticks_a_second;
    animated.builder.array<std::int64_t>(curve, "KeyTime", {0, s, 2 * s, 3 * s});
    animated.builder.array<double>(curve, "KeyValueFloat", {1, 2, 0, 1}); // doubles serve as well
    animated.builder.array<std::int32_t>(curve, "KeyAttrFlags", {2, 0x03000408});
    // Weights: low half right, high half left, in units of 1/9999, as the bits of a float.
    const float weights = std::bit_cast<float>(std::uint32_t{9999u << 16 | 9999u});
    animated.builder.array<float>(curve, "KeyAttrDataFloat", {7, 7, 7, 7, 0, 0, weights, 0});
    animated.builder.array<std::int32_t>(curve, "KeyAttrRefCount", {2, 2});
    animated.builder.connect(5, 4, "d|X");
    const fbx_scene scene = readOrFail(animated.builder.document());
    const fbx_evaluator take(scene, 0);
    const auto x = [&scene, &take](double seconds) {
        const glm::dvec3 value = take.placement(0, scene.ticks(seconds)).translation;
        EXPECT_EQ(value.y, 5);
        return value.x;
    };
    EXPECT_EQ(x(1.5), 2);           // the first attribute serves two keys
    EXPECT_NEAR(x(2.5), 0.5, 1e-9); // half way, whatever the equal weights are
    // Both weights 1, s = 1/4: time 3/4 * 9/16 + 1/64, value 3/16 * 3/4 + 1/64.
    EXPECT_NEAR(x(2 + 0.421875 + 0.015625), 0.15625, 1e-9);
}

TEST(fbx_scene, settingsSayUnitAxesAndTime)
{
    scene_builder builder(7400);
    fbx_record& settings = builder.top("GlobalSettings");
    const std::vector<std::pair<std::string, double>> values = {
        {"UnitScaleFactor", 2.54}, {"UpAxis", 2},    {"UpAxisSign", 1},    {"FrontAxis", 1},
        {"FrontAxisSign", -1},     {"CoordAxis", 0}, {"CoordAxisSign", 1}, {"CustomFrameRate", 20}};
    for (const auto& [name, value] : values)
        builder.property(settings, name, {value});
    builder.property(settings, "TimeMode", {14});
    fbx_record& header = builder.top("FBXHeaderExtension");
    header.add("FBXHeaderVersion", std::int32_t{1004});
    header.add("OtherFlags").add("TCDefinition", std::int32_t{0});
    const auto read = [&builder] { return readOrFail(builder.document()); };
    fbx_scene scene = read();
    EXPECT_DOUBLE_EQ(scene.unit_metres, 0.0254);
    EXPECT_EQ(scene.up.axis, 2);
    EXPECT_EQ(scene.front.axis * 10 + scene.front.sign, 9);
    EXPECT_EQ(scene.frames_per_second, 20);
    EXPECT_EQ(scene.ticks_per_second, 141120000);

    builder.document().records.back().children[1].children[0].values = {std::int32_t{127}};
    EXPECT_EQ(read().ticks_per_second, 46186158000);
    const std::pair<double, double> rates[] = {{0, 30},  {1, 120},         {6, 30},  {9, 30 / 1.001},   {10, 25},
                                               {11, 24}, {13, 24 / 1.001}, {15, 96}, {18, 120 / 1.001}, {99, 30}};
    for (const auto& [mode, rate] : rates)
    {
        builder.document().records[2].children[0].children.back().values.back() = mode;
        EXPECT_DOUBLE_EQ(read().frames_per_second, rate) << mode;
    }
}

TEST(fbx_scene, templatesSayWhatNodesLeaveOut)
{
    scene_builder builder(7400);
    builder.model(1, "plain", "Null");
    builder.property(builder.model(2, "own", "Null"), "InheritType", {2});
    builder.connect(1, 0);
    builder.connect(2, 0);
    fbx_record& type = builder.top("Definitions").add("ObjectType", std::string("Model"));
    fbx_record& defaults = type.add("PropertyTemplate", std::string("FbxNode"));
    builder.property(defaults, "InheritType", {1});
    builder.property(defaults, "RotationOrder", {5});
    builder.property(defaults, "RotationActive", {1});
    const fbx_scene scene = readOrFail(builder.document());
    EXPECT_EQ(scene.nodes[0].placement.inherit_type, fbx_inherit::rs_rs);
    EXPECT_EQ(scene.nodes[1].placement.inherit_type, fbx_inherit::rr_s);
    EXPECT_EQ(scene.nodes[1].placement.activeOrder(), fbx_rotation_order::zyx);
}

TEST(fbx_scene, whatIsSaidTwiceCountsOnce)
{
    for (const std::uint32_t version : {6100u, 7400u})
    {
        scene_builder builder = test::makeFigure(version);
        builder.connect(test::figure::nested, 0); // a second parent
        if (version < 7000)
            builder.model(900, "nested", "Null"); // a second node of that name
        const fbx_scene scene = readOrFail(builder.document());
        ASSERT_EQ(scene.nodes.size(), 4u);
        EXPECT_EQ(scene.path(2), "body|nested");
        EXPECT_EQ(scene.notes.size(), version < 7000 ? 1u : 0u);
    }
}

TEST(fbx_scene, elementsOfAMeshWithoutEntriesAreLeftOut)
{
    scene_builder builder = test::makeFigure(7400);
    for (fbx_record& object : builder.objects().children)
        for (fbx_record& element : object.children)
            for (fbx_record& child : element.children)
                if (child.name == "Normals" || child.name == "UV")
                    child.values = {std::vector<double>()};
    const fbx_scene scene = readOrFail(builder.document());
    EXPECT_TRUE(scene.meshes[0].normals.empty());
    EXPECT_TRUE(scene.meshes[0].uv_sets.empty());
    EXPECT_EQ(scene.notes.size(), 2u);
}

TEST(fbx_scene, aMeshMayHangBelowSeveralNodes)
{
    scene_builder builder = test::makeFigure(7400);
    builder.model(900, "twin", "Mesh");
    builder.connect(900, 0);
    builder.connect(test::figure::body_mesh, 900);
    const fbx_scene scene = readOrFail(builder.document());
    EXPECT_EQ(scene.meshes[0].nodes, (std::vector<std::size_t>{0, 2}));
    EXPECT_EQ(scene.nodes[2].mesh, 0u);
}

TEST(fbx_scene, importVisitsOnlyTheChildrenOfTheRoot)
{
    const std::vector<std::byte> bytes = writeFbx(test::makeFigure(7400).document());
    fbx_model model;
    failure why;
    ASSERT_TRUE(importFbxModel(bytes, model, why)) << describe(why);
    ASSERT_EQ(model.meshes.size(), 1u);
    EXPECT_EQ(model.meshes[0].name, "body");
    ASSERT_EQ(model.meshes[0].control_points.size(), 4u);
    EXPECT_EQ(model.meshes[0].control_points[3], (std::array<float, 4>{0, 1, 0.5f, 1}));
    EXPECT_EQ(model.skeletons, (std::vector<std::string>{"root"}));
    EXPECT_FALSE(importFbxModel(std::span(bytes).first(bytes.size() / 2), model, why));
    EXPECT_EQ(model.meshes.size(), 1u); // stays as it was
    EXPECT_EQ(fbxImportError("a b.fbx"), "Error loading FBX fil file: a b.fbx");
}

} // namespace korvane
