// The two texts against ones that were written by hand from docs/formats/anim.md. Angles in the dump come from another
// program's arithmetic.

#include "Korvane/animation/anim_dump.h"
#include "Korvane/animation/bone_table.h"
#include "tests/support/anim_builder.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

namespace korvane
{
namespace
{

// The longest name has 14 bytes: names end at column 18.
constexpr const char* wanted_table = //
    "// *******************************************************\n"
    "// Korvane 0.7 Bone Table Export\n"
    "// *******************************************************\n"
    "\n"
    "// Skeleton:\"Beast_01\"\n"
    "// Bones Defintion\n"
    "\n"
    "// version info\n"
    "version=1\n"
    "reference_skeleton=true\n"
    "cinematic=true\n"
    "\n"
    "// <bone_name>\t\t\t\t<bone_type>\t\t\t\t<sort_order>\t\t\t\t<optional flags>\n"
    "Jaw,              BT_ROOT,                 \t\t\t0\n"
    "left_eye,         BT_CORE,                 \t\t\t1\n"
    "be_prop_0,        BT_FLOATING,             \t\t\t2\n"
    "Spine,            BT_CORE,                 \t\t\t3\n"
    "Left_Eye,         BT_FACE,                 \t\t\t4\n"
    "RIGHT_forearm,    BT_FACE,                 \t\t\t5\n"
    "Right_Thumb,      BT_RIGHT_HAND,           \t\t\t6\n"
    "finger_LEFT_01,   BT_LEFT_HAND,            \t\t\t7\n"
    "L_Finger_01,      BT_CORE,                 \t\t\t8\n"
    "hand_right,       BT_CORE,                 \t\t\t9\n"
    "spring_left,      BT_LEFT_HAND,            \t\t\t10\n"
    "left_right_toe,   BT_CORE,                 \t\t\t11\n"
    "ring_rightleft,   BT_LEFT_HAND,            \t\t\t12\n";

constexpr const char* wanted_dump = //
    "***** ANIM DATA Dump - Korvane v0.6  ******\n"
    "Parent Pack File: data.pack\n"
    "File: animations\\walk.anim\n"
    "joint_count: 3\n"
    "frame_count: 2\n"
    "\n"
    "rotation_dump:\n"
    "\n"
    "\n"
    "Frame Number: 0\n"
    "Name: root                    \tQuaternnion: {0.000000,-0.000000,-0.000000,1.000000}            \t"
    "Eulers Degrees: (0.000000, 0.000000, -0.000000)\n"
    "Name: spine                   \tQuaternnion: {1.000000,-0.000000,-0.000000,0.000000}            \t"
    "Eulers Degrees: (180.000000, 0.000000, -0.000000)\n"
    "\n"
    "\n"
    "Frame Number: 1\n"
    "Name: root                    \tQuaternnion: {0.000000,-1.000000,-0.000000,0.000000}            \t"
    "Eulers Degrees: (180.000000, 0.000000, -180.000000)\n"
    "Name: spine                   \tQuaternnion: {-0.500015,-0.250008,0.125004,0.062502}            \t"
    "Eulers Degrees: (-18.437746, 5.379708, 17.475962)\n";

test::test_anim beast()
{
    test::test_anim source = test::testSkeleton(7);
    source.skeleton_name = "Beast_01";
    source.bones = {{"Jaw", -1},           {"left_eye", 0},      {"be_prop_0", -1},  {"Spine", 1},
                    {"Left_Eye", 3},       {"RIGHT_forearm", 3}, {"Right_Thumb", 0}, {"finger_LEFT_01", 3},
                    {"L_Finger_01", 3},    {"hand_right", 3},    {"spring_left", 3}, {"left_right_toe", 3},
                    {"ring_rightleft", 99}};
    source.translation_map.assign(13, 0);
    source.rotation_map.assign(13, 0);
    return source;
}

std::string withCarriageReturns(std::string text)
{
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += 2)
        text.insert(at, 1, '\r');
    return text;
}

#ifdef _WIN32
const bool is_windows = true;
#else
const bool is_windows = false;
#endif

std::string asInTextMode(const std::string& text)
{
    return is_windows ? withCarriageReturns(text) : text;
}

} // namespace

TEST(anim_text, theBoneTableIsTheOneByHand)
{
    const test::temporary_folder folder;
    anim_file file;
    failure why;
    file.openFromMemory(memory_file(beast().bytes()), "beast.anim");
    ASSERT_TRUE(file.loadSkeleton({}, why)) << describe(why);
    EXPECT_EQ(boneTable(file.data(), "\n"), wanted_table);
    EXPECT_EQ(boneTable(file.data(), "\r\n"), withCarriageReturns(wanted_table));
    ASSERT_TRUE(writeBoneTable(file.data(), folder.file("beast.bone_table"), why)) << describe(why);
    EXPECT_EQ(test::readBytes(folder.file("beast.bone_table")), asInTextMode(wanted_table));

    EXPECT_FALSE(writeBoneTable(file.data(), folder.file("none/beast.bone_table"), why));
    EXPECT_EQ(why.kind, failure_kind::unwritable);
    EXPECT_FALSE(file.lastNotice());
    EXPECT_EQ(folder.fileCount(), 1u);
}

TEST(anim_text, theDumpIsTheOneByHand)
{
    const test::temporary_folder folder;
    anim_file file;
    failure why;
    file.openFromMemory(memory_file(test::test_anim{}.bytes()), "walk.anim");
    ASSERT_TRUE(file.loadAnimation({}, why)) << describe(why);
    const anim_origin origin = {"data.pack", "animations\\walk.anim"};
    EXPECT_EQ(animDump(file.data(), origin, "\n"), wanted_dump);
    ASSERT_TRUE(writeAnimDump(file.data(), origin, folder.file("walk.txt"), why)) << describe(why);
    EXPECT_EQ(test::readBytes(folder.file("walk.txt")), asInTextMode(wanted_dump));
}

TEST(anim_text, rotationsThatBelongToNoBoneAreDumpedWithoutAName)
{
    anim_file file;
    failure why;
    test::test_anim source;
    source.rotation_map = {test::test_anim::none, 9000, test::test_anim::none};
    source.bones[0].name = "a name that is longer than its column";
    file.openFromMemory(memory_file(source.bytes()), "walk.anim");
    ASSERT_TRUE(file.loadAnimation({}, why)) << describe(why);
    EXPECT_NE(animDump(file.data(), {}, "\n").find("\nName: " + std::string(24, ' ') + "\tQuaternnion: {0.0"),
              std::string::npos);
    source.rotation_map = {0, 1, 2};
    file.openFromMemory(memory_file(source.bytes()), "walk.anim");
    ASSERT_TRUE(file.loadAnimation({}, why)) << describe(why);
    EXPECT_NE(animDump(file.data(), {}, "\n").find("Name: a name that is longer than its column\tQuaternnion"),
              std::string::npos);
}

TEST(anim_text, theDumpOfATemplateHasNoFrames)
{
    anim_file file;
    failure why;
    test::test_anim source;
    source.translation_count = source.rotation_count = 0;
    source.frame_count = 3456000000; // nothing in a template says that they cannot be there
    file.openFromMemory(memory_file(source.bytes()), "walk.anim");
    ASSERT_TRUE(file.loadTemplate({}, why)) << describe(why);
    EXPECT_EQ(animDump(file.data(), {}, "\n").find("Frame Number"), std::string::npos);
}

} // namespace korvane
