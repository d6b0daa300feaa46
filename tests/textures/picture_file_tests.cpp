#include "Korvane/textures/picture_file.h"
#include "Korvane/textures/targa.h"
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

TEST(picture_file, bothKindsComeBackAsTheyWere)
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

TEST(picture_file, pngIsTrueColourAndItsProfileDoesNotMatter)
{
    const test::temporary_folder folder;
    const std::string path = folder.file("picture.png");
    for (const auto& [pixel, colour_type] : {std::pair(rgba(1, 1, 1, 255), '\2'), std::pair(rgba(1, 1, 1, 9), '\6')})
    {
        picture flat(8, 8);
        std::ranges::fill(flat.pixels(), pixel);
        failure why;
        ASSERT_TRUE(writePictureFile(path, picture_kind::png, flat, why)) << describe(why);
        std::string png = test::readBytes(path);
        EXPECT_EQ(png[25], colour_type);
        png.insert(33, std::string("\0\0\0\4iCCPdamaged!", 16)); // behind the header
        test::writeBytes(path, png);
        picture read;
        ASSERT_TRUE(readPictureFile(path, read, why)) << describe(why);
        EXPECT_EQ(read.pixels()[63], pixel);
    }
}

TEST(picture_file, whatFollowsAPictureIsNotRead)
{
    // More than there is memory, where files can be as long: with a 32-bit long they cannot.
    constexpr std::uint64_t length = std::uint64_t{1} << (sizeof(long) > 4 ? 36 : 30);
    const test::temporary_folder folder;
    memory_file targa;
    failure why;
    ASSERT_TRUE(writeTarga(gradient(9, 9), targa, why));
    test::test_dds dds;
    dds.width = dds.height = 4;
    for (const std::string& start : {std::string(targa.text()), dds.bytes()})
    {
        test::writeBytes(folder.file("long"), start);
        std::filesystem::resize_file(toPath(folder.file("long")), length);
        picture image;
        ASSERT_TRUE(readPictureFile(folder.file("long"), image, why)) << describe(why);
        EXPECT_EQ(image.width(), image.height());
    }
    test::writeBytes(folder.file("long"), "no picture");
    std::filesystem::resize_file(toPath(folder.file("long")), length);
    picture image;
    EXPECT_FALSE(readPictureFile(folder.file("long"), image, why));
    EXPECT_EQ(why.path, folder.file("long"));
}

TEST(picture_file, damageIsAFailureWithThePath)
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
        std::uint64_t offset;
        const char* field;
    } rows[] = {
        {"empty.png", "", 0, ""},
        {"short.png", png.substr(0, 20), 8, "chunk IHDR"},
        {"cut.png", png.substr(0, png.size() / 2), 33, "chunk IDAT"},
        {"flipped.png", png.substr(0, 60) + '\x55' + png.substr(61), 33, "chunk IDAT"},
        {"endless.png", png.substr(0, png.size() - 12), png.size() - 12, "chunk IEND"},
        {"huge.png", huge, 16, "width"},
        {"wide.png", wide, 16, "width"},
        {"cut.dds", test::test_dds().bytes().substr(0, 150), 128, "surface 0, mip map 0, pixels"},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.name);
        test::writeBytes(folder.file(row.name), row.bytes);
        picture image;
        why = {};
        EXPECT_FALSE(readPictureFile(folder.file(row.name), image, why));
        EXPECT_EQ(why.path, folder.file(row.name));
        EXPECT_EQ(why.offset, row.offset) << describe(why);
        EXPECT_EQ(why.field, row.field);
        EXPECT_EQ(image.pixelCount(), 0u);
    }
}

} // namespace

} // namespace korvane
