// Loading .anim files: what each of the three loads takes out of hand-made files of both versions.

#include "Korvane/animation/anim_file.h"
#include "tests/support/anim_builder.h"
#include "tests/support/recording_prompt.h"
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

    test::recording_prompt prompt;
    anim_file file{prompt};
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
    EXPECT_TRUE(prompt.shown.empty());
}

} // namespace korvane
