#include "DDSTextureLoader/dds_image.h"
#include "tests/support/dds_builder.h"

#include <gtest/gtest.h>

#include <memory>

namespace korvane
{

namespace
{

using test::test_dds;

// The bytes in a buffer of exactly their size: the sanitizer sees one byte too many.
class exact_bytes
{
public:
    explicit exact_bytes(const std::string& text) : m_size(text.size()), m_bytes(std::make_unique<std::byte[]>(m_size))
    {
        std::copy_n(reinterpret_cast<const std::byte*>(text.data()), m_size, m_bytes.get());
    }
    std::span<const std::byte> view() const { return {m_bytes.get(), m_size}; }

private:
    std::size_t m_size;
    std::unique_ptr<std::byte[]> m_bytes;
};

// What must hold for every image that was read, whatever the bytes were.
void expectSound(const dds_image& image, std::span<const std::byte> file)
{
    ASSERT_EQ(image.subresources.size(), std::size_t{image.array_size} * image.mip_count);
    ASSERT_EQ(formatName(image.format) == nullptr, image.format == dds_format::unknown);
    for (const dds_subresource& part : image.subresources)
    {
        EXPECT_GE(part.bytes.data(), file.data());
        EXPECT_LE(part.bytes.data() + part.bytes.size(), file.data() + file.size());
        EXPECT_EQ(part.bytes.size(), std::size_t{part.row_pitch} * part.rows);
        EXPECT_GT(part.width, 0u);
    }
}

test_dds sized(test_dds file, std::uint32_t width, std::uint32_t height, std::uint32_t mips)
{
    file.width = width;
    file.height = height;
    file.mips = mips;
    return file;
}

test_dds masked(std::uint32_t flags, std::vector<std::uint32_t> masks, std::uint32_t bits = 32)
{
    test_dds file;
    file.bits = bits;
    file.pixel_flags = flags;
    file.masks = std::move(masks);
    return file;
}

test_dds cube(test_dds file)
{
    file.caps2 = 0xfe00;
    return file;
}

TEST(dds_image, formatsAndSizesOfEveryKindOfFile)
{
    const struct
    {
        const char* name;
        test_dds file;
        dds_format format;
        std::uint32_t surfaces;
        std::vector<std::size_t> mip_bytes;
    } rows[] = {
        {"RGBA masks", test_dds(), dds_format::rgba8, 1, {64}},
        {"BGRA masks", masked(0x41, {0xff0000, 0xff00, 0xff, 0xff000000}), dds_format::bgra8, 1, {64}},
        {"BGRX masks", masked(0x40, {0xff0000, 0xff00, 0xff, 0}), dds_format::bgrx8, 1, {64}},
        {"X8B8G8R8 is what a device takes for RGBA",
         masked(0x40, {0xff, 0xff00, 0xff0000, 0}),
         dds_format::rgba8,
         1,
         {64}},
        {"24 bits have no device format", masked(0x40, {0xff0000, 0xff00, 0xff, 0}, 24), dds_format::unknown, 1, {48}},
        {"565", masked(0x40, {0xf800, 0x7e0, 0x1f, 0}, 16), dds_format(85), 1, {32}},
        {"luminance", masked(0x20000, {0xff, 0, 0, 0}, 8), dds_format::r8, 1, {16}},
        {"typeless", test_dds::dx10(97, 16), dds_format::bc7, 1, {16}},
        {"one mip map too many", sized(test_dds(), 4, 4, 4), dds_format::rgba8, 1, {64}},
        {"DXT1 with mips", sized(test_dds::coded("DXT1", 32 + 8 + 8 + 8), 8, 8, 4), dds_format::bc1, 1, {32, 8, 8, 8}},
        {"DXT1, odd size", sized(test_dds::coded("DXT1", 2 * 3 * 8), 7, 9, 1), dds_format::bc1, 1, {48}},
        {"DXT3", test_dds::coded("DXT3", 16), dds_format::bc2, 1, {16}},
        {"DXT5", test_dds::coded("DXT5", 16), dds_format::bc3, 1, {16}},
        {"ATI1", test_dds::coded("ATI1", 8), dds_format::bc4, 1, {8}},
        {"ATI2", test_dds::coded("ATI2", 16), dds_format::bc5, 1, {16}},
        {"code 113", test_dds::coded(std::string("\x71\0\0\0", 4), 128), dds_format::rgba16_float, 1, {128}},
        {"mip count 0 means 1", sized(test_dds(), 4, 4, 0), dds_format::rgba8, 1, {64}},
        {"legacy cube", cube(sized(test_dds::coded("DXT1", 6 * 16), 4, 4, 2)), dds_format::bc1, 6, {8, 8}},
        {"DX10 BC7 sRGB", test_dds::dx10(99, 16), dds_format::bc7_srgb, 1, {16}},
        {"DX10 BC6H cube", test_dds::dx10(95, 96, 4), dds_format::bc6h_unsigned, 6, {16}},
        {"DX10 array", test_dds::dx10(29, 3 * 64, 0, 3), dds_format::rgba8_srgb, 3, {64}},
        {"bytes after the last surface", test_dds::dx10(28, 80), dds_format::rgba8, 1, {64}},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.name);
        const exact_bytes file(row.file.bytes());
        dds_image image;
        failure why;
        ASSERT_TRUE(readDds(file.view(), image, why)) << describe(why);
        EXPECT_EQ(image.format, row.format);
        EXPECT_EQ(image.array_size, row.surfaces);
        ASSERT_EQ(image.mip_count, row.mip_bytes.size());
        for (std::uint32_t mip = 0; mip < image.mip_count; ++mip)
            EXPECT_EQ(image.subresource(row.surfaces - 1, mip).bytes.size(), row.mip_bytes[mip]);
        expectSound(image, file.view());
    }
}

TEST(dds_image, subresourcesLieOneAfterTheOtherFaceByFace)
{
    test_dds file = cube(sized(test_dds::coded("DXT1", 0), 4, 4, 2));
    file.pixels.clear();
    for (char face = 0; face < 6; ++face)
        file.pixels += std::string(8, face) + std::string(8, static_cast<char>(face + 100));
    const exact_bytes bytes(file.bytes());
    dds_image image;
    failure why;
    ASSERT_TRUE(readDds(bytes.view(), image, why));
    EXPECT_TRUE(image.is_cube);
    for (std::uint32_t face = 0; face < 6; ++face)
    {
        EXPECT_EQ(static_cast<unsigned>(image.subresource(face, 0).bytes[0]), face);
        EXPECT_EQ(static_cast<unsigned>(image.subresource(face, 1).bytes[7]), face + 100);
    }
}

std::string patched(std::string bytes, std::size_t at, char value)
{
    bytes[at] = value;
    return bytes;
}

TEST(dds_image, damageIsRefusedWithItsReason)
{
    const std::string good = test_dds().bytes();
    test_dds volume = test_dds();
    volume.caps2 = 0x200000;
    const std::string deep = patched(volume.bytes(), 24, 4);
    const std::string flagged = patched(patched(good, 24, 4), 10, '\x80'); // the header flag that says depth counts
    test_dds few_faces = test_dds();
    few_faces.caps2 = 0x0600;
    test_dds one_dimensional = test_dds::dx10(28, 64);
    one_dimensional.extension[1] = 2;

    const struct
    {
        const char* name;
        std::string bytes;
        failure_kind kind;
        const char* field;
    } rows[] = {
        {"empty", "", failure_kind::truncated, "magic"},
        {"another magic", patched(good, 0, 'X'), failure_kind::malformed, "magic"},
        {"header size", patched(good, 4, 123), failure_kind::malformed, "header size"},
        {"pixel format size", patched(good, 76, 31), failure_kind::malformed, "pixel format size"},
        {"width 0", sized(test_dds(), 0, 4, 1).bytes(), failure_kind::malformed, "height"},
        {"height beyond the limit", sized(test_dds(), 4, 16385, 1).bytes(), failure_kind::malformed, "height"},
        {"everything at its largest", sized(test_dds(), 0xffffffff, 0xffffffff, 0xffffffff).bytes(),
         failure_kind::malformed, "height"},
        {"pixels cut", good.substr(0, good.size() - 1), failure_kind::truncated, "surface 0, mip map 0, pixels"},
        {"large picture, few bytes", sized(test_dds(), 16384, 16384, 1).bytes(), failure_kind::truncated,
         "surface 0, mip map 0, pixels"},
        {"mask with a gap", masked(0x40, {0xf0f, 0xf0, 0, 0}, 16).bytes(), failure_kind::unsupported, "pixel format"},
        {"mask beyond the pixel", masked(0x40, {0xff0000, 0xff00, 0xff, 0}, 16).bytes(), failure_kind::unsupported,
         "pixel format"},
        {"no mask", masked(0x40, {0, 0, 0, 0}).bytes(), failure_kind::unsupported, "pixel format"},
        {"palette", masked(0x60, {0xff, 0, 0, 0}, 8).bytes(), failure_kind::unsupported, "pixel format"},
        {"unknown code", test_dds::coded("ZZZZ", 64).bytes(), failure_kind::unsupported, "pixel format"},
        {"unknown DXGI format", test_dds::dx10(20, 64).bytes(), failure_kind::unsupported, "DXGI format"},
        {"array of nothing", test_dds::dx10(28, 64, 0, 0).bytes(), failure_kind::malformed, "array size"},
        {"array too large", test_dds::dx10(28, 64, 0, 0xffffffff).bytes(), failure_kind::malformed, "array size"},
        {"one-dimensional", one_dimensional.bytes(), failure_kind::unsupported, "dimension"},
        {"volume", deep, failure_kind::unsupported, "depth"},
        {"volume by the flag", flagged, failure_kind::unsupported, "depth"},
        {"cube with two faces", few_faces.bytes(), failure_kind::unsupported, "caps 2"},
        {"cube that is not square", sized(test_dds::dx10(28, 6 * 128, 4), 8, 4, 1).bytes(), failure_kind::malformed,
         "height"},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.name);
        const exact_bytes file(row.bytes);
        dds_image image;
        image.width = 77;
        failure why;
        EXPECT_FALSE(readDds(file.view(), image, why));
        EXPECT_EQ(why.kind, row.kind) << describe(why);
        EXPECT_EQ(why.field, row.field);
        EXPECT_EQ(image.width, 77u) << "the image changes only on success";
    }
}

