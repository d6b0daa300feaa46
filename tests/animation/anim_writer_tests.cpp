// Written .anim files: version 5 reads back, version 7 has the bytes its page says and is refused by the readers.

#include "Korvane/animation/anim_writer.h"

#include "Korvane/animation/anim_file.h"
#include "tests/support/anim_builder.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <limits>

namespace korvane
{
namespace
{

constexpr std::uint32_t none = 0xffffffff;

// The take of test_anim, whose numbers are in the file's space as these are.
anim_output sampleTake()
{
    const auto unit = [](int x, int y, int z, int w) {
        return glm::quat(static_cast<float>(w) / 32767.0f, static_cast<float>(x) / 32767.0f,
                         static_cast<float>(y) / 32767.0f, static_cast<float>(z) / 32767.0f);
    };
    anim_output output;
    output.header_word = 1;
    output.frame_rate = 20.0f;
    output.skeleton_name = "humanoid01";
    output.end_time = 0.05f;
    output.bones = {{"root", -1}, {"spine", 0}, {"head", 1}};
    output.translation_map = {0, none, 1};
    output.rotation_map = {0, 1, none};
    output.frames = {
        {{{0, {1.0f, 2.0f, 3.0f}}, {2, {4.0f, 5.0f, 6.0f}}}, {{0, unit(0, 0, 0, 32767)}, {1, unit(32767, 0, 0, 0)}}},
        {{{0, {-1.5f, 0.25f, 0.0f}}, {2, {0.5f, -0.5f, 8.0f}}},
         {{0, unit(0, 32767, 0, 0)}, {1, unit(-16384, 8192, -4096, 2048)}}}};
    return output;
}

class anim_writer_tests : public testing::Test
{
protected:
    std::string write(const anim_output& output, std::uint32_t version)
    {
        why = {};
        if (!writeAnim(output, version, path, said, why))
            return {};
        return test::readBytes(path);
    }

