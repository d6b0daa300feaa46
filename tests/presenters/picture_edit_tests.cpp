#include "Korvane/archives/mod_folder.h"
#include "Korvane/archives/pack_file.h"
#include "Korvane/jobs/texture_preview.h"
#include "Korvane/presenters/picture_edit.h"
#include "Korvane/presenters/texture_rows.h"
#include "Korvane/textures/dds_encoder.h"
#include "Korvane/textures/picture_file.h"
#include "tests/support/pack_builder.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

namespace korvane
{

namespace
{

picture plain(std::uint32_t size, rgba_pixel colour)
{
    picture made(size, size);
    std::ranges::fill(made.pixels(), colour);
    return made;
}

std::string ddsOf(const picture& source, dds_format format)
{
    memory_file file;
    failure why;
    EXPECT_TRUE(encodeDds(source, {format}, file, why)) << describe(why);
    return std::string(file.text());
}

// An archive with a colour texture and a normal map, a mod folder over it.
class picture_edit_test : public testing::Test
{
protected:
    void SetUp() override
    {
        test::test_pack pack;
        pack.entries = {{"tex\\body.dds", ddsOf(plain(16, rgba(200, 100, 50, 255)), dds_format::bc3)},
                        {"tex\\body_normal.dds", ddsOf(plain(16, rgba(255, 128, 0, 128)), dds_format::bc3)}};
        test::writeBytes(m_folder.file("a.pack"), pack.bytes());
        std::filesystem::create_directories(toPath(m_folder.file("mod")));
        const auto tree = std::make_shared<path_tree>();
        pack_file archive(*tree);
        failure why;
        ASSERT_TRUE(archive.open(m_folder.file("a.pack"), why)) << describe(why);
        archive.enter();
        ASSERT_TRUE(enterModFolder(*tree, m_folder.file("mod"), {}, why)) << describe(why);
        m_game = std::make_shared<const game_data>(tree);
    }
    std::string writePng(const std::string& name, const picture& source)
    {
        failure why;
        EXPECT_TRUE(writePictureFile(m_folder.file(name), picture_kind::png, source, why)) << describe(why);
        return m_folder.file(name);
    }
    // The first pixel and the format of the game's file now.
    std::pair<rgba_pixel, dds_format> now(const std::string& internal_path)
    {
        memory_file bytes;
        picture target;
        dds_image image;
        failure why;
        EXPECT_TRUE(m_game->readInternal(internal_path, bytes, why) && readDds(bytes.bytes(), image, why) &&
                    readPicture(bytes.bytes(), target, why))
            << describe(why);
        return {target.pixelCount() > 0 ? target.pixels()[0] : 0, image.format};
    }

