// A conversion from FBX as the window and the console run it: stopped at any moment, with a file that changes under it,
// and what a look at the files says before.

#include "Korvane/jobs/convert_look.h"

#include "tests/support/anim_builder.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/walking_fbx.h"

#include <gtest/gtest.h>

namespace korvane::test
{
namespace
{

class convert_tests : public testing::Test
{
protected:
    convert_tests()
    {
        options.fbx = m_folder.file("walk.fbx");
        options.template_anim = m_folder.file("rig.anim");
        options.output = m_folder.file("out.anim");
        options.config_path = m_folder.file("config.cfg");
        writeBytes(options.fbx, walkingFbx());
        writeBytes(options.template_anim, test_anim{}.bytes());
        writeBytes(options.output, "before");
    }
    bool convert(const work_port& work)
    {
        why = {};
        convert_job_result result;
        return convertFbx(m_source, options, work, result, why);
    }

    temporary_folder m_folder;
    loaded_game m_source{std::make_shared<const game_data>()};
    convert_job_options options;
    failure why;
};

} // namespace

TEST_F(convert_tests, stoppedAtAnyLineItLeavesTheOldFile)
{
    std::size_t lines = 0;
    bool is_done = false;
    for (std::size_t stop_at = 1; !is_done; ++stop_at)
    {
        std::stop_source stop;
        work_port work;
        work.stop = stop.get_token();
        lines = 0;
        work.log = [&](const std::string&) {
            if (++lines == stop_at)
                stop.request_stop();
        };
        is_done = convert(work);
        EXPECT_EQ(readBytes(options.output) == "before", !is_done) << stop_at;
        EXPECT_EQ(why.what.substr(0, 7), is_done ? "" : "stopped");
    }
    EXPECT_GT(lines, 8u);
}

TEST_F(convert_tests, aFileThatIsReplacedMeanwhileIsTold)
{
    std::vector<std::string> lines;
    work_port work;
    work.log = [&](const std::string& line) {
        lines.push_back(line);
        if (line.starts_with("FBX conversion process"))
            writeBytes(options.fbx, "another one");
    };
    EXPECT_TRUE(convert(work)) << describe(why);
    EXPECT_NE(lines.back().find("was replaced while it was converted"), std::string::npos) << lines.back();
}

TEST_F(convert_tests, aLookSaysWhatMatchesAndWhatIsMissing)
{
    const convert_look look = lookAtConversion(m_source, options);
    ASSERT_EQ(look.takes.size(), 1u);
    EXPECT_EQ(look.takes[0].name, "walk");
    EXPECT_EQ(look.takes[0].seconds, 2);
    EXPECT_EQ(look.prefix, "rig:");
    ASSERT_EQ(look.bones.size(), 3u);
    EXPECT_EQ(look.bones[0].template_name, "head");
    EXPECT_EQ(look.bones[0].fbx_name, "");
    EXPECT_EQ(look.bones[2].fbx_name, "rig:spine");
    writeBytes(options.fbx, walkingFbx().substr(0, 300));
    options.template_anim = m_folder.file("gone.anim");
    const convert_look damaged = lookAtConversion(m_source, options);
    EXPECT_EQ(damaged.fbx_failure.path, options.fbx);
    EXPECT_EQ(damaged.template_failure.kind, failure_kind::not_found);
    EXPECT_TRUE(damaged.takes.empty() && damaged.bones.empty());
}

} // namespace korvane::test
