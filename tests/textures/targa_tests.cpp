#include "Korvane/textures/targa.h"
#include "tests/support/targa_builder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace korvane
{

namespace
{

using test::test_targa;
using colours = std::vector<rgba_pixel>;

bool read(const std::string& text, picture& target, failure& why)
{
    const auto exact = std::make_unique<std::byte[]>(text.size()); // the sanitizer sees one byte too many
    std::copy_n(reinterpret_cast<const std::byte*>(text.data()), text.size(), exact.get());
    return readTarga({exact.get(), text.size()}, target, why);
}

colours pixelsOf(const picture& source)
{
    return {source.pixels().begin(), source.pixels().end()};
}

constexpr rgba_pixel a = rgba(1, 2, 3, 4), b = rgba(5, 6, 7, 8), c = rgba(9, 10, 11, 12), d = rgba(13, 14, 15, 16);
const std::string a_to_d("\3\2\1\4\7\6\5\x8\xb\xa\x9\xc\xf\xe\xd\x10", 16); // blue, green, red, alpha

TEST(targa, everyVariantStandsTheRightWayUp)
{
    constexpr rgba_pixel opaque = 0xff000000;
    const struct
    {
        const char* name;
        test_targa file;
        colours expected; // from the top
    } rows[] = {
        {"32 bits, from the bottom", {.pixels = a_to_d}, {c, d, a, b}},
        {"32 bits, from the top", {.descriptor = 0x28, .pixels = a_to_d}, {a, b, c, d}},
        {"from the bottom right", {.descriptor = 0x18, .pixels = a_to_d}, {d, c, b, a}},
        {"from the top right", {.descriptor = 0x38, .pixels = a_to_d}, {b, a, d, c}},
        {"image ID", {.id = "any text", .pixels = a_to_d}, {c, d, a, b}},
        {"a colour map that is not used",
         {.map_type = 1, .map_length = 2, .map_depth = 24, .map = "123456", .pixels = a_to_d},
         {c, d, a, b}},
        {"bytes behind the pixels", {.pixels = a_to_d + "TRUEVISION-XFILE.\0"}, {c, d, a, b}},
        {"24 bits",
         {.height = 1, .depth = 24, .descriptor = 0, .pixels = "\1\2\3\4\5\6"},
         {rgba(3, 2, 1, 255), rgba(6, 5, 4, 255)}},
        // 16 bits: 0xfc00 red with alpha, 0x0201 green 16 and blue 1 without
        {"15 bits and nothing",
         {.height = 1, .depth = 16, .descriptor = 0, .pixels = std::string("\0\xfc\1\2", 4)},
         {rgba(255, 0, 0, 255), rgba(0, 132, 8, 255)}},
        {"15 bits and alpha",
         {.height = 1, .depth = 16, .descriptor = 1, .pixels = std::string("\0\xfc\1\2", 4)},
         {rgba(255, 0, 0, 255), rgba(0, 132, 8, 0)}},
        {"grey",
         {.height = 1, .image_type = 3, .depth = 8, .pixels = "\x40\x80"},
         {0x404040 | opaque, 0x808080 | opaque}},
        {"grey with alpha",
         {.height = 1, .image_type = 3, .depth = 16, .pixels = "\x40\x11\x80\x22"},
         {0x11404040, 0x22808080}},
        {"colour-mapped",
         {.height = 1,
          .image_type = 1,
          .depth = 8,
          .map_type = 1,
          .map_first = 5,
          .map_length = 2,
          .map_depth = 32,
          .map = a_to_d.substr(0, 8),
          .pixels = "\6\5"},
         {b, a}},
        {"colour-mapped, 16 bits of 24",
         {.height = 1,
          .image_type = 1,
          .depth = 16,
          .map_type = 1,
          .map_first = 256,
          .map_length = 2,
          .map_depth = 24,
          .map = "\1\2\3\4\5\6",
          .pixels = std::string("\1\1\0\1", 4)},
         {rgba(6, 5, 4, 255), rgba(3, 2, 1, 255)}},
        // a run over the end of a row, then single ones
        {"encoded",
         {.image_type = 10, .pixels = "\x82" + a_to_d.substr(0, 4) + std::string(1, '\0') + a_to_d.substr(4, 4)},
         {a, b, a, a}},
        {"encoded grey",
         {.image_type = 11, .depth = 8, .pixels = "\1\1\2\x81\3"},
         {0x030303 | opaque, 0x030303 | opaque, 0x010101 | opaque, 0x020202 | opaque}},
        {"encoded, colour-mapped",
         {.image_type = 9,
          .depth = 8,
          .map_type = 1,
          .map_length = 1,
          .map_depth = 32,
          .map = a_to_d.substr(0, 4),
          .pixels = std::string("\x83\0", 2)},
         {a, a, a, a}},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.name);
        picture image;
        failure why;
        ASSERT_TRUE(read(row.file.bytes(), image, why)) << describe(why);
        EXPECT_EQ(image.width(), row.file.width);
        EXPECT_EQ(pixelsOf(image), row.expected);
    }
}

TEST(targa, whatCannotBeReadIsSaidWithItsPlace)
{
    const test_targa good{.pixels = a_to_d};
    const struct
    {
        const char* name;
        test_targa file;
        failure_kind kind;
        std::uint64_t offset;
        const char* field;
    } rows[] = {
        {"no image", {.image_type = 0}, failure_kind::unsupported, 2, "image type"},
        {"another encoding", {.image_type = 32, .pixels = a_to_d}, failure_kind::unsupported, 2, "image type"},
        {"text", {.map_type = 't', .pixels = a_to_d}, failure_kind::unsupported, 1, "colour map type"},
        {"no pixels", {.width = 0}, failure_kind::malformed, 12, "width"},
        {"12 bits", {.depth = 12, .pixels = a_to_d}, failure_kind::unsupported, 16, "pixel depth"},
        {"grey of 24 bits",
         {.image_type = 3, .depth = 24, .pixels = a_to_d},
         failure_kind::unsupported,
         16,
         "pixel depth"},
        {"interleaved", {.descriptor = 0x48, .pixels = a_to_d}, failure_kind::unsupported, 17, "image descriptor"},
        {"no colour map",
         {.image_type = 1, .depth = 8, .pixels = a_to_d},
         failure_kind::malformed,
         1,
         "colour map type"},
        {"colours of 8 bits",
         {.image_type = 1, .depth = 8, .map_type = 1, .map_length = 1, .map_depth = 8, .map = "1", .pixels = a_to_d},
         failure_kind::unsupported,
         7,
         "colour map entry size"},
        {"a colour beyond the map",
         {.image_type = 1,
          .depth = 8,
          .map_type = 1,
          .map_length = 1,
          .map_depth = 24,
          .map = "123",
          .pixels = std::string("\0\0\0\1", 4)},
         failure_kind::malformed,
         21,
         "pixels"},
        {"a colour before the map",
         {.image_type = 1,
          .depth = 8,
          .map_type = 1,
          .map_first = 1,
          .map_length = 1,
          .map_depth = 24,
          .map = "123",
          .pixels = std::string("\1\1\1\0", 4)},
         failure_kind::malformed,
         21,
         "pixels"},
        {"a byte too few", {.pixels = a_to_d.substr(1)}, failure_kind::truncated, 18, "pixels"},
        {"the largest of a few bytes",
         {.width = 16384, .height = 16384, .pixels = a_to_d},
         failure_kind::truncated,
         18,
         "pixels"},
        {"more than any picture has",
         {.width = 65535, .height = 65535, .pixels = a_to_d},
         failure_kind::unsupported,
         12,
         "width"},
        {"more than packets can hold",
         {.width = 129, .height = 1, .image_type = 11, .depth = 8, .pixels = "\xff\1"},
         failure_kind::truncated,
         18,
         "pixels"},
        {"a run over the end",
         {.image_type = 10,
          .pixels = "\x84"
                    "1234"},
         failure_kind::malformed,
         18,
         "packet"},
        {"packets that end early",
         {.image_type = 10,
          .pixels = "\x81"
                    "1234\x80"},
         failure_kind::truncated,
         24,
         "pixels of a packet"},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.name);
        picture image;
        failure why;
        EXPECT_FALSE(read(row.file.bytes(), image, why));
        EXPECT_EQ(why.kind, row.kind) << describe(why);
        EXPECT_EQ(why.offset, row.offset) << describe(why);
        EXPECT_EQ(why.field, row.field);
        EXPECT_EQ(image.pixelCount(), 0u) << "the picture changes only on success";
    }
    for (std::size_t length = 0; length < good.bytes().size(); ++length)
    {
        picture image;
        failure why;
        EXPECT_FALSE(read(good.bytes().substr(0, length), image, why)) << length;
        EXPECT_EQ(why.kind, failure_kind::truncated) << length;
    }
}

TEST(targa, writtenFilesAreExactlyAsDescribed)
{
    picture image(2, 2);
    std::ranges::copy(colours{a, b, c, d}, image.pixels().begin());
    memory_file file;
    failure why;
    ASSERT_TRUE(writeTarga(image, file, why));
    const std::string expected = std::string("\x15\0\2\0\0\0\0\0\0\0\0\0\2\0\2\0\x20\x8", 18) +
                                 "written with libtarga" + a_to_d.substr(8) +
                                 a_to_d.substr(0, 8); // the lower row first
    EXPECT_EQ(file.text(), expected);

    EXPECT_FALSE(writeTarga(picture(65536, 1), file, why));
    EXPECT_EQ(file.size(), expected.size());
}

} // namespace

} // namespace korvane
