#include "Korvane/textures/picture_file.h"
#include "tests/support/dds_builder.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace korvane
{

namespace
{

picture gradient(std::uint32_t width, std::uint32_t height)
{
    picture image(width, height);
    for (std::uint32_t i = 0; i < image.pixelCount(); ++i)
        image.pixels()[i] = i * 2654435761u;
    return image;
}

TEST(PictureFile, BothKindsComeBackAsTheyWere)
{
    const test::temporary_folder folder;
    for (const auto& [name, kind] :
         {std::pair("picture.TGA", picture_kind::targa), std::pair("picture.png", picture_kind::png)})
    {
        SCOPED_TRACE(name);
        EXPECT_EQ(pictureKind(name), kind);
        const picture written = gradient(37, 11);
        picture read;
        failure why;
        ASSERT_TRUE(writePictureFile(folder.file(name), kind, written, why)) << describe(why);
        ASSERT_TRUE(readPictureFile(folder.file(name), read, why)) << describe(why);
        EXPECT_EQ(read.width(), 37u);
        EXPECT_TRUE(std::ranges::equal(read.pixels(), written.pixels()));
    }
    EXPECT_EQ(pictureKind("picture.dds"), std::nullopt);
}

TEST(PictureFile, DamageIsAFailureWithThePath)
{
    const test::temporary_folder folder;
    failure why;
    ASSERT_TRUE(writePictureFile(folder.file("good.png"), picture_kind::png, gradient(9, 9), why));
    const std::string png = test::readBytes(folder.file("good.png"));
    std::string huge = png; // 65536 x 65536, checked before memory is taken; the checksum does not matter any more
    huge[17] = huge[21] = '\1';
    std::string wide = png; // 4096 x 4096 of a few hundred bytes
    wide[18] = wide[22] = '\x10';
    const struct
    {
        const char* name;
        std::string bytes;
    } rows[] = {
        {"empty.png", ""},
        {"cut.png", png.substr(0, png.size() / 2)},
        {"flipped.png", png.substr(0, 60) + '\x55' + png.substr(61)},
        {"huge.png", huge},
        {"wide.png", wide},
        {"cut.dds", test::test_dds().bytes().substr(0, 150)},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.name);
        test::writeBytes(folder.file(row.name), row.bytes);
        picture image;
        why = {};
        EXPECT_FALSE(readPictureFile(folder.file(row.name), image, why));
        EXPECT_EQ(why.path, folder.file(row.name));
        EXPECT_FALSE(why.what.empty());
        EXPECT_EQ(image.pixelCount(), 0u);
    }
}

} // namespace

} // namespace korvane
