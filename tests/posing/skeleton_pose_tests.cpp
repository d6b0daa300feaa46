#include "Korvane/posing/skeleton_pose.h"
#include "tests/posing/allocation_count.h"
#include "tests/posing/pose_builder.h"

#include <gtest/gtest.h>

#include <limits>

namespace korvane
{

namespace
{

using namespace test;

const glm::quat none(1, 0, 0, 0);
const glm::quat about_z_30(0.96592583f, 0, 0, 0.25881905f);
constexpr std::uint64_t far_frame = std::numeric_limits<std::uint64_t>::max();
constexpr float not_a_number = std::numeric_limits<float>::quiet_NaN();

// Four bones in a row: bone 1 has both tracks, bone 2 only a rotation, bone 3 only a translation.
anim_data fourBones()
{
    return skeleton({{0, -1, {0, 1, 0}, none},
                     {1, 0, {1, 0, 0}, about_x_90},
                     {2, 1, {0, 2, 0}, none},
                     {3, 2, {0, 0, 3}, about_z_90}});
}

anim_data threeFrames()
{
    anim_data data;
    data.frame_rate = 10;
    data.end_time = 0.2f;
    data.animated_translations = {1, 3};
    data.animated_rotations = {1, 2};
    data.translation_count = 2;
    data.rotation_count = 2;
    data.frame_count = 3;
    data.translations = {{1, 0, 0}, {0, 0, 8}, {2, 0, 0}, {0, 4, 8}, {5, 0, 0}, {6, 6, 6}};
    data.rotations = {none, none, about_z_90, none, about_z_90, about_x_90};
    return data;
}

std::shared_ptr<const anim_data> shared(anim_data data)
{
    return std::make_shared<const anim_data>(std::move(data));
}

TEST(skeleton_pose, theBindPoseComesFromTheSkeletonFile)
{
    skeleton_pose pose;
    ASSERT_TRUE(pose.setSkeleton(fourBones()));
    ASSERT_EQ(pose.bindJoints().size(), 4u);
    const joint& bone = pose.bindJoints()[1];
    EXPECT_EQ(bone.name, "bone_1");
    EXPECT_EQ(bone.index, 1u);
    EXPECT_EQ(bone.parent, 0);
    expectNear(glm::vec3(bone.local * glm::vec4(0, 1, 0, 1)), {1, 0, 1}, "turned, then moved");
    expectNear(glm::vec3(bone.world[3]), {1, 1, 0}, "on the root");
    pose.show(7, 0.5f);
    expectNear(pose.tree().nodes()[2].worldTranslation(), {1, 1, 2}, "without an animation");
}

TEST(skeleton_pose, samplesBlendNeighboursAndTheLastFrameIntoTheFirst)
{
    const struct
    {
        const char* name;
        std::uint64_t frame;
        float fraction;
        glm::vec3 translation_1, translation_3;
        glm::quat rotation_1, rotation_2;
    } rows[] = {
        {"a frame", 0, 0, {1, 0, 0}, {0, 0, 8}, none, none},
        {"a third on", 0, 1.0f / 3, {4.0f / 3, 0, 0}, {0, 4.0f / 3, 8}, about_z_30, none},
        {"half", 1, 0.5f, {3.5f, 0, 0}, {3, 5, 7}, about_z_90, {0.92387953f, 0.38268343f, 0, 0}},
        {"the next frame", 1, 1, {5, 0, 0}, {6, 6, 6}, about_z_90, about_x_90},
        {"the last", 2, 0, {5, 0, 0}, {6, 6, 6}, about_z_90, about_x_90},
        {"from the last to the first",
         2,
         0.25f,
         {4, 0, 0},
         {4.5f, 4.5f, 6.5f},
         {0.83146961f, 0, 0, 0.55557023f},
         {0.83146961f, 0.55557023f, 0, 0}},
        {"beyond the last",
         far_frame,
         0.25f,
         {4, 0, 0},
         {4.5f, 4.5f, 6.5f},
         {0.83146961f, 0, 0, 0.55557023f},
         {0.83146961f, 0.55557023f, 0, 0}},
        {"no number is the frame itself", 1, not_a_number, {2, 0, 0}, {0, 4, 8}, about_z_90, none},
        {"below 0", 1, -3, {2, 0, 0}, {0, 4, 8}, about_z_90, none},
        {"above 1", 1, 3, {5, 0, 0}, {6, 6, 6}, about_z_90, about_x_90},
    };
    skeleton_pose pose;
    failure why;
    ASSERT_TRUE(pose.setSkeleton(fourBones()));
    ASSERT_TRUE(pose.setAnimation(shared(threeFrames()), why));
    for (const auto& row : rows)
    {
        pose.show(row.frame, row.fraction);
        const auto joints = pose.joints();
        expectNear(joints[1].translation, row.translation_1, row.name);
        expectNear(joints[3].translation, row.translation_3, row.name);
        expectNear(joints[1].rotation, row.rotation_1, row.name);
        expectNear(joints[2].rotation, row.rotation_2, row.name);
        // Without a track: the bind pose, to the last bit.
        EXPECT_EQ(joints[0].translation, glm::vec3(0, 1, 0)) << row.name;
        EXPECT_EQ(joints[2].translation, glm::vec3(0, 2, 0)) << row.name;
        EXPECT_EQ(joints[3].rotation, about_z_90) << row.name;
    }
    pose.show(1, 0); // bone 1 at (2, 1, 0) and turned about z: bone 2, 2 along its y, lies 2 towards -x
    expectNear(pose.tree().nodes()[2].worldTranslation(), {0, 1, 0}, "the tree follows");
    pose.clearAnimation();
    expectNear(pose.tree().nodes()[2].worldTranslation(), {1, 1, 2}, "the bind pose again");
}

TEST(skeleton_pose, oneFrameStandsStillAndNoFrameIsTheBindPose)
{
    anim_data one = threeFrames();
    one.frame_count = 1;
    anim_data empty = threeFrames();
    empty.frame_count = 0;
    empty.translations.clear();
    empty.rotations.clear();
    for (const float fraction : {0.0f, 0.5f, 1.0f})
    {
        skeleton_pose pose;
        failure why;
        ASSERT_TRUE(pose.setSkeleton(fourBones()));
        ASSERT_TRUE(pose.setAnimation(shared(one), why));
        pose.show(0, fraction);
        expectNear(pose.joints()[3].translation, {0, 0, 8}, "one frame");
        ASSERT_TRUE(pose.setAnimation(shared(empty), why));
        pose.show(0, fraction);
        expectNear(pose.joints()[3].translation, {0, 0, 3}, "no frame");
    }
}

TEST(skeleton_pose, tracksOfUnknownBonesArePassedOver)
{
    anim_data data = threeFrames();
    data.animated_translations = {3, 4}; // the skeleton ends at bone 3
    data.animated_rotations = {200, 2};
    skeleton_pose pose;
    failure why;
    ASSERT_TRUE(pose.setSkeleton(fourBones()));
    ASSERT_TRUE(pose.setAnimation(shared(data), why));
    pose.show(2, 0);
    expectNear(pose.joints()[3].translation, {5, 0, 0}, "the first track");
    expectNear(pose.joints()[2].rotation, about_x_90, "the second track");
    expectNear(pose.joints()[1].translation, {1, 0, 0}, "no track any more");
}

TEST(skeleton_pose, anAnimationThatDoesNotHoldItsFramesIsRefusedAndTheOldOneGoesOn)
{
    anim_data short_translations = threeFrames();
    short_translations.translations.pop_back();
    anim_data many_frames = threeFrames();
    many_frames.frame_count = 0xffffffff;
    anim_data many_tracks = threeFrames();
    many_tracks.rotation_count = 0xffffffff;
    skeleton_pose pose;
    failure ignored;
    ASSERT_TRUE(pose.setSkeleton(fourBones()));
    ASSERT_TRUE(pose.setAnimation(shared(threeFrames()), ignored));
    for (const anim_data& data : {short_translations, many_frames, many_tracks})
    {
        failure why;
        EXPECT_FALSE(pose.setAnimation(shared(data), why));
        EXPECT_EQ(why.kind, failure_kind::malformed);
        EXPECT_FALSE(pose.setAnimation(nullptr, why));
        pose.show(1, 0);
        expectNear(pose.joints()[1].translation, {2, 0, 0}, "the old one");
    }
}

TEST(skeleton_pose, playingMovesTheBonesAndTakesNoMemory)
{
    double now = 50;
    skeleton_pose pose([&now] { return now; });
    playback_control control;
    failure why;
    ASSERT_TRUE(pose.setSkeleton(fourBones()));
    ASSERT_TRUE(pose.setAnimation(shared(threeFrames()), why));
    const std::size_t before = allocationCount();
    for (int i = 0; i < 100; ++i)
    {
        now += 0.013;
        pose.advance(control);
    }
    const std::size_t after = allocationCount();
    EXPECT_EQ(after, before);
    control.setState(play_state::paused);
    control.stepBack();
    pose.advance(control);
    const playback_position shown = control.shown();
    EXPECT_EQ(shown.fraction, 0);
    expectNear(pose.joints()[1].translation, shown.frame == 0 ? glm::vec3(1, 0, 0) : glm::vec3(5, 0, 0), "stepped");
}

} // namespace

} // namespace korvane
