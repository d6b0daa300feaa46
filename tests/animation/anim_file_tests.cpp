// Loading .anim files: what each of the three loads takes out of hand-made files of both versions.

#include "Korvane/animation/anim_file.h"
#include "tests/support/anim_builder.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace korvane
{
namespace
{

using test::test_anim;

class anim_file_tests : public testing::Test
{
protected:
    bool load(anim_depth depth, const std::string& bytes)
    {
        why = {};
        file.openFromMemory(memory_file(bytes), "walk.anim");
        return depth == anim_depth::skeleton    ? file.loadSkeleton({}, why)
               : depth == anim_depth::animation ? file.loadAnimation({}, why)
                                                : file.loadTemplate({}, why);
    }
    const anim_data& data() const { return file.data(); }

    anim_file file;
    failure why;
};

using bone_list = std::vector<std::uint32_t>;

} // namespace

TEST_F(anim_file_tests, anAnimationIsReadAsItsPageSays)
{
    for (const std::uint32_t version : {5u, 7u})
    {
        test_anim source;
        source.version = version;
        source.header_word = 0xdeadbeef;
        ASSERT_TRUE(load(anim_depth::animation, source.bytes())) << describe(why);
        EXPECT_EQ(file.path(), "walk.anim");
        EXPECT_EQ(data().version, version);
        EXPECT_EQ(data().header_word, 0xdeadbeefu);
        EXPECT_EQ(data().frame_rate, 20.0f);
        EXPECT_EQ(data().skeleton_name, "humanoid01");
        EXPECT_EQ(data().end_time, 0.05f);
        ASSERT_EQ(data().bones.size(), 3u);
        EXPECT_EQ(data().bones[2].name, "head");
        EXPECT_EQ(data().bones[2].index, 2u);
        EXPECT_EQ(data().bones[2].parent, 1);
        EXPECT_EQ(data().bones[0].parent, -1);
        EXPECT_EQ(data().translation_map, (bone_list{0, 0xffffffff, 1}));
        EXPECT_EQ(data().rotation_map, (bone_list{0, 1, 0xffffffff}));
        EXPECT_EQ(data().animated_translations, (bone_list{0, 2}));
        EXPECT_EQ(data().animated_rotations, (bone_list{0, 1}));
        ASSERT_EQ(data().frame_count, 2u);
        EXPECT_EQ(data().frameTranslations(0)[0], glm::vec3(-1.0f, 2.0f, 3.0f));
        EXPECT_EQ(data().frameTranslations(1)[0], glm::vec3(1.5f, 0.25f, 0.0f));
        EXPECT_EQ(data().frameTranslations(1)[1], glm::vec3(-0.5f, -0.5f, 8.0f));
        const glm::quat turned = data().frameRotations(1)[1];
        EXPECT_FLOAT_EQ(turned.x, -16384.0f / 32767.0f);
        EXPECT_FLOAT_EQ(turned.y, -8192.0f / 32767.0f);
        EXPECT_FLOAT_EQ(turned.z, 4096.0f / 32767.0f);
        EXPECT_FLOAT_EQ(turned.w, 2048.0f / 32767.0f);
        // 14 + 10 bytes of name, (4), 8, three bones of 6 and 4 + 5 + 4 letters, 24 of maps, (8), 12; 40 a frame.
        const std::uint64_t begin = version == 7 ? 111 : 99;
        EXPECT_EQ(data().first_bone_offsets, (std::vector<std::uint64_t>{begin, begin + 40}));
    }
    EXPECT_FALSE(file.lastNotice());
}

TEST_F(anim_file_tests, aSkeletonHasItsBindPoseInTheProgramsSpace)
{
    for (const std::uint32_t version : {5u, 7u})
    {
        ASSERT_TRUE(load(anim_depth::skeleton, test::testSkeleton(version).bytes())) << describe(why);
        EXPECT_EQ(data().bones[0].translation, glm::vec3(-1.0f, 2.0f, 3.0f));
        EXPECT_EQ(data().bones[2].translation, glm::vec3(0.25f, 0.0f, 1.0f));
        const glm::quat turned = data().bones[1].rotation;
        const float half = 16384.0f / 32767.0f;
        EXPECT_EQ(turned.x, half);
        EXPECT_EQ(turned.y, half);
        EXPECT_EQ(turned.z, -half);
        EXPECT_EQ(turned.w, half);
        EXPECT_TRUE(data().translations.empty());
    }
}

TEST_F(anim_file_tests, trackIOfASkeletonIsBoneIWhateverItsMapsSay)
{
    test_anim source = test::testSkeleton(5);
    source.translation_map = {test_anim::none, test_anim::none, 9000};
    source.frame_count = 0; // nor does this matter
    source.translation_count = 2;
    source.frames[0].translations.pop_back();
    ASSERT_TRUE(load(anim_depth::skeleton, source.bytes())) << describe(why);
    EXPECT_EQ(data().bones[1].translation, glm::vec3(0.0f, 0.5f, 0.0f));
    EXPECT_EQ(data().bones[2].translation, glm::vec3(0.0f)); // no third translation
    EXPECT_EQ(data().bones[2].rotation.z, -1.0f);
}

TEST_F(anim_file_tests, aTemplateEndsBeforeTheFrames)
{
    test_anim source;
    source.version = 7;
    source.static_translations = {{1.0f, 2.0f, 3.0f}};
    source.frame_count = 4000000000;
    source.frames.clear();
    ASSERT_TRUE(load(anim_depth::bones_only, source.bytes())) << describe(why);
    EXPECT_EQ(data().bones.size(), 3u);
    EXPECT_EQ(data().static_translations.size(), 1u);
    EXPECT_EQ(data().animated_translations, (bone_list{0, 2}));
    EXPECT_TRUE(data().translations.empty());
}

TEST_F(anim_file_tests, staticValuesStayAsTheFileHasThem)
{
    test_anim source;
    source.version = 7;
    source.has_sub_name = true;
    source.sub_name = "second";
    source.static_translations = {{1.0f, 2.0f, 3.0f}, {-4.0f, 0.0f, 0.5f}};
    source.static_rotations = {{-32768, 32767, 0, 16384}};
    ASSERT_TRUE(load(anim_depth::animation, source.bytes())) << describe(why);
    EXPECT_EQ(data().sub_name_flag, 1u);
    EXPECT_EQ(data().sub_name, "second");
    EXPECT_EQ(data().static_translations, (std::vector<glm::vec3>{{1.0f, 2.0f, 3.0f}, {-4.0f, 0.0f, 0.5f}}));
    ASSERT_EQ(data().static_rotations.size(), 1u);
    EXPECT_FLOAT_EQ(data().static_rotations[0].x, -1.0000305f);
    EXPECT_EQ(data().static_rotations[0].y, 1.0f);
    EXPECT_EQ(data().frameTranslations(0)[0], glm::vec3(-1.0f, 2.0f, 3.0f)); // still in step
    EXPECT_EQ(data().first_bone_offsets[0], 111u + 2 + 6 + 2 * 12 + 8);
}

TEST_F(anim_file_tests, mapEntriesBelow9000AreTracks)
{
    test_anim source;
    source.translation_map = {9000, 8999, 0x80000000};
    source.rotation_map = {0xfffffffe, test_anim::none, 9001};
    ASSERT_TRUE(load(anim_depth::animation, source.bytes())) << describe(why);
    EXPECT_EQ(data().animated_translations, (bone_list{1, 2}));
    EXPECT_TRUE(data().first_bone_offsets.empty()); // bone 0 does not move
    EXPECT_EQ(data().animated_rotations, (bone_list{0}));
    EXPECT_EQ(data().rotations.size(), 4u); // the second rotation of each frame is nobody's
}

TEST_F(anim_file_tests, moreBonesWithTracksThanValuesAreCut)
{
    test_anim source;
    source.translation_map = {1000, 1001, 1002};
    ASSERT_TRUE(load(anim_depth::animation, source.bytes())) << describe(why);
    EXPECT_EQ(data().animated_translations, (bone_list{0, 1}));
    EXPECT_EQ(data().translation_count, 2u);
}

TEST_F(anim_file_tests, moreValuesThanBonesBelongToNobody)
{
    test_anim source;
    source.translation_count = 5;
    for (auto& frame : source.frames)
        frame.translations.resize(5, {7.0f, 8.0f, 9.0f});
    for (const anim_depth depth : {anim_depth::animation, anim_depth::bones_only})
    {
        ASSERT_TRUE(load(depth, source.bytes())) << describe(why);
        EXPECT_EQ(data().animated_translations, (bone_list{0, 2}));
        EXPECT_EQ(data().translation_count, 5u);
    }
    ASSERT_TRUE(load(anim_depth::animation, source.bytes())) << describe(why);
    EXPECT_EQ(data().frameTranslations(1)[1], glm::vec3(-0.5f, -0.5f, 8.0f));
    EXPECT_EQ(data().frameRotations(1)[0].y, -1.0f); // still in step
    EXPECT_EQ(data().first_bone_offsets, (std::vector<std::uint64_t>{99, 99 + 76}));
    const anim_data taken = file.takeData();
    EXPECT_EQ(taken.translations.size(), 10u);
    EXPECT_TRUE(data().bones.empty() && file.path().empty());
}

TEST_F(anim_file_tests, framesMayHaveNothingToRead)
{
    test_anim source;
    source.frame_count = 0;
    source.frames.clear();
    ASSERT_TRUE(load(anim_depth::animation, source.bytes())) << describe(why);
    EXPECT_TRUE(data().translations.empty() && data().rotations.empty() && data().first_bone_offsets.empty());

    source = {};
    source.translation_count = 0;
    for (auto& frame : source.frames)
        frame.translations.clear();
    ASSERT_TRUE(load(anim_depth::animation, source.bytes())) << describe(why);
    EXPECT_TRUE(data().translations.empty() && data().first_bone_offsets.empty());
    EXPECT_TRUE(data().animated_translations.empty());
    EXPECT_EQ(data().frameRotations(0)[1].x, 1.0f);

    source = {};
    source.skeleton_name.clear();
    source.bones.clear();
    source.translation_map.clear();
    source.rotation_map.clear();
    source.translation_count = source.rotation_count = 0;
    source.frames.clear();
    ASSERT_TRUE(load(anim_depth::animation, source.bytes())) << describe(why);
    EXPECT_EQ(data().skeleton_name, "");
    EXPECT_EQ(data().frame_count, 2u);
    source.frame_count = anim_file::max_trackless_frames + 1;
    EXPECT_FALSE(load(anim_depth::animation, source.bytes()));
    EXPECT_EQ(why.field, "frame count");
}

TEST_F(anim_file_tests, manyFramesAreDecodedAsWellAsFew)
{
    test_anim source; // more than is read at a time; each frame says its own number
    source.frame_count = 60001;
    source.frames.assign(source.frame_count, source.frames[0]);
    for (std::size_t i = 0; i < source.frames.size(); ++i)
    {
        source.frames[i].translations[1][2] = static_cast<float>(i);
        source.frames[i].rotations[0][3] = static_cast<std::int16_t>(i % 1000);
    }
    const test::temporary_folder folder;
    const std::string path = folder.file("long.anim"), bytes = source.bytes();
    test::writeBytes(path, bytes);
    for (const bool is_on_disk : {false, true})
    {
        ASSERT_TRUE(is_on_disk ? file.loadAnimation(path, why) : load(anim_depth::animation, bytes)) << describe(why);
        for (std::size_t i = 0; i < source.frames.size(); ++i)
        {
            ASSERT_EQ(data().frameTranslations(i)[1], glm::vec3(-4.0f, 5.0f, static_cast<float>(i)));
            ASSERT_EQ(data().frameRotations(i)[0].w, static_cast<float>(i % 1000) / 32767.0f);
            ASSERT_EQ(data().first_bone_offsets[i], 99 + 40 * i);
        }
    }
    test::writeBytes(path, bytes.substr(0, bytes.size() - 1));
    EXPECT_TRUE(file.loadTemplate(path, why)) << describe(why);
    EXPECT_FALSE(file.loadAnimation(path, why));
    EXPECT_EQ(why.field, "frame count");
    EXPECT_NE(why.what.find("2,400,039 bytes that are left"), std::string::npos) << why.what;
}

TEST_F(anim_file_tests, staticValuesMayFillMegabytes)
{
    test_anim source;
    source.version = 7;
    source.static_translations.assign(200000, {1.0f, 2.0f, 3.0f});
    source.static_rotations = {{1, 2, 3, 32767}};
    const test::temporary_folder folder;
    test::writeBytes(folder.file("a.anim"), source.bytes());
    ASSERT_TRUE(file.loadAnimation(folder.file("a.anim"), why)) << describe(why);
    EXPECT_EQ(data().static_translations.back(), glm::vec3(1.0f, 2.0f, 3.0f));
    EXPECT_EQ(data().static_rotations.back().w, 1.0f);
    EXPECT_EQ(data().frameTranslations(1)[1], glm::vec3(-0.5f, -0.5f, 8.0f));
}

TEST_F(anim_file_tests, filesOnDiskAndFailuresHaveNotices)
{
    const test::temporary_folder folder;
    const std::string good = folder.file("good.anim"), missing = folder.file("missing.anim");
    test::writeBytes(good, test_anim{}.bytes());
    ASSERT_TRUE(file.loadAnimation(good, why)) << describe(why);
    EXPECT_EQ(file.path(), good);

    EXPECT_FALSE(file.loadAnimation(missing, why));
    EXPECT_EQ(why.kind, failure_kind::not_found);
    EXPECT_EQ(why.path, missing);
    EXPECT_EQ(file.path(), "");
    EXPECT_TRUE(data().bones.empty());
    ASSERT_TRUE(file.lastNotice());
    EXPECT_EQ(file.lastNotice()->title, "Fatal Error!");
    EXPECT_EQ(file.lastNotice()->text, "File: " + missing + " is missing");

    test_anim source;
    source.version = 6;
    EXPECT_FALSE(load(anim_depth::animation, source.bytes()));
    EXPECT_EQ(why.kind, failure_kind::unsupported);
    EXPECT_EQ(why.field, "version");
    EXPECT_FALSE(file.lastNotice()) << "nobody is bothered with it";

    EXPECT_FALSE(load(anim_depth::animation, test_anim{}.bytes().substr(0, 60)));
    ASSERT_TRUE(file.lastNotice());
    EXPECT_EQ(file.lastNotice()->title, "Fatal Error!");
    EXPECT_EQ(file.lastNotice()->text, "File: " + describe(why));
}

TEST_F(anim_file_tests, bytesInMemoryServeSeveralLoadsUntilReset)
{
    file.openFromMemory(memory_file(test::testSkeleton(5).bytes()), "s.anim");
    ASSERT_TRUE(file.loadTemplate({}, why));
    ASSERT_TRUE(file.loadSkeleton({}, why));
    file.reset();
    EXPECT_EQ(file.path(), "");
    EXPECT_TRUE(data().bones.empty());
    EXPECT_FALSE(file.loadSkeleton({}, why));
}

TEST_F(anim_file_tests, theNameIsReadFromAFilesFirstBytes)
{
    test_anim source;
    source.version = 3;
    const std::string bytes = source.bytes();
    const auto start = [&bytes](std::size_t size) { return std::as_bytes(std::span(bytes)).first(size); };
    std::string name = "as before";
    EXPECT_FALSE(anim_file::readSkeletonName(start(23), name, why)); // one letter less
    EXPECT_EQ(why.field, "skeleton name");
    EXPECT_EQ(name, "as before");
    why = {};
    EXPECT_TRUE(anim_file::readSkeletonName(start(24), name, why));
    EXPECT_EQ(name, "humanoid01");
    EXPECT_FALSE(anim_file::readHeaderName(start(24), name, why));
    EXPECT_EQ(why.kind, failure_kind::unsupported);
}

TEST_F(anim_file_tests, anglesFollowTheFormula)
{
    const float half = std::sqrt(0.5f);
    const struct
    {
        const char* name;
        glm::quat rotation; // w, x, y, z
        glm::vec3 degrees;
    } rows[] = {
        {"none", {1, 0, 0, 0}, {0, 0, 0}},
        {"quarter around x", {half, half, 0, 0}, {90, 0, 0}},
        {"quarter around z", {half, 0, 0, half}, {0, 0, 90}},
        {"too long, straight up", {1, 0, 1, 0}, {180, 90, 180}},
        {"too long, straight down", {1, 0, -1, 0}, {180, -90, 180}},
        // atan2(0.3, 0.9), asin(0.3), atan2(0.58, 0.74)
        {"any", {0.9f, 0.1f, 0.2f, 0.3f}, {18.434949f, 17.457603f, 38.088773f}},
    };
    for (const auto& row : rows)
        for (int axis = 0; axis < 3; ++axis)
            EXPECT_NEAR(eulerDegrees(row.rotation)[axis], row.degrees[axis], 2e-5f) << row.name << ", " << axis;
}

TEST_F(anim_file_tests, framesOfATakeAreCountedWithItsLast)
{
    constexpr double infinite = std::numeric_limits<double>::infinity();
    const struct
    {
        double rate, end;
        std::uint32_t count;
    } rows[] = {{20, 1.0, 21},         {30, 1.0, 31},
                {24.5, 2.0, 50},       {30, 0.0, 1},
                {30, 0.05, 2},         {10, 0.999, 10},
                {10, 0.99999995, 11},  {10, 0.9999998, 10},
                {10, 1.0000001, 11},   {-30, 1.0, 0},
                {-1, 0.5, 0},          {std::nan(""), 1.0, 0},
                {infinite, 0.0, 0},    {infinite, 1.0, 0xffffffff},
                {1e9, 1e9, 0xffffffff}};
    for (const auto& row : rows)
        EXPECT_EQ(frameCount(row.rate, row.end), row.count) << row.rate << " * " << row.end;
}

} // namespace korvane
