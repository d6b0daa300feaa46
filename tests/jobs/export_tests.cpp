// What of the export no command line shows: names, and stopping. Files are judged in tests/cli.

#include "EASY_GUI/services/file_system.h"
#include "Korvane/jobs/export_job.h"
#include "tests/support/anim_builder.h"
#include "tests/support/dds_builder.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace korvane
{

namespace
{

TEST(export_job, namesAreThoseThatEveryDiskTakes)
{
    const struct
    {
        const char *operand, *name;
    } rows[] = {{"pack:animations\\hu1_wave.ANIM", "hu1_wave"},
                {"a/b:c?*.anim", "b_c__"},
                {"a/.anim", "model"},
                {"a/con.anim", "_con"},
                {"a/dot. .anim", "dot"},
                {"a/\x01.anim", "_"},
                {"a/\xff.anim", "\xc3\xbf"},
                {"pack:a\\walk.x", "walk.x"}};
    for (const auto& row : rows)
        EXPECT_EQ(exportName(row.operand, ".anim"), row.name) << row.operand;
}

TEST(export_job, aStopLeavesWholeFilesAndACount)
{
    test::temporary_folder folder;
    test::test_model model;
    test::writeBytes(folder.file("m.rigid_model_v2"), model.bytes());
    test::writeBytes(folder.file("s.anim"), test::testSkeleton(5).bytes());
    test::writeBytes(folder.file("a.anim"), test::test_anim().bytes());
    test::writeBytes(folder.file("bad.anim"), "x");
    loaded_game source(std::make_shared<const game_data>());
    for (const char* format : {"fbx", "dae", "glb", "gltf"})
        for (const std::size_t stop_at : {0u, 3u, 1000u})
        {
            export_job_options options;
            options.model = folder.file("m.rigid_model_v2");
            options.skeleton = folder.file("s.anim");
            options.output = folder.file(format + std::to_string(stop_at)) + "/";
            options.folder_format = format;
            options.animations.assign(6, folder.file("a.anim"));
            options.animations[1] = folder.file("bad.anim");
            std::stop_source stop;
            const work_port work{[&](const work_progress& step) {
                                     if (step.done == stop_at && step.what.starts_with("Exporting"))
                                         stop.request_stop();
                                 },
                                 stop.get_token(),
                                 {}};
            export_job_result result;
            failure why;
            ASSERT_TRUE(runExport(source, options, work, result, why)) << describe(why);
            const std::size_t done = stop_at == 0 ? 0 : stop_at == 3 ? 2 : 5; // the second one fails
            EXPECT_EQ(result.wanted, 6u);
            EXPECT_EQ(result.done, done) << format << stop_at;
            EXPECT_EQ(result.files.size(), done);
            EXPECT_EQ(result.failed.size(), stop_at == 0 ? 0u : 1u);
            EXPECT_EQ(result.is_stopped, stop_at < 6);
            std::error_code ignored;
            std::size_t files = 0;
            for (const auto& entry : std::filesystem::directory_iterator(toPath(options.output), ignored))
                files += entry.path().extension() == "." + std::string(format)
                             ? 1u
                             : 100u * (entry.path().extension() != ".bin");
            EXPECT_EQ(files, done) << format << stop_at;
        }
}

TEST(export_job, paintedTexturesStayUntilTheyAreReplacedAndGreenPointsUp)
{
    test::temporary_folder folder;
    test::test_model model;
    model.lods[0][0].textures = {{1, "t/n.dds"}};
    test::writeBytes(folder.file("m.rigid_model_v2"), model.bytes());
    std::filesystem::create_directory(toPath(folder.file("t")));
    test::writeBytes(folder.file("t/n.dds"), test::test_dds().bytes());
    loaded_game source(std::make_shared<const game_data>());
    export_job_options options;
    options.model = folder.file("m.rigid_model_v2");
    options.output = folder.file("m.fbx");
    options.texture_folder = folder.file("tex");
    options.texture_form = picture_kind::png;
    options.makes_normals_blue = options.keeps_normals_down = options.keeps_textures = true;
    export_job_result result;
    failure why;
    ASSERT_TRUE(runExport(source, options, {}, result, why)) << describe(why);
    const std::string path = result.textures.at("t\\n.dds");
    const std::string down = test::readBytes(path);
    EXPECT_TRUE(result.kept_textures.empty());
    options.keeps_normals_down = false;
    ASSERT_TRUE(runExport(source, options, {}, result, why)) << describe(why);
    EXPECT_EQ(result.kept_textures.size(), 1u);
    EXPECT_EQ(result.textures.at("t\\n.dds"), path) << "the file names it all the same";
    EXPECT_EQ(test::readBytes(path), down);
    ASSERT_TRUE(replaceKeptTextures(source, options, {}, result, why)) << describe(why);
    EXPECT_TRUE(result.kept_textures.empty());
    EXPECT_NE(test::readBytes(path), down);
}

} // namespace

} // namespace korvane
