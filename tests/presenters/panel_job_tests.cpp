#include "Korvane/presenters/normal_map_command.h"
#include "Korvane/presenters/texture_extraction_panel.h"
#include "Korvane/textures/picture_file.h"
#include "tests/support/model_builder.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace korvane
{

namespace
{

TEST(texture_extraction_panel, wantsWhatIsOpenAndRemembersItsChoices)
{
    const test::temporary_folder folder;
    test::test_model bytes;
    bytes.lods[0][0].textures = {{0, "Tex/A.dds"}, {1, "tex/none.dds"}};
    test::writeBytes(folder.file("m.rigid_model_v2"), bytes.bytes());
    test::writeBytes(folder.file("a.dds"), "DDS 1");
    const auto model = std::make_shared<rmv2_file>();
    failure why;
    ASSERT_TRUE(model->open(folder.file("m.rigid_model_v2"), why)) << describe(why);
    open_model document;
    document.take(model);

    config_file table;
    shared_config config(table, folder.file("config.cfg"), {});
    texture_extraction_panel panel(config);
    panel.setFolder(folder.file("Out"));
    panel.setFlat(true);
    const auto game = std::make_shared<const game_data>();
    texture_extraction_panel::request wanted = panel.requestFor(document, game);
    const texture_extraction_result first = texture_extraction_panel::run(wanted, {});
    const std::string where = " They are in " + folder.file("Out");
    EXPECT_EQ(texture_extraction_panel::countText(first, wanted.options),
              "1 DDS files extracted. 1 texture is nowhere to be found." + where);
    wanted.options.form = picture_kind::png;
    EXPECT_TRUE(texture_extraction_panel::countText(first, wanted.options).starts_with("1 PNG files extracted."));
    EXPECT_EQ(texture_extraction_panel::missingText(first).find("tex\\none.dds: in no archive"), 0u);
    EXPECT_EQ(test::readBytes(folder.file("Out/a.dds")), "DDS 1");

    test::writeBytes(folder.file("Out/a.dds"), "my own work");
    const texture_extraction_result kept = texture_extraction_panel::run(panel.requestFor(document, game), {});
    EXPECT_NE(texture_extraction_panel::keptQuestion(kept).find("Write over it"), std::string::npos);
    EXPECT_EQ(test::readBytes(folder.file("Out/a.dds")), "my own work");
    static_cast<void>(texture_extraction_panel::run(panel.requestFor(document, game, true), {}));
    EXPECT_EQ(test::readBytes(folder.file("Out/a.dds")), "DDS 1");

    EXPECT_EQ(panel.copyPaths(*model), "a.dds\r\nnone.dds\r\n");
    document.close();
    EXPECT_EQ(panel.requestFor(document, game).wanted.size(), 2u) << "the copied list";
    panel.setWrittenAs(texture_extraction_panel::form::png);
    texture_extraction_panel again(config);
    EXPECT_EQ(toLower(again.folder()), toLower(folder.file("Out"))); // as the disk or the configuration spells it
    EXPECT_TRUE(again.isFlat());
    EXPECT_EQ(again.writtenAs(), texture_extraction_panel::form::png);
}

TEST(normal_map_command, oneInputIsOneFileAndDoubtsAreAsked)
{
    const test::temporary_folder folder;
    failure why;
    const auto write = [&](const char* name, rgba_pixel pixel) {
        picture image(16, 16);
        std::ranges::fill(image.pixels(), pixel);
        EXPECT_TRUE(writePictureFile(folder.file(name), picture_kind::targa, image, why)) << describe(why);
        return folder.file(name);
    };
    const std::string blue = write("blue.tga", rgba(200, 180, 220, 255)),
                      photo = write("photo.tga", rgba(9, 9, 9, 255));
    loaded_game source(std::make_shared<const game_data>());
    normal_map_job_result result;
    const auto run = [&](const std::vector<std::string>& inputs, const std::string& output, bool is_forced) {
        return convertNormalMaps(source, normalMapJob(normal_form::orange, inputs, output, is_forced), {}, result, why);
    };
    ASSERT_TRUE(run({blue}, folder.file("out.tga"), false)) << describe(why);
    EXPECT_EQ(forceQuestion(result), std::nullopt);
    EXPECT_EQ(normalMapStatus(normal_form::orange, result, false),
              "1 picture converted to ORANGE: " + folder.file("out.tga") + ".");
    picture made;
    ASSERT_TRUE(readPictureFile(folder.file("out.tga"), made, why)) << describe(why);
    EXPECT_EQ(made.pixels()[0], rgba(255, 180, 0, 200));

    EXPECT_TRUE(run({blue, photo, folder.file("gone.tga")}, folder.file("many"), false));
    EXPECT_EQ(result.doubtful, std::vector{photo});
    const std::string question = forceQuestion(result).value_or("");
    EXPECT_EQ(question.find("photo.tga: this is no normal map"), 0u) << question;
    EXPECT_EQ(question.find("--force"), std::string::npos) << "that is the console's";
    EXPECT_TRUE(run(result.doubtful, folder.file("photo_orange.tga"), true));
    EXPECT_TRUE(std::filesystem::exists(toPath(folder.file("photo_orange.tga"))));
    EXPECT_TRUE(std::filesystem::exists(toPath(folder.file("many/blue.tga"))));
}

} // namespace

} // namespace korvane
