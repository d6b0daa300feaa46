#include "Korvane/textures/block_decoder.h"
#include "Korvane/textures/dds_decoder.h"
#include "tests/support/dds_builder.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace korvane
{

namespace
{

// Random blocks, the same ones everywhere (SplitMix64), with their lowest bits set to a mode.
class random_blocks
{
public:
    random_blocks(unsigned mode, std::uint64_t mode_mask) : m_state(mode * 64 + 16), m_mode(mode), m_mask(mode_mask) {}

    std::array<std::byte, 16> next()
    {
        const std::uint64_t low = (number() & ~m_mask) | m_mode, high = number();
        std::array<std::byte, 16> block;
        std::memcpy(block.data(), &low, 8);
        std::memcpy(block.data() + 8, &high, 8);
        return block;
    }

private:
    std::uint64_t number()
    {
        m_state += 0x9e3779b97f4a7c15;
        std::uint64_t mixed = m_state;
        mixed = (mixed ^ mixed >> 30) * 0xbf58476d1ce4e5b9;
        mixed = (mixed ^ mixed >> 27) * 0x94d049bb133111eb;
        return mixed ^ mixed >> 31;
    }

    std::uint64_t m_state, m_mode, m_mask;
};

void addTo(std::uint64_t& hash, std::uint32_t value)
{
    hash = (hash ^ value) * 0x100000001b3; // FNV-1a, a word at a time
}

constexpr std::uint64_t hash_of_nothing = 0xcbf29ce484222325;
constexpr int blocks_of_each = 4096;

// The sums are those of the pixels that Mesa 22.3.6 makes of the same blocks (glCompressedTexImage2D, glGetTexImage).
TEST(block_decoder, everyModeOfBc7IsWhatAnotherDecoderMakesOfIt)
{
    const struct
    {
        unsigned mode; // 8: reserved
        std::uint64_t hash;
    } rows[] = {
        {0, 0x6b118eeff81dee53}, {1, 0x398b7087a46d3bac}, {2, 0x216d0738f4848e81},
        {3, 0x501777f0d9201af5}, {4, 0xb0eb300531bd6d1b}, {5, 0x9d010d44c780e789},
        {6, 0xf9c2a1f44a7e81d6}, {7, 0x20b9ae94eee37122}, {8, 0xeb05052ea5b62325},
    };
    for (const auto& row : rows)
    {
        random_blocks source(row.mode == 8 ? 0 : 1u << row.mode, row.mode == 8 ? 255 : (2u << row.mode) - 1);
        std::uint64_t hash = hash_of_nothing;
        for (int i = 0; i < blocks_of_each; ++i)
        {
            block_pixels pixels;
            decodeBc7(source.next().data(), pixels);
            for (const rgba_pixel pixel : pixels)
                addTo(hash, pixel);
        }
        EXPECT_EQ(hash, row.hash) << "mode " << row.mode;
    }
}

TEST(block_decoder, everyModeOfBc6hIsWhatAnotherDecoderMakesOfIt)
{
    const struct
    {
        unsigned first_bits; // 19: reserved
        std::uint64_t unsigned_hash, signed_hash;
    } rows[] = {
        {0, 0x839dce411a13544b, 0x54a129ac966760b2},  {1, 0x6d8a1f5941b22a79, 0xaac92976b1fd796b},
        {2, 0x76764c56afc69edc, 0x0c4fa4155a313081},  {6, 0xbb3f6353612f36cd, 0xb9092bc316092aa7},
        {10, 0x4de91bf7ae6d4ad8, 0x732bd1de5784d722}, {14, 0x8feb96443bb50536, 0x09655be68c6208b7},
        {18, 0x6bb639ff88844763, 0x80ee0cd621722e82}, {22, 0xcd987b605a3e7c7f, 0xcd8d097827770a3d},
        {26, 0x8d40111a3428bc1f, 0x82bd3add6bfa95c9}, {30, 0x052c5b340a7d9a97, 0x8c997f9b1dc815f4},
        {3, 0x8b9529565bc6d632, 0xb7cbdee93f693ebc},  {7, 0x880d972dc9c91283, 0x0ef24238f741adf1},
        {11, 0x37076a6040c3e9e3, 0x2b78e2b741485ec4}, {15, 0xd997b70f2ab71aa2, 0xfc32c0b87c3fe6e3},
        {19, 0x1a0564b2e8de2325, 0x1a0564b2e8de2325},
    };
    for (const auto& row : rows)
        for (const bool is_signed : {false, true})
        {
            random_blocks source(row.first_bits, row.first_bits < 2 ? 3 : 31);
            std::uint64_t hash = hash_of_nothing;
            for (int i = 0; i < blocks_of_each; ++i)
            {
                block_halves pixels;
                decodeBc6hHalves(source.next().data(), is_signed, pixels);
                for (const auto& pixel : pixels)
                    for (const std::uint16_t half : pixel)
                        addTo(hash, half);
            }
            EXPECT_EQ(hash, is_signed ? row.signed_hash : row.unsigned_hash)
                << "mode " << row.first_bits << (is_signed ? ", signed" : "");
        }
}

std::vector<rgba_pixel> decoded(const test::test_dds& file)
{
    const std::string bytes = file.bytes();
    dds_image image;
    picture target;
    failure why;
    if (!readDds(std::as_bytes(std::span(bytes)), image, why) || !decodeDds(image, target, why))
        ADD_FAILURE() << describe(why);
    return {target.pixels().begin(), target.pixels().end()};
}

// A file of one row of four pixels, or of fewer that are followed by zeros.
test::test_dds row(test::test_dds file, const std::string& pixels)
{
    file.height = 1;
    file.pixels = pixels + std::string(64, '\0');
    return file;
}

test::test_dds masked(std::uint32_t bits, std::uint32_t flags, const std::vector<std::uint32_t>& masks,
                      const std::string& pixels)
{
    test::test_dds file;
    file.bits = bits;
    file.pixel_flags = flags;
    file.masks = masks;
    return row(file, pixels);
}

// Computed by hand from the bits; text literals hold a pixel's bytes, lowest first.
TEST(dds_decoder, uncompressedPixelsOfEveryKind)
{
    using test::test_dds;
    using namespace std::string_literals;
    const struct
    {
        const char* name;
        test_dds file;
        std::vector<rgba_pixel> first;
    } rows[] = {
        {"24 bits", masked(24, 0x40, {0xff0000, 0xff00, 0xff, 0}, "\1\2\3\4\5\6"), {0xff010203, 0xff040506}},
        {"junk above 24 bits", masked(32, 0x40, {0xff, 0xff00, 0xff0000, 0}, "\1\2\3\4"), {0xff030201}},
        {"alpha without its flag", masked(32, 0x40, {0xff, 0xff00, 0xff0000, 0xff000000}, "\1\2\3\4"), {0xff030201}},
        // 10000 = 131.6, 100000 = 129.5 (rounded up), 00001 = 8.2
        {"565", masked(16, 0x40, {0xf800, 0x7e0, 0x1f, 0}, "\x01\x84"), {rgba(132, 130, 8, 255)}},
        {"1555", masked(16, 0x41, {0x7c00, 0x3e0, 0x1f, 0x8000}, "\x1f\x40\xff\xff"), {rgba(132, 0, 255, 0), ~0u}},
        {"4444", masked(16, 0x41, {0xf00, 0xf0, 0xf, 0xf000}, "\x34\x12"), {rgba(34, 51, 68, 17)}},
        {"332", masked(8, 0x40, {0xe0, 0x1c, 3, 0}, "\x25"), {rgba(36, 36, 85, 255)}},
        {"grey and alpha in a byte", masked(8, 0x20001, {0xf, 0, 0, 0xf0}, "\x12"), {rgba(34, 34, 34, 17)}},
        {"grey of 16 bits", masked(16, 0x20000, {0xffff, 0, 0, 0}, "\x81\x01"), {rgba(1, 1, 1, 255)}}, // 1.498
        {"grey of 32 bits", masked(32, 0x20000, {0xffffffff, 0, 0, 0}, "\xff\xff\xff\x7f"), {rgba(127, 127, 127, 255)}},
        {"alpha alone", masked(8, 2, {0, 0, 0, 0xff}, "\x12"), {0x12000000}},
        {"signed pair",
         masked(16, 0x80000, {0xff, 0xff00, 0, 0}, "\x81\x7f\x80\0"s),
         {rgba(0, 255, 0, 255), rgba(0, 128, 0, 255)}},
        {"code 36", row(test_dds::coded("\x24\0\0\0"s, 0), "\0\x80\xff\xff\0\0\x01\x01"s), {rgba(128, 255, 0, 1)}},
        {"10, 10, 10, 2", row(test_dds::dx10(24, 0), "\xff\x03\x00\x60"s), {rgba(255, 0, 128, 85)}},
        {"signed bytes", row(test_dds::dx10(31, 0), "\x80\x81\x00\x7f"s), {rgba(0, 0, 128, 255)}},
        {"alpha in DX10", row(test_dds::dx10(65, 0), "\x34"), {0x34000000}},
        // 1.0 is 0x3c0 of 11 bits and 0x1e0 of 10; 0.5 is 0x380 and 0.25 0x340: 188 and 137 with the curve.
        {"small floats", row(test_dds::dx10(26, 0), "\x80\x03\x1a\x78"s), {rgba(188, 137, 255, 255)}},
        // Exponent 16, the mantissas 256, 128, 0: 256 x 2^(16 - 24) = 1, then 0.5.
        {"shared exponent", row(test_dds::dx10(67, 0), "\x00\x01\x01\x80"s), {rgba(255, 188, 0, 255)}},
        {"floats", row(test_dds::dx10(2, 0), "\0\0\0\x3f\0\0\xc0\x7f\0\0\x80\xbf\0\0\0\x3f"s), {rgba(188, 0, 0, 128)}},
        {"three floats",
         row(test_dds::dx10(6, 0), "\0\0\0\x3f\0\0\x80\x7f\0\0\0\0\0\0\x80\x3f"s),
         {rgba(188, 255, 0, 255), rgba(255, 0, 0, 255)}},
        {"integers of 8 bits", row(test_dds::dx10(30, 0), "\1\2\3\4"), {0x04030201}},
        {"integers of 16 bits", row(test_dds::dx10(57, 0), "\x81\x01"), {rgba(1, 1, 1, 255)}},
        {"integers with a sign", row(test_dds::dx10(43, 0), "\0\0\0\x80\xff\xff\xff\x7f"s), {0xff000000, ~0u}},
        // Two pixels share red and blue.
        {"68", row(test_dds::dx10(68, 0), "\1\2\3\4"), {rgba(1, 2, 3, 255), rgba(1, 4, 3, 255)}},
        {"69", row(test_dds::dx10(69, 0), "\1\2\3\4"), {rgba(2, 1, 4, 255), rgba(2, 3, 4, 255)}},
        // Black, white; then the red of televisions: brightness 81, differences 90 and 240.
        {"YUY2", row(test_dds::coded("YUY2", 0), "\x10\x80\xeb\x80"), {0xff000000, ~0u}},
        {"UYVY", row(test_dds::coded("UYVY", 0), "\x5a\x51\xf0\x51"), {rgba(255, 0, 0, 255), rgba(255, 0, 0, 255)}},
        {"one half", row(test_dds::dx10(54, 0), "\x00\x38"s), {rgba(188, 188, 188, 255)}},
    };
    for (const auto& line : rows)
    {
        SCOPED_TRACE(line.name);
        const std::vector<rgba_pixel> pixels = decoded(line.file);
        ASSERT_EQ(pixels.size(), 4u);
        for (std::size_t i = 0; i < line.first.size(); ++i)
            EXPECT_EQ(pixels[i], line.first[i]) << "pixel " << i << std::hex << ": " << pixels[i];
    }
}

// Large enough for tables instead of computing: the result must be the same.
TEST(dds_decoder, tablesSayWhatIsComputed)
{
    for (const std::uint32_t format : {2u, 10u, 11u, 24u, 26u, 31u, 35u, 67u, 86u})
    {
        test::test_dds small = test::test_dds::dx10(format, 0);
        random_blocks source(format, 0);
        for (int i = 0; i < 4; ++i)
            for (const std::byte byte : source.next())
                small.pixels += static_cast<char>(byte);
        small.height = 1;
        const std::vector<rgba_pixel> few = decoded(small);
        test::test_dds large = small;
        const std::size_t bytes = format == 2 ? 16 : format == 10 || format == 11 ? 8 : format == 86 ? 2 : 4;
        large.width = large.height = 512;
        large.pixels.clear();
        for (int i = 0; i < 512 * 512 / 4; ++i)
            large.pixels += small.pixels.substr(0, bytes * 4);
        const std::vector<rgba_pixel> many = decoded(large);
        ASSERT_EQ(many.size(), 512u * 512);
        for (std::size_t i = 0; i < many.size(); i += 4099)
            EXPECT_EQ(many[i], few[i % 4]) << format;
    }
}

test::test_dds withPixels(test::test_dds file, const std::string& pixels)
{
    file.pixels = pixels;
    return file;
}

// The first pixels of a block, computed by hand: indices 0, 1, 2, 3 (and on) in the first row.
TEST(dds_decoder, everyFormatBecomesBytesOfColour)
{
    using test::test_dds;
    // 0xf800 red and 0x001f blue; (2 x 255 + 0) / 3 = 170. The second order has a mean (127.5 up) and a hole.
    const std::string colours("\x00\xf8\x1f\x00\xe4\0\0\0", 8), hole("\x1f\x00\x00\xf8\xe4\0\0\0", 8);
    // End points 255 and 7, then (6 x 255 + 7) / 7 = 219.6 and so on; indices 0, 1, 2, 3: bits 11 010 001 000.
    const std::string ramp("\xff\x07\x88\x06\0\0\0\0", 8);
    // 7 and 255: (4 x 7 + 255) / 5 = 56.6; indices 2, 6, 7, 1 are that, 0, 255, 255.
    const std::string short_ramp("\x07\xff\xf2\x03\0\0\0\0", 8);
    // -128 is -127; the other end 127, first is smaller: (4 x -127 + 127) / 5 = -76.2. Indices 0, 1, 2, 6.
    const std::string signed_ramp("\x80\x7f\x88\x0c\0\0\0\0", 8);
    const std::string alphas("\x10\xf8\0\0\0\0\0\0", 8); // 0, 1, 8, 15 of 15
    const struct
    {
        const char* name;
        test_dds file;
        std::vector<rgba_pixel> first_row;
    } rows[] = {
        {"BC1",
         withPixels(test_dds::coded("DXT1", 0), colours),
         {rgba(255, 0, 0, 255), rgba(0, 0, 255, 255), rgba(170, 0, 85, 255), rgba(85, 0, 170, 255)}},
        {"BC1 with a hole",
         withPixels(test_dds::coded("DXT1", 0), hole),
         {rgba(0, 0, 255, 255), rgba(255, 0, 0, 255), rgba(128, 0, 128, 255), 0}},
        {"BC2",
         withPixels(test_dds::coded("DXT3", 0), alphas + hole),
         {rgba(0, 0, 255, 0), rgba(255, 0, 0, 17), rgba(85, 0, 170, 136), rgba(170, 0, 85, 255)}},
        {"BC3",
         withPixels(test_dds::coded("DXT5", 0), ramp + colours),
         {rgba(255, 0, 0, 255), rgba(0, 0, 255, 7), rgba(170, 0, 85, 220), rgba(85, 0, 170, 184)}},
        {"BC4", withPixels(test_dds::coded("ATI1", 0), short_ramp), {0xff393939, 0xff000000, 0xffffffff, 0xffffffff}},
        {"BC4 signed",
         withPixels(test_dds::coded("BC4S", 0), signed_ramp),
         {0xff000000, 0xffffffff, 0xff333333, 0xff000000}},
        {"BC5",
         withPixels(test_dds::coded("ATI2", 0), ramp + short_ramp),
         {rgba(255, 57, 0, 255), rgba(7, 0, 0, 255), rgba(220, 255, 0, 255), rgba(184, 255, 0, 255)}},
        {"BC5 signed",
         withPixels(test_dds::coded("BC5S", 0), signed_ramp + signed_ramp),
         {rgba(0, 0, 0, 255), rgba(255, 255, 0, 255), rgba(51, 51, 0, 255), rgba(0, 0, 0, 255)}},
        {"RGBA", withPixels(test_dds::dx10(28, 0), std::string("\1\2\3\4", 4) + std::string(60, '\0')), {0x04030201}},
        {"BGRA", withPixels(test_dds::dx10(87, 0), std::string("\1\2\3\4", 4) + std::string(60, '\0')), {0x04010203}},
        {"BGRX", withPixels(test_dds::dx10(88, 0), std::string("\1\2\3\4", 4) + std::string(60, '\0')), {0xff010203}},
        {"RG", withPixels(test_dds::dx10(49, 0), std::string("\1\2", 2) + std::string(30, '\0')), {0xff000201}},
        {"R", withPixels(test_dds::dx10(61, 0), "\7" + std::string(15, '\0')), {0xff070707}},
        // 2, 0.5, not a number, 0.5: cut, with the curve 0.7354 (187.5), 0, without the curve 127.5
        {"halves",
         withPixels(test_dds::dx10(10, 0), std::string("\x00\x40\x00\x38\x01\x7e\x00\x38", 8) + std::string(120, '\0')),
         {rgba(255, 188, 0, 128)}},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.name);
        const std::vector<rgba_pixel> pixels = decoded(row.file);
        ASSERT_EQ(pixels.size(), 16u);
        for (std::size_t i = 0; i < row.first_row.size(); ++i)
            EXPECT_EQ(pixels[i], row.first_row[i]) << "pixel " << i << std::hex << ": " << pixels[i];
    }
}

// A block of one colour each, 5 x 6 pixels of them; and large enough for several threads.
TEST(dds_decoder, blocksLieWhereTheyBelong)
{
    for (const auto& [width, height] : {std::pair(5u, 6u), std::pair(1021u, 515u)})
    {
        test::test_dds file = test::test_dds::coded("DXT1", 0);
        file.width = width;
        file.height = height;
        const std::uint32_t columns = (width + 3) / 4, rows = (height + 3) / 4;
        for (std::uint32_t i = 0; i < columns * rows; ++i)
            file.pixels += std::string{static_cast<char>(i % 32), 0} + std::string(6, '\0'); // its blue
        const std::vector<rgba_pixel> pixels = decoded(file);
        ASSERT_EQ(pixels.size(), width * height);
        std::size_t wrong = 0;
        for (std::uint32_t y = 0; y < height; ++y)
            for (std::uint32_t x = 0; x < width; ++x)
                wrong += (pixels[y * width + x] >> 19 & 31) != (y / 4 * columns + x / 4) % 32;
        EXPECT_EQ(wrong, 0u) << width;
    }
    // The six faces of a cube, each with a smaller mip map behind it.
    test::test_dds cube = test::test_dds::dx10(61, 0, 4);
    cube.width = cube.height = cube.mips = 2;
    for (char face = 1; face <= 6; ++face)
        cube.pixels += std::string(4, face) + "\x77";
    const std::vector<rgba_pixel> faces = decoded(cube);
    ASSERT_EQ(faces.size(), 24u);
    for (std::uint32_t i = 0; i < 24; ++i)
        EXPECT_EQ(faces[i] & 255, i / 4 + 1);
}

} // namespace

} // namespace korvane