    test::temporary_folder m_folder;
    std::shared_ptr<const game_data> m_game;
};

TEST_F(picture_edit_test, aPictureBecomesATextureLikeTheOneItReplaces)
{
    const std::string white = writePng("white.png", plain(16, rgba(255, 255, 255, 255)));
    const struct
    {
        const char* name;
        replace_picture_request request;
        std::string internal_path, said; // empty said: it is done
        dds_format format = dds_format::unknown;
    } rows[] = {
        {"as its texture",
         {m_game, white, "Tex/Body.dds", "", m_folder.file("mod")},
         "Tex/Body.dds",
         "",
         dds_format::bc3},
        {"a new path",
         {m_game, white, "tex/body.dds", "", m_folder.file("mod"), "tex/white.dds"},
         "tex/white.dds",
         "",
         dds_format::bc3},
        {"a texture that is nowhere",
         {m_game, white, "tex/none.dds", "", m_folder.file("mod")},
         "tex/none.dds",
         "",
         dds_format::bc7_srgb},
        {"no mod folder", {m_game, white, "tex/body.dds", "", ""}, "", "No mod folder is set"},
        {"out of the mod folder",
         {m_game, white, "tex/body.dds", "", m_folder.file("mod"), "..\\x.dds"},
         "",
         "refused"},
        {"no picture", {m_game, m_folder.file("a.pack"), "tex/body.dds", "", m_folder.file("mod")}, "", "Targa"},
        {"the texture itself",
         {m_game, m_folder.file("mod/tex/white.dds"), "tex/white.dds", "", m_folder.file("mod")},
         "",
         "would replace"},
    };
    for (const auto& row : rows)
    {
        replaced_picture result;
        failure why;
        EXPECT_EQ(replacePicture(row.request, {}, result, why), row.said.empty()) << row.name << describe(why);
        EXPECT_NE(why.what.find(row.said), std::string::npos) << row.name << ": " << why.what;
        if (row.said.empty())
        {
            EXPECT_EQ(now(row.internal_path), std::pair(rgba(255, 255, 255, 255), row.format)) << row.name;
            EXPECT_EQ(textureState(*m_game, row.internal_path, "").origin, texture_origin::mod_folder) << row.name;
        }
    }
    EXPECT_EQ(test::readBytes(m_folder.file("a.pack")).find("PFH"), 0u);
}

TEST_F(picture_edit_test, aDdsFileOfTheSameFormatIsTakenAsItIs)
{
    const std::string bytes = ddsOf(plain(8, rgba(1, 2, 3, 4)), dds_format::bc3);
    test::writeBytes(m_folder.file("made.dds"), bytes);
    replaced_picture result;
    failure why;
    ASSERT_TRUE(
        replacePicture({m_game, m_folder.file("made.dds"), "tex/body.dds", "", m_folder.file("mod")}, {}, result, why))
        << describe(why);
    EXPECT_EQ(test::readBytes(result.path), bytes);
    test::writeBytes(m_folder.file("made.dds"), bytes.substr(0, 140)); // ends in its pixels
    EXPECT_FALSE(
        replacePicture({m_game, m_folder.file("made.dds"), "tex/body.dds", "", m_folder.file("mod")}, {}, result, why));
    EXPECT_EQ(test::readBytes(m_folder.file("mod/tex/body.dds")), bytes);
}

TEST_F(picture_edit_test, eachSaveOfAPaintingIsTakenUpOnceItIsWhole)
{
    unpacked_picture painting;
    failure why;
    ASSERT_TRUE(unpackPicture({m_game, "tex/body_normal.dds", "", m_folder.file("mod"), true}, {}, painting, why))
        << describe(why);
    EXPECT_EQ(toPath(painting.picture), toPath(m_folder.file("mod_paint/tex/body_normal.png")));
    picture blue;
    ASSERT_TRUE(readPictureFile(painting.picture, blue, why)) << describe(why);
    EXPECT_GT(blue.pixels()[0] >> 16 & 255, 250u) << "blue, as it is painted";

    picture_edits edits;
    edits.follow(painting);
    edits.follow(painting);
    EXPECT_EQ(edits.count(), 1u);
    EXPECT_TRUE(edits.look().empty());
    EXPECT_TRUE(edits.look().empty()) << "nobody has saved it";

    const std::string whole = test::readBytes(writePng("other.png", plain(16, rgba(128, 128, 255, 255))));
    test::writeBytes(painting.picture, whole.substr(0, 50));
    EXPECT_TRUE(edits.look().empty()) << "seen for the first time";
    replaced_picture result;
    const auto convert = [&](const picture_edits::due_picture& due) {
        failure reason;
        return replacePicture(due.request, {}, result, reason) ? edits.finished(due.number, result)
                                                               : edits.failed(due.number, reason);
    };
    std::vector<picture_edits::due_picture> due = edits.look();
    ASSERT_EQ(due.size(), 1u);
    EXPECT_TRUE(edits.look().empty()) << "it is being converted";
    EXPECT_EQ(convert(due[0]), "") << "half-written: waited for";
    EXPECT_EQ(now("tex/body_normal.dds").second, dds_format::bc3);
    test::writeBytes(painting.picture, whole);
    EXPECT_TRUE(edits.look().empty());
    due = edits.look();
    ASSERT_EQ(due.size(), 1u);
    EXPECT_NE(convert(due[0]).find("was written"), std::string::npos);
    EXPECT_EQ(textureState(*m_game, "tex/body_normal.dds", "").origin, texture_origin::mod_folder);
    EXPECT_TRUE(edits.look().empty());

    test::writeBytes(painting.picture, "no picture, and it stays so");
    std::string said;
    for (int i = 0; i < 20 && said.empty(); ++i)
        for (const picture_edits::due_picture& each : edits.look())
            said = convert(each);
    EXPECT_NE(said.find("body_normal.png could not be taken up"), std::string::npos);
    EXPECT_TRUE(edits.look().empty()) << "told once";

    test::writeBytes(painting.picture, whole);
    static_cast<void>(edits.look());
    due = edits.look();
    ASSERT_EQ(due.size(), 1u);
    edits.endAll();
    EXPECT_EQ(convert(due[0]), "") << "the model was closed meanwhile";
}

TEST_F(picture_edit_test, previewsShowTheLevelThatFitsAndItsChannels)
{
    const texture_preview body = makeTexturePreview({m_game, "tex/body.dds", "", 8}, {});
    EXPECT_EQ(body.pixels.width(), 8u);
    EXPECT_EQ(body.text, "16 x 16, BC3_UNORM, 5 mip maps");
    test::writeBytes(m_folder.file("mod/odd.dds"), "DDS and no more");
    for (const char* path : {"odd.dds", "none.dds", ""})
    {
        const texture_preview none = makeTexturePreview({m_game, path, "", 8}, {});
        EXPECT_EQ(none.pixels.pixelCount(), 0u) << path;
        EXPECT_FALSE(none.text.empty()) << path;
    }
    writePng("mod/wide.dds", picture(1, 1)); // a PNG file by another name
    EXPECT_NE(makeTexturePreview({m_game, "wide.dds", "", 8}, {}).text.find("not a DDS file"), std::string::npos);

    const picture source = plain(1, rgba(10, 20, 30, 0));
    const std::pair<preview_channels, rgba_pixel> shown[] = {{preview_channels::red, rgba(10, 10, 10, 255)},
                                                             {preview_channels::blue, rgba(30, 30, 30, 255)},
                                                             {preview_channels::alpha, rgba(0, 0, 0, 255)},
                                                             {preview_channels::colour, rgba(10, 20, 30, 255)},
                                                             {preview_channels::all, rgba(10, 20, 30, 0)}};
    for (const auto& [channels, pixel] : shown)
        EXPECT_EQ(showChannels(source, channels).pixels()[0], pixel);
}

} // namespace

} // namespace korvane