    test::temporary_folder folder;
    std::string path = folder.file("out.anim");
    std::optional<notice> said;
    failure why;
};

} // namespace

TEST_F(anim_writer_tests, aTakeOfVersion5IsTheFileByHand)
{
    EXPECT_EQ(write(sampleTake(), 5), test::test_anim{}.bytes()) << describe(why);
}

TEST_F(anim_writer_tests, version7PatchesTheMapsAndPutsTheStaticBlockLast)
{
    // By hand: 14 bones; only bones 0 and 13 move, bones 0 to 9 turn.
    anim_output output;
    output.skeleton_name = "s";
    output.frame_rate = 1.0f;
    output.translation_scale = 2.0;
    for (int i = 0; i < 14; ++i)
        output.bones.push_back({"b", i - 1});
    output.translation_map.assign(14, none);
    output.translation_map[0] = 0;
    output.translation_map[13] = 1;
    output.rotation_map.assign(14, none);
    for (std::uint32_t i = 0; i < 10; ++i)
        output.rotation_map[i] = i;
    output.frames.resize(3);
    for (std::size_t i = 0; i < 3; ++i)
    {
        const float number = static_cast<float>(i + 1);
        output.frames[i].translations = {{0, {number, 0, 0}}, {13, {0, number, 0}}};
        for (std::uint32_t bone = 0; bone < 10; ++bone)
            output.frames[i].rotations[bone] = glm::quat(1, 0, 0, 0);
    }
    output.frames[1].rotations[0] = glm::quat(0, 0, -1, 0);

    test::bytes_out wanted;
    wanted.u32(7);
    wanted.u32(0);
    wanted.f32(1.0f);
    wanted.u16(1);
    wanted.text("s");
    wanted.u32(0); // no sub-name
    wanted.f32(0.0f);
    wanted.u32(14);
    for (int i = 0; i < 14; ++i)
    {
        wanted.u16(1);
        wanted.text("b");
        wanted.u32(static_cast<std::uint32_t>(i - 1));
    }
    for (const int entry : {0, 1000, 1001, 1002, 1003, 1004, 1005, 1006, 1007, 1008, 1009, 1010, 1011, 1})
        wanted.u32(static_cast<std::uint32_t>(entry));
    for (const std::uint32_t entry : {0u, 1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u, 9u, 1000u, none, none, none})
        wanted.u32(entry);
    for (const std::uint32_t count : {2u, 10u, 3u, 12u, 2u})
        wanted.u32(count);
    for (const int number : {1, 2, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3}) // not scaled; the last one repeated
        test::writeTranslation(wanted, {static_cast<float>(number), 0, 0});
    test::writeRotation(wanted, {0, 0, 0, 32767});
    test::writeRotation(wanted, {0, -32767, 0, 0});
    for (int frame = 1; frame <= 3; ++frame)
    {
        test::writeTranslation(wanted, {2.0f * static_cast<float>(frame), 0, 0});
        test::writeTranslation(wanted, {0, 2.0f * static_cast<float>(frame), 0});
        for (int bone = 0; bone < 10; ++bone)
        {
            if (frame == 2 && bone == 0)
                test::writeRotation(wanted, {0, -32767, 0, 0});
            else
                test::writeRotation(wanted, {0, 0, 0, 32767});
        }
    }
    EXPECT_EQ(write(output, 7), wanted.str()) << describe(why);
}

TEST_F(anim_writer_tests, onlyTheFirstElevenBonesCanTakeTheStaticRotation)
{
    anim_output output;
    output.bones.assign(12, {"b", -1});
    output.translation_map.assign(12, 0);
    output.rotation_map.assign(12, 0);
    output.rotation_map[11] = none;
    const std::string bytes = write(output, 7);
    ASSERT_EQ(bytes.size(), 14u + 12 + 12 * 7 + 96 + 20 + 12 * 12 + 2 * 8) << describe(why);
    EXPECT_EQ(bytes.substr(14 + 12 + 12 * 7 + 92, 8), "\xff\xff\xff\xff\x0c" + std::string(3, '\0')); // T is 12
    // Without frames the static rotations turn nothing.
    EXPECT_EQ(bytes.substr(bytes.size() - 8), std::string(6, '\0') + "\xff\x7f");
}

TEST_F(anim_writer_tests, version7FilesAreRefusedWithAClearReason)
{
    anim_output take = sampleTake();
    anim_output turning = take, still = take, empty = take, pose = take, half_pose = take;
    turning.translation_map = {none, none, none};
    for (anim_output::frame& frame : turning.frames)
        frame.translations.clear();
    still.translation_map = still.rotation_map = {none, none, none};
    still.frames.assign(3, {});
    empty.frames.clear();
    pose.is_single_pose = half_pose.is_single_pose = true;
    const glm::quat same(1, 0, 0, 0);
    pose.frames = {{{{0, {}}, {1, {}}, {2, {}}}, {{0, same}, {1, same}, {2, same}}}};
    half_pose.frames = {{{{0, {}}, {2, {}}}, {{0, same}, {1, same}}}}; // its maps have two entries
    for (const anim_output& output : {take, turning, still, empty, pose, half_pose})
    {
        std::vector<std::byte> bytes;
        ASSERT_TRUE(makeAnim(output, 7, bytes, why)) << describe(why);
        for (const int more : {-7, -1, 0, 1, 500}) // as it is, and with some bytes more or less
            for (const anim_depth depth : {anim_depth::skeleton, anim_depth::animation, anim_depth::bones_only})
            {
                std::vector<std::byte> changed = bytes;
                changed.resize(bytes.size() + static_cast<std::size_t>(more));
                anim_file file;
                failure reason;
                file.openFromMemory(memory_file(changed), "out.anim");
                EXPECT_FALSE(depth == anim_depth::skeleton    ? file.loadSkeleton({}, reason)
                             : depth == anim_depth::animation ? file.loadAnimation({}, reason)
                                                              : file.loadTemplate({}, reason));
                EXPECT_EQ(reason.field, "static block") << more << ", " << describe(reason);
                EXPECT_NE(reason.what.find("behind the track counts"), std::string::npos) << describe(reason);
            }
    }
}

// Files in the right order whose numbers come close.
TEST_F(anim_writer_tests, otherVersion7FilesAreRead)
{
    test::test_anim still; // two frames of 12 bones at the origin look like a take of 12 frames without tracks
    still.version = 7;
    still.bones.assign(12, {"b", -1});
    still.translation_map.assign(12, 0);
    still.rotation_map.assign(12, 0);
    still.translation_count = still.rotation_count = 12;
    still.frames.assign(2, {std::vector<std::array<float, 3>>(12), {12, {0, 0, 0, 32767}}});
    test::test_anim one; // a bone with static values looks like a pose of a rotation
    one.version = 7;
    one.bones.resize(1);
    one.translation_map = one.rotation_map = {0};
    one.static_translations = {{0, 0, 3}};
    one.static_rotations = {{0, 0, 0, 32767}, {0, 0, 0, 32767}};
    one.translation_count = one.rotation_count = 1;
    for (auto& frame : one.frames)
        frame = {{{1, 2, 3}}, {{0, 0, 0, 32767}}};
    test::test_anim twelve; // static values as many as a written take has
    twelve.version = 7;
    twelve.static_translations.assign(12, {0, 0, 0});
    twelve.static_rotations.assign(2, {0, 0, 0, 32767});
    for (const test::test_anim& source : {still, one, twelve})
        for (const char* const trailing : {"", "more"})
        {
            anim_file file;
            file.openFromMemory(memory_file(source.bytes() + trailing), "real.anim");
            EXPECT_TRUE(file.loadAnimation({}, why)) << describe(why);
            EXPECT_EQ(file.data().frame_count, 2u);
        }
}

TEST_F(anim_writer_tests, aSinglePoseIsTwoFramesWithMapsOfItsOwn)
{
    anim_output output = sampleTake();
    output.is_single_pose = true;
    output.frames = {
        {{{0, {1, 2, 3}}, {1, {4, 5, 6}}, {2, {7, 8, 9}}}, {{0, {1, 0, 0, 0}}, {1, {0, 1, 0, 0}}, {2, {0, 0, 1, 0}}}}};
    test::test_anim wanted = test::testSkeleton(5);
    wanted.end_time = 0.05f;
    wanted.frames = {{{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}, {{0, 0, 0, 32767}, {32767, 0, 0, 0}, {0, 32767, 0, 0}}}};
    wanted.frames.push_back(wanted.frames[0]);
    wanted.frame_count = 2;
    EXPECT_EQ(write(output, 5), wanted.bytes()) << describe(why);

    // A pose of some bones: each map has two entries, although there are three bones.
    output.frames = {{{{1, {4, 5, 6}}, {2, {7, 8, 9}}}, {{0, {1, 0, 0, 0}}, {2, {0, 0, 1, 0}}}}};
    wanted.translation_map = {none, 1};
    wanted.rotation_map = {0, none};
    wanted.translation_count = wanted.rotation_count = 2;
    wanted.frames.assign(2, {{{4, 5, 6}, {7, 8, 9}}, {{0, 0, 0, 32767}, {0, 32767, 0, 0}}});
    EXPECT_EQ(write(output, 5), wanted.bytes()) << describe(why);
}

TEST_F(anim_writer_tests, rotationsAreCutTowardsZeroAndEndAtTheEndsOfTheirType)
{
    anim_output output;
    output.bones = {{"b", -1}};
    output.translation_map = {none};
    output.rotation_map = {0};
    const float third = 1.0f / 3.0f;                                    // 10922.33
    output.frames = {{{}, {{0, {-third, third, 0.99999f, -0.99999f}}}}, // 32766.67; (w, x, y, z)
                     {{}, {{0, {std::numeric_limits<float>::quiet_NaN(), 2.0f, -2.0f, -1.00002f}}}}};
    const std::string bytes = write(output, 5);
    test::bytes_out wanted;
    test::writeRotation(wanted, {10922, 32766, -32766, -10922});
    test::writeRotation(wanted, {32767, -32768, -32767, 0});
    ASSERT_GE(bytes.size(), 16u) << describe(why);
    EXPECT_EQ(bytes.substr(bytes.size() - 16), wanted.str());
}

TEST_F(anim_writer_tests, everyNumberOfAFileComesBack)
{
    test::test_anim source;
    source.translation_count = 0;
    source.translation_map = {none, none, none};
    source.rotation_map = {0, none, none};
    source.rotation_count = 1;
    source.frames.clear();
    for (int number = -32768; number < 32768; ++number)
        source.frames.push_back({{}, {{static_cast<std::int16_t>(number), 0, 0, 0}}});
    source.frame_count = 65536;
    anim_file file;
    file.openFromMemory(memory_file(source.bytes()), "all");
    ASSERT_TRUE(file.loadAnimation({}, why)) << describe(why);
    anim_output output = sampleTake();
    output.translation_map = source.translation_map;
    output.rotation_map = source.rotation_map;
    output.frames.clear();
    for (const glm::quat& rotation : file.data().rotations)
        output.frames.push_back({{}, {{0, rotation}}});
    EXPECT_TRUE(write(output, 5) == source.bytes()) << describe(why);
}

TEST_F(anim_writer_tests, contradictionsAreRefusedAndNothingIsWritten)
{
    const struct
    {
        const char* what;
        void (*spoil)(anim_output&);
        std::uint32_t version;
    } rows[] = {
        {"version 6", [](anim_output&) {}, 6},
        {"257 bones", [](anim_output& output) { output.bones.resize(257); }, 5},
        {"bone's name", [](anim_output& output) { output.bones[1].name.assign(257, 'x'); }, 5},
        {"skeleton's name", [](anim_output& output) { output.skeleton_name.assign(65536, 'x'); }, 5},
        {"bone 3", [](anim_output& output) { output.frames[1].translations[3] = {}; }, 5},
        {"map", [](anim_output& output) { output.rotation_map.pop_back(); }, 7},
        {"frame 1", [](anim_output& output) { output.frames[1].rotations.erase(1); }, 5},
        {"frame 0",
         [](anim_output& output) {
             output.rotation_map = {none, 0, 1};
         },
         5},
        {"single pose", [](anim_output& output) { output.is_single_pose = true; }, 5},
    };
    for (const auto& row : rows)
    {
        anim_output output = sampleTake();
        row.spoil(output);
        why = {};
        EXPECT_FALSE(writeAnim(output, row.version, path, said, why)) << row.what;
        EXPECT_EQ(why.kind, failure_kind::refused) << row.what;
        EXPECT_NE(why.what.find(row.what), std::string::npos) << describe(why);
        EXPECT_EQ(why.path, path);
    }
    EXPECT_EQ(folder.fileCount(), 0u);
    EXPECT_FALSE(said);
}

TEST_F(anim_writer_tests, aPathThatCannotBeWrittenHasANotice)
{
    path = folder.file("no such folder/out.anim");
    EXPECT_FALSE(writeAnim(sampleTake(), 5, path, said, why));
    EXPECT_EQ(why.kind, failure_kind::unwritable);
    ASSERT_TRUE(said);
    EXPECT_EQ(said->title, "Save Error!");
    EXPECT_EQ(said->text, "Cannot create: " + path);
}

} // namespace korvane
