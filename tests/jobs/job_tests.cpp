// What only a dialog does with a job: it has the game loaded, watches the work, and stops it.

#include "Korvane/archives/pack_file.h"
#include "Korvane/jobs/extract_job.h"
#include "Korvane/jobs/normal_map_job.h"
#include "Korvane/jobs/search_job.h"
#include "Korvane/textures/picture_file.h"
#include "tests/support/pack_builder.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

namespace korvane
{

namespace
{

class job_test : public testing::Test
{
protected:
    void SetUp() override
    {
        test::test_pack pack;
        for (int i = 0; i < 5; ++i)
            pack.entries.push_back({"maps\\" + std::to_string(i) + ".txt", "x"});
        test::writeBytes(m_folder.file("a.pack"), pack.bytes());
        const auto tree = std::make_shared<path_tree>();
        pack_file archive(*tree);
        failure why;
        ASSERT_TRUE(archive.open(m_folder.file("a.pack"), why)) << describe(why);
        archive.enter();
        m_source = loaded_game(std::make_shared<const game_data>(tree));
    }
    // Stops after so many steps.
    work_port stoppingAfter(std::size_t steps)
    {
        return {[this, steps](const work_progress& step) {
                    m_last = step;
                    if (step.done == steps)
                        m_stop.request_stop();
                },
                m_stop.get_token(),
                {}};
    }

    test::temporary_folder m_folder;
    loaded_game m_source{std::make_shared<const game_data>()};
    std::stop_source m_stop;
    work_progress m_last;
};

TEST_F(job_test, aStoppedExtractionSaysWhatItDid)
{
    extract_job_result result;
    failure why;
    ASSERT_TRUE(extractMatching(m_source, {"maps*", m_folder.file("out")}, stoppingAfter(2), result, why));
    EXPECT_EQ(result.matches, 5u);
    EXPECT_EQ(result.written, 2u);
    EXPECT_EQ(m_last.total, 5u);
    EXPECT_TRUE(std::filesystem::exists(toPath(m_folder.file("out/maps/1.txt"))));
    EXPECT_FALSE(std::filesystem::exists(toPath(m_folder.file("out/maps/2.txt"))));
}

TEST_F(job_test, aStoppedConversionOfPicturesGoesNoFurther)
{
    normal_map_job_options options;
    failure why;
    for (const char* name : {"a.tga", "b.tga"})
    {
        options.batch.inputs.push_back({m_folder.file(name), name});
        ASSERT_TRUE(writePictureFile(m_folder.file(name), picture_kind::targa, picture(4, 4), why)) << describe(why);
    }
    options.batch.output = m_folder.file("out/");
    const work_port work = stoppingAfter(1);
    normal_map_job_result result;
    ASSERT_TRUE(convertNormalMaps(m_source, options, work, result, why));
    EXPECT_EQ(result.files.size(), 2u) << "the step that has begun is finished";
    options.batch.output = m_folder.file("none/");
    ASSERT_TRUE(convertNormalMaps(m_source, options, work, result, why));
    EXPECT_TRUE(result.files.empty());
    EXPECT_FALSE(std::filesystem::exists(toPath(m_folder.file("none"))));
}

TEST(jobs, withoutArchivesASearchSaysSo)
{
    loaded_game disk_alone(std::make_shared<const game_data>());
    search_job_result result;
    failure why;
    EXPECT_FALSE(searchAnimations(disk_alone, "man", {}, result, why));
    EXPECT_EQ(why.what, "no archives are loaded");
}

} // namespace

} // namespace korvane