TEST(dds_image, cutAtEachLengthAndPatchedAtEachHeaderByte)
{
    const std::string samples[] = {sized(test_dds::coded("DXT1", 56), 8, 8, 4).bytes(),
                                   cube(sized(test_dds::coded("DXT5", 6 * 32), 4, 4, 2)).bytes(),
                                   test_dds::dx10(98, 32, 0, 2).bytes()};
    for (const std::string& sample : samples)
    {
        for (std::size_t length = 0; length < sample.size(); ++length)
        {
            const exact_bytes file(sample.substr(0, length));
            dds_image image;
            failure why;
            if (readDds(file.view(), image, why)) // cut between two mip maps
            {
                EXPECT_EQ(image.array_size, 1u);
                expectSound(image, file.view());
                EXPECT_EQ(image.subresources.back().bytes.data() + image.subresources.back().bytes.size(),
                          file.view().data() + length);
            }
            else
                EXPECT_EQ(why.kind, failure_kind::truncated) << length;
        }
        for (std::size_t at = 0; at < 148; ++at)
            for (const char value :
                 {'\0', '\xff', static_cast<char>(sample[at] + 1), static_cast<char>(sample[at] - 1)})
            {
                const exact_bytes file(patched(sample, at, value));
                dds_image image;
                failure why;
                if (readDds(file.view(), image, why))
                    expectSound(image, file.view());
                else
                    EXPECT_FALSE(why.what.empty()) << at;
            }
    }
}

} // namespace

} // namespace korvane
