#include "Korvane/viewer/posed_mesh.h"
#include "Korvane/viewer/view_menu.h"
#include "tests/posing/allocation_count.h"
#include "tests/support/arm_scene.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace korvane::test
{

namespace
{

constexpr float not_a_number = std::numeric_limits<float>::quiet_NaN();

glm::vec3 centreOf(const posed_scene& pose, std::size_t part)
{
    const scene_part& shown = pose.scene().parts[part];
    glm::vec3 sum(0);
    for (const vertex_record& vertex : shown.groups()[0].store->vertices.records())
        sum += posedVertex(pose, shown, shown.groups()[0], vertex).position;
    return sum / 4.0f;
}

// As the shader does it: a row times the columns that it was given.
glm::vec3 byShader(const gpu_matrix& columns, const glm::vec3& point)
{
    glm::vec3 result;
    for (std::size_t i = 0; i < 3; ++i)
        result[static_cast<int>(i)] =
            columns[i][0] * point.x + columns[i][1] * point.y + columns[i][2] * point.z + columns[i][3];
    return result;
}

bool isFinite(const posed_scene& pose)
{
    const auto isFine = [](const gpu_matrix& matrix) {
        return std::all_of(&matrix[0][0], &matrix[0][0] + 16, [](float v) { return std::isfinite(v); });
    };
    const auto inverse = pose.inverse(0), shown = pose.transforms(0);
    return std::all_of(inverse.begin(), inverse.end(), isFine) && std::all_of(shown.begin(), shown.end(), isFine);
}

TEST(posed_scene, skinnedAndHangingPartsFollowTheirBone)
{
    posed_scene pose(armScene());
    expectNear(centreOf(pose, 0), {1, 1, 0}, "bind pose");
    expectNear(centreOf(pose, 1), {1, 1, -1}, "bind pose, hanging");
    ASSERT_TRUE(pose.setAnimation(quarterTurn()));
    expectNear(centreOf(pose, 0), {0, 2, 0}, "turned");
    expectNear(centreOf(pose, 1), {0, 2, -1}, "turned, hanging");
    expectNear(byShader(pose.transforms(0)[1], byShader(pose.inverse(0)[1], {1.5f, 1, 0})), {0, 2.5f, 0}, "shader");
    expectNear(byShader(pose.transforms(0)[200], byShader(pose.inverse(0)[200], {4, 5, 6})), {4, 5, 6}, "no such bone");
    expectNear(posedBounds(pose).min, {-0.1f, 1.9f, -1}, "bounds");
    const auto hit = pickTriangle(pose, {{0.05f, 2, -3}, {0, 0, 2}});
    ASSERT_TRUE(hit);
    EXPECT_EQ(hit->part, 1u);
    EXPECT_FLOAT_EQ(hit->distance, 2);
    EXPECT_EQ(
        pickTriangle(pose, {{0.05f, 2, -3}, {0, 0, 2}}, [](std::size_t part, std::size_t) { return part == 0; })->part,
        0u);
    EXPECT_FALSE(pickTriangle(pose, {{1, 1, -3}, {0, 0, 1}})) << "where it stood in the bind pose";
    pose.clearAnimation();
    expectNear(centreOf(pose, 0), {1, 1, 0}, "bind pose again");
}

// Boxes only spare looks: whatever moves the vertices, and wherever weights or indices are damaged, the hit is the
// same.
TEST(posed_scene, aClickFindsThroughBoxesWhatALookAtEveryVertexFinds)
{
    RMV2_FILE_DATA data = modelOf(sphereGroup({0, 0.5f, 0}, 1, 40));
    vertex_store& store = data.lods[0].groups[0].store;
    for (std::size_t i = 0; i < store.vertices.size(); ++i)
    {
        vertex_record& vertex = store.vertices.records()[i];
        const float part = std::fmod(static_cast<float>(i) * 0.37f, 1.0f);
        vertex.bones = {static_cast<std::uint32_t>(i / 300 % 2), 1, 0, 0};
        vertex.weights = {part, 1 - part, 0, 0};
        if (i % 977 == 0)
            vertex.weights = {3, 0, 0, not_a_number};
        if (i % 1009 == 0)
            vertex.position.x = not_a_number;
    }
    store.indices[7] = 0xffff;
    auto model = std::make_shared<scene_model>();
    model->has_skeleton = true;
    scene_group group;
    group.store = &store;
    group.has_weights = true;
    model->lods = {{group}};
    auto scene = std::make_shared<loaded_scene>(*armScene());
    scene->parts[0].model = model;
    const scene_pointer slow = std::make_shared<loaded_scene>(*scene);
    scene->parts[0].boxes = std::make_shared<std::vector<group_boxes>>(1, boxesOf(store, true));
    ASSERT_GT(scene->parts[0].boxes->front().runs.size(), 4u);
    posed_scene fast_pose(scene), slow_pose(slow);
    ASSERT_TRUE(fast_pose.setAnimation(quarterTurn()) && slow_pose.setAnimation(quarterTurn()));
    int hits = 0;
    for (int i = 0; i < 900; ++i)
    {
        const float x = static_cast<float>(i % 30) * 0.2f - 3, y = static_cast<float>(i / 30) * 0.2f - 3;
        const view_ray ray{{x, y, -3}, {0.1f * y, i % 2 == 0 ? 0 : 0.2f, 1}};
        const auto expected = pickTriangle(slow_pose, ray), found = pickTriangle(fast_pose, ray);
        ASSERT_EQ(found.has_value(), expected.has_value()) << i;
        hits += expected ? 1 : 0;
        ASSERT_EQ(found ? found->distance : 0, expected ? expected->distance : 0) << i;
    }
    EXPECT_GT(hits, 60);
}

TEST(posed_scene, aRiderHangsOnTheMountWithAllOfItsBones)
{
    const auto scene = armScene();
    scene->rigs.push_back(rigOf(arm(), "rider", "rider.anim"));
    scene->rigs[1].mount = 0;
    scene->rigs[1].mount_bone = 1;
    scene->rigs[1].mount_place[3] = {1, 1, 0, 1};
    scene->parts[0].rig = 1;
    scene->parts[1].rig = 1;
    posed_scene pose(scene);
    expectNear(centreOf(pose, 0), {2, 2, 0}, "both in the bind pose");
    ASSERT_TRUE(pose.setAnimation(quarterTurn()));
    expectNear(centreOf(pose, 0), {-1, 3, 0}, "the mount turns");
    ASSERT_TRUE(pose.setAnimation(quarterTurn("rider")));
    expectNear(centreOf(pose, 0), {-2, 2, 0}, "both turn");
    EXPECT_EQ(pose.jointCount(), 4u);
    expectNear(pose.joint(3).place, {-2, 2, 0}, "the rider's bone");
    expectNear(byShader(pose.transforms(1)[99], {0, 0, 0}), {0, 2, 0}, "a bone that the rider has not");
}

TEST(posed_scene, animationsThatDoNotFitAreNamed)
{
    const auto other = quarterTurn("leg");
    const auto cut = quarterTurn(), renamed = quarterTurn(), beyond = quarterTurn(), broken = quarterTurn();
    cut->frame_count = 9;
    renamed->bones[0].name = "hip";
    beyond->animated_rotations = {7};
    broken->rotations[1].w = not_a_number;
    const struct
    {
        const char* name;
        std::shared_ptr<const anim_data> animation;
        bool is_shown;
        const char* line;
    } rows[] = {
        {"fits", quarterTurn(), true, ""},
        {"nothing", nullptr, false, "no animation"},
        {"another skeleton", other, false, "made for the skeleton \"leg\", but the model has \"arm\""},
        {"frames are missing", cut, false, "fewer translations or rotations"},
        {"another bone", renamed, true, "\"hip\" moves \"bone_0\""},
        {"no such bone", beyond, true, "(number 7)"},
        {"no number", broken, true, "1 key holds no usable number"},
    };
    for (const auto& row : rows)
    {
        const auto scene = armScene();
        const animation_fit fit = fitAnimation(*scene, row.animation);
        EXPECT_EQ(fit.problems.size(), *row.line ? 1u : 0u) << row.name;
        const std::string said = fit.problems.empty() ? std::string() : fit.problems[0];
        EXPECT_NE(said.find(row.line), std::string::npos) << row.name << ": " << said;
        posed_scene pose(scene);
        EXPECT_EQ(pose.setAnimation(fit), row.is_shown) << row.name;
        pose.show({1, 0});
        EXPECT_TRUE(isFinite(pose)) << row.name;
    }
}

TEST(posed_scene, whatIsNoNumberStaysInTheBindPose)
{
    anim_data broken = arm();
    broken.bones[0].translation.y = not_a_number;
    broken.bones[1].rotation = {0, 0, 0, 0};
    EXPECT_NE(rigOf(broken, "arm", "a").problem.find("\"bone_0\""), std::string::npos);
    for (const float hostile : {not_a_number, std::numeric_limits<float>::infinity(), 9e5f})
    {
        const auto animation = quarterTurn();
        animation->rotations[0] = {hostile, hostile, hostile, hostile};
        posed_scene pose(armScene(broken));
        ASSERT_TRUE(pose.setAnimation(animation));
        EXPECT_TRUE(isFinite(pose)) << hostile;
    }
}

TEST(posed_scene, linesAreCutWhereTheBufferEndsAndFramesTakeNoMemory)
{
    std::vector<test_bone> bones;
    for (std::uint32_t i = 0; i < 300; ++i)
        bones.push_back({i, static_cast<std::int32_t>(i) - 1, {0, 0.01f, 0}});
    anim_data large = skeleton(bones);
    large.skeleton_name = "arm";
    const auto scene = armScene(large);
    EXPECT_NE(scene->rigs[0].problem.find("300 bones"), std::string::npos);
    for (int i = 0; i < 3; ++i)
        scene->rigs.push_back(scene->rigs[0]);
    posed_scene pose(scene);
    ASSERT_TRUE(pose.setAnimation(quarterTurn()));
    std::vector<gpu_line_vertex> lines(30000);
    playback_control control;
    const std::size_t before = allocationCount();
    for (int frame = 0; frame < 3; ++frame)
    {
        control.stepForward();
        pose.advance(control);
        EXPECT_EQ(pose.fillSkeleton(lines), posed_scene::max_line_vertices);
        EXPECT_EQ(pose.fillSkeleton(std::span(lines).first(7)), 6u);
        EXPECT_EQ(pose.jointAt(glm::mat4(1), {100, 100}, {49, 49.5f}, 0.2f), 2);
    }
    EXPECT_EQ(allocationCount(), before);
    EXPECT_EQ(pose.skeletonVertexCount(), 4u * (256 * 24 + 255 * 2));
}

int numberOfRow(const std::vector<view_menu_row>& rows, const std::string& end)
{
    for (const view_menu_row& row : rows)
        if (const int found = row.text.ends_with(end) ? row.number : numberOfRow(row.rows, end); found > 0)
            return found;
    return 0;
}

// Rider and horse may have bones of one name: weights are shown of the one that was clicked on.
TEST(view_menu, aBoneIsThatOfTheRigThatItWasChosenOf)
{
    const std::shared_ptr<loaded_scene> scene = armScene();
    scene->rigs.push_back(scene->rigs[0]);
    scene->rigs[1].mount = 0;
    const posed_scene pose(scene);
    view_state view;
    for (std::size_t joint = 0; joint < pose.jointCount(); ++joint)
    {
        const view_menu_subject subject{view, &pose, {}, joint};
        view_state changed = view;
        EXPECT_EQ(applyViewMenu(numberOfRow(viewMenu(subject), "\tat the mouse"), subject, changed),
                  view_command::none);
        EXPECT_EQ(changed.shownChannel(), view_channel::weights);
        EXPECT_EQ(changed.heat_rig, pose.joint(joint).rig);
        EXPECT_EQ(static_cast<int>(changed.heat_bone), pose.joint(joint).bone);
    }
    EXPECT_EQ(pose.joint(pose.jointCount() - 1).rig, 1);
}

TEST(posed_mesh, weightsOfRepeatedBonesCountOnceAndSumToWhatTheySummedTo)
{
    using four = std::array<float, 4>;
    const struct
    {
        const char* name;
        std::array<std::uint32_t, 4> bones;
        four weights, expected;
    } rows[] = {
        {"four bones", {1, 2, 3, 4}, {0.4f, 0.3f, 0.2f, 0.1f}, {0.4f, 0.3f, 0.2f, 0.1f}},
        {"one bone four times", {5, 5, 5, 5}, {0.25f, 0.25f, 0.25f, 0.25f}, {1, 0, 0, 0}},
        {"the first bone again", {5, 6, 5, 7}, {0.25f, 0.25f, 0.25f, 0.25f}, {1 / 3.0f, 1 / 3.0f, 0, 1 / 3.0f}},
        {"all on the repeated one", {5, 5, 6, 6}, {0, 1, 0, 0}, {1, 0, 0, 0}},
        {"another bone repeats", {5, 6, 6, 6}, {0.5f, 0.25f, 0.25f, 0}, {0.5f, 0.25f, 0.25f, 0}},
        {"the file's sum is not one", {5, 5, 6, 7}, {0.25f, 0.25f, 0, 0}, {0.25f, 0, 0, 0}},
        {"a byte is missing", {5, 5, 5, 5}, {253 / 255.0f, 0, 0, 0}, {1, 0, 0, 0}},
    };
    for (const auto& row : rows)
        for (std::size_t i = 0; i < 4; ++i)
            EXPECT_FLOAT_EQ(skinningWeights(row.bones, row.weights)[i], row.expected[i]) << row.name << ' ' << i;
}

} // namespace

} // namespace korvane::test
