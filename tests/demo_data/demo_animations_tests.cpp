// The demo skeletons and animations as the program's loaders read them: that they fit each other, and that the figure
// moves as a figure does. Poses are put together here, not by the program.

#include "Korvane/animation/anim_file.h"
#include "tests/demo_data/made_files.h"
#include "tests/support/recording_prompt.h"
#include "tools/demo_data/humanoid_skeleton.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

namespace korvane::demo
{

namespace
{

struct joint
{
    glm::vec3 position{0};
    glm::quat rotation{1, 0, 0, 0};
};

anim_data loaded(const file& source, anim_depth how)
{
    test::recording_prompt prompt;
    anim_file reader(prompt);
    failure why;
    reader.openFromMemory(memory_file(source.bytes), source.path);
    const bool is_read = how == anim_depth::skeleton    ? reader.loadSkeleton("", why)
                         : how == anim_depth::animation ? reader.loadAnimation("", why)
                                                        : reader.loadTemplate("", why);
    EXPECT_TRUE(is_read) << source.path << ": " << why.what << " " << why.field;
    EXPECT_TRUE(prompt.shown.empty());
    return reader.data();
}

const anim_data& skeletonNamed(const std::string& name)
{
    static std::map<std::string, anim_data> known;
    const auto found = known.find(name);
    if (found != known.end())
        return found->second;
    const file* const source = fileNamed("animations/skeletons/" + name + ".anim");
    EXPECT_NE(source, nullptr) << name;
    return known[name] = source ? loaded(*source, anim_depth::skeleton) : anim_data();
}

std::vector<const file*> animations()
{
    std::vector<const file*> found;
    for (const file& each : allFiles())
        if (each.path.starts_with("animations/battle/"))
            found.push_back(&each);
    return found;
}

// Every joint in the world, in the program's space.
std::vector<joint> poseOf(const anim_data& animation, std::size_t frame)
{
    const anim_data& skeleton = skeletonNamed(animation.skeleton_name);
    std::vector<joint> pose;
    for (const anim_bone& bone : skeleton.bones)
        pose.push_back({bone.translation, bone.rotation});
    for (std::size_t i = 0; i < animation.animated_translations.size(); ++i)
        pose[animation.animated_translations[i]].position = animation.frameTranslations(frame)[i];
    for (std::size_t i = 0; i < animation.animated_rotations.size(); ++i)
        pose[animation.animated_rotations[i]].rotation = animation.frameRotations(frame)[i];
    for (std::size_t i = 0; i < pose.size(); ++i)
    {
        if (skeleton.bones[i].parent < 0)
            continue;
        const joint& above = pose[static_cast<std::size_t>(skeleton.bones[i].parent)];
        pose[i].position = above.position + above.rotation * pose[i].position;
        pose[i].rotation = glm::normalize(above.rotation * pose[i].rotation);
    }
    return pose;
}

std::size_t boneNamed(const anim_data& animation, std::string_view name)
{
    for (const anim_bone& bone : animation.bones)
        if (bone.name == name)
            return bone.index;
    ADD_FAILURE() << "no bone " << name;
    return 0;
}

anim_data humanoidAnimation(const std::string& name)
{
    const file* const source = fileNamed("animations/battle/humanoid01/" + name + ".anim");
    EXPECT_NE(source, nullptr) << name;
    return source ? loaded(*source, anim_depth::animation) : anim_data();
}

} // namespace

TEST(demo_animations, every_file_loads_and_has_its_skeletons_bones)
{
    std::map<std::uint32_t, std::size_t> versions;
    std::set<std::string> skeletons;
    std::set<float> rates;
    std::size_t with_statics = 0, without = 0, with_all_tracks = 0, of_one_frame = 0;
    for (const file* each : animations())
    {
        const anim_data animation = loaded(*each, anim_depth::animation);
        const anim_data bones_only = loaded(*each, anim_depth::bones_only);
        EXPECT_EQ(bones_only.frame_count, animation.frame_count) << each->path;
        const anim_data& skeleton = skeletonNamed(animation.skeleton_name);
        ASSERT_EQ(animation.bones.size(), skeleton.bones.size()) << each->path;
        for (std::size_t i = 0; i < skeleton.bones.size(); ++i)
        {
            EXPECT_EQ(animation.bones[i].name, skeleton.bones[i].name) << each->path;
            EXPECT_EQ(animation.bones[i].parent, skeleton.bones[i].parent) << each->path;
        }
        EXPECT_EQ(frameCount(static_cast<double>(animation.frame_rate), static_cast<double>(animation.end_time)),
                  animation.frame_count)
            << each->path;
        ++versions[animation.version];
        skeletons.insert(animation.skeleton_name);
        rates.insert(animation.frame_rate);
        of_one_frame += animation.frame_count == 1;
        if (animation.version == 7)
            ++(animation.static_rotations.empty() ? without : with_statics);
        with_all_tracks += animation.rotation_count == skeleton.bones.size();
    }
    EXPECT_EQ(skeletons, (std::set<std::string>{"humanoid01", "beast01"}));
    EXPECT_EQ(rates, (std::set<float>{20.0f, 24.5f, 30.0f}));
    EXPECT_GE(versions[5], 30u);
    EXPECT_EQ(versions[7], versions[5]);
    EXPECT_GE(with_statics, 10u);
    EXPECT_GE(without, 10u);
    EXPECT_GE(with_all_tracks, 5u);
    EXPECT_EQ(of_one_frame, 2u);
}

TEST(demo_animations, bind_poses_are_those_of_the_models_and_left_is_left)
{
    const anim_data& humanoid = skeletonNamed("humanoid01");
    ASSERT_EQ(humanoid.bones.size(), humanoidBones().size());
    for (std::size_t i = 0; i < humanoid.bones.size(); ++i)
    {
        const bone& wanted = humanoidBones()[i];
        const vec3 above =
            wanted.parent < 0 ? vec3{} : humanoidBones()[static_cast<std::size_t>(wanted.parent)].position;
        const vec3 local = wanted.position - above;
        EXPECT_EQ(humanoid.bones[i].name, wanted.name);
        EXPECT_EQ(humanoid.bones[i].rotation, glm::quat(1, 0, 0, 0)) << wanted.name;
        EXPECT_LT(glm::distance(humanoid.bones[i].translation, glm::vec3(local.x, local.y, local.z)), 1e-6f)
            << wanted.name;
    }
    for (const char* name : {"humanoid01", "beast01"})
    {
        const anim_data& skeleton = skeletonNamed(name);
        anim_data rest;
        rest.skeleton_name = name;
        const std::vector<joint> pose = poseOf(rest, 0);
        for (std::size_t i = 0; i < pose.size(); ++i)
        {
            if (skeleton.bones[i].name.ends_with("_l"))
            {
                EXPECT_GT(pose[i].position.x, 0.01f) << skeleton.bones[i].name;
            }
            if (skeleton.bones[i].name.ends_with("_r"))
            {
                EXPECT_LT(pose[i].position.x, -0.01f) << skeleton.bones[i].name;
            }
        }
    }
}

// A wrong static block, map or track order would part the two.
TEST(demo_animations, both_versions_of_an_animation_show_the_same_poses)
{
    for (const file* each : animations())
    {
        if (each->path.ends_with("_v5.anim"))
            continue;
        const anim_data newer = loaded(*each, anim_depth::animation);
        const file* const twin = fileNamed(each->path.substr(0, each->path.size() - 5) + "_v5.anim");
        ASSERT_NE(twin, nullptr) << each->path;
        const anim_data older = loaded(*twin, anim_depth::animation);
        EXPECT_EQ(newer.version, 7u) << each->path;
        EXPECT_EQ(older.version, 5u) << twin->path;
        ASSERT_EQ(older.frame_count, newer.frame_count) << each->path;
        for (std::size_t frame = 0; frame < newer.frame_count; ++frame)
        {
            const auto a = poseOf(newer, frame), b = poseOf(older, frame);
            for (std::size_t i = 0; i < a.size(); ++i)
                ASSERT_LT(glm::distance(a[i].position, b[i].position), 1e-5f) << each->path << " frame " << frame;
        }
    }
}

TEST(demo_animations, static_values_are_the_bind_pose_as_the_file_mirrors_it)
{
    std::size_t compared = 0;
    for (const file* each : animations())
    {
        const anim_data animation = loaded(*each, anim_depth::animation);
        const anim_data& skeleton = skeletonNamed(animation.skeleton_name);
        for (std::size_t i = 0; i < skeleton.bones.size(); ++i)
        {
            const std::uint32_t entry = animation.rotation_map[i];
            if (hasTrack(entry) || entry == 0xffffffffu)
                continue;
            ASSERT_LT(entry - 10000, animation.static_rotations.size()) << each->path;
            const glm::quat& q = animation.static_rotations[entry - 10000];
            EXPECT_EQ(glm::quat(q.w, q.x, -q.y, -q.z), skeleton.bones[i].rotation) << each->path;
            ++compared;
        }
    }
    EXPECT_GE(compared, 500u);
}

TEST(demo_animations, what_repeats_ends_as_it_began)
{
    std::size_t loops = 0;
    for (const file* each : animations())
    {
        bool is_loop = false;
        for (const char* folder : {"/walk/", "/run/", "/stand/", "_cheer_"})
            is_loop = is_loop || each->path.find(folder) != std::string::npos;
        if (!is_loop)
            continue;
        const anim_data animation = loaded(*each, anim_depth::animation);
        const auto first = poseOf(animation, 0), last = poseOf(animation, animation.frame_count - 1);
        for (std::size_t i = 0; i < first.size(); ++i)
            ASSERT_EQ(first[i].position, last[i].position) << each->path;
        ++loops;
    }
    EXPECT_GE(loops, 40u);
}

TEST(demo_animations, joints_stay_above_the_ground_near_the_figure_and_never_jump)
{
    for (const file* each : animations())
    {
        const anim_data animation = loaded(*each, anim_depth::animation);
        std::vector<joint> before;
        for (std::size_t frame = 0; frame < animation.frame_count; ++frame)
        {
            const auto pose = poseOf(animation, frame);
            for (std::size_t i = 0; i < pose.size(); ++i)
            {
                const glm::vec3 p = pose[i].position;
                const auto where = [&] {
                    return each->path + " frame " + std::to_string(frame) + " " + animation.bones[i].name;
                };
                ASSERT_GT(p.y, -0.08f) << where(); // a joint of one that falls may dip in
                ASSERT_LT(p.y, 3.2f) << where();
                ASSERT_LT(std::hypot(p.x, p.z), 2.0f) << where();
                if (!before.empty())
                {
                    ASSERT_LT(glm::distance(p, before[i].position) * animation.frame_rate, 14.0f) << where();
                }
            }
            before = pose;
        }
    }
}

// On the spot the ground moves, evenly: so does a foot that stands on it. The ball of the foot tells.
TEST(demo_animations, walking_feet_meet_the_ground_and_do_not_slide)
{
    const struct
    {
        const char* name;
        float metres_a_second;
    } rows[] = {{"walk/hu1_walk_forward", 1.16f / 1.1f},
                {"walk/hu1_march", 1.1f},
                {"walk/hu1_walk_forward_slow_v5", 0.84f / 1.6f},
                {"run/hu1_run_forward", 3.0f}};
    for (const auto& row : rows)
    {
        const anim_data animation = humanoidAnimation(row.name);
        for (const char* side : {"_l", "_r"})
        {
            const std::size_t toe = boneNamed(animation, std::string("toe") + side);
            std::size_t standing = 0;
            for (std::size_t frame = 0; frame + 1 < animation.frame_count; ++frame)
            {
                const glm::vec3 now = poseOf(animation, frame)[toe].position;
                const glm::vec3 next = poseOf(animation, frame + 1)[toe].position;
                EXPECT_GT(now.y, 0.025f) << row.name << " frame " << frame; // its height on the flat foot is 0.03
                if (now.y > 0.0303f || next.y > 0.0303f)
                    continue;
                ++standing;
                EXPECT_NEAR((next.z - now.z) * animation.frame_rate, row.metres_a_second, 0.06f * row.metres_a_second)
                    << row.name << side << " frame " << frame;
                EXPECT_NEAR(next.x, now.x, 0.002f) << row.name << side << " frame " << frame;
            }
            EXPECT_GE(standing * 10, animation.frame_count * 2u) << row.name << side;
        }
    }
}

TEST(demo_animations, walking_arms_swing_against_the_legs)
{
    for (const char* name : {"walk/hu1_walk_forward", "walk/hu1_march", "run/hu1_run_forward"})
    {
        const anim_data animation = humanoidAnimation(name);
        for (const char* side : {"_l", "_r"})
        {
            const std::size_t hand = boneNamed(animation, std::string("hand") + side);
            const std::size_t foot = boneNamed(animation, std::string("foot") + side);
            float together = 0, hand_mean = 0, foot_mean = 0, hand_low = 9, hand_high = -9;
            std::vector<std::pair<float, float>> places;
            for (std::size_t frame = 0; frame + 1 < animation.frame_count; ++frame)
            {
                const auto pose = poseOf(animation, frame);
                places.emplace_back(pose[hand].position.z, pose[foot].position.z);
                hand_mean += places.back().first / static_cast<float>(animation.frame_count - 1);
                foot_mean += places.back().second / static_cast<float>(animation.frame_count - 1);
                hand_low = std::min(hand_low, places.back().first);
                hand_high = std::max(hand_high, places.back().first);
            }
            for (const auto& [at_hand, at_foot] : places)
                together += (at_hand - hand_mean) * (at_foot - foot_mean);
            EXPECT_LT(together, 0.0f) << name << side;
            EXPECT_GT(hand_high - hand_low, 0.08f) << name << side;
        }
    }
}

TEST(demo_animations, a_fallen_figure_lies_and_a_turned_one_faces_elsewhere)
{
    for (const char* name : {"die/hu1_die_back", "die/hu1_die_front"})
    {
        const anim_data animation = humanoidAnimation(name);
        const auto pose = poseOf(animation, animation.frame_count - 1);
        for (const char* bone : {"pelvis", "spine_2", "head"})
            EXPECT_LT(pose[boneNamed(animation, bone)].position.y, 0.35f) << name << " " << bone;
    }
    const struct
    {
        const char* name;
        glm::vec3 facing;
    } rows[] = {{"turn/hu1_turn_left_90", {1, 0, 0}}, // it looked along -z, with its left at +x
                {"turn/hu1_turn_right_90", {-1, 0, 0}},
                {"turn/hu1_turn_about", {0, 0, 1}}};
    for (const auto& row : rows)
    {
        const anim_data animation = humanoidAnimation(row.name);
        const auto pose = poseOf(animation, animation.frame_count - 1);
        for (const char* bone : {"head", "foot_l", "foot_r"})
            EXPECT_LT(glm::distance(pose[boneNamed(animation, bone)].rotation * glm::vec3(0, 0, -1), row.facing), 0.05f)
                << row.name << " " << bone;
    }
}

} // namespace korvane::demo
