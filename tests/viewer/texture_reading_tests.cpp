#include "D3D11_RENDER_LIB/texture_reading.h"
#include "tests/support/dds_builder.h"

#include <gtest/gtest.h>

#include <atomic>

namespace korvane
{

namespace
{

using test::test_dds;

std::shared_ptr<const scene_texture> textureOf(const std::string& name, const std::string& bytes,
                                               std::atomic<int>* times_read = nullptr)
{
    const texture_reader reader = [bytes, times_read](const std::string&, memory_file& file, file_place&, failure&) {
        if (times_read != nullptr)
            ++*times_read;
        file = memory_file(std::string_view(bytes));
        return true;
    };
    return std::make_shared<const scene_texture>(name, reader, file_place());
}

// BC4: red end points 255 and 0, all texels the first; BC5 the same twice; others as a device reads them.
TEST(texture_reading, softwareDevicesGetWhatTheShaderWouldRead)
{
    const std::string one_channel = std::string("\xff\0\0\0\0\0\0\0", 8), half = std::string("\x7f\x81\0\0\0\0\0\0", 8);
    const struct
    {
        const char* name;
        std::uint32_t dxgi;
        std::string block;
        dds_format format;
        std::string first_pixel;
        bool is_colour = false;
    } rows[] = {
        // What this device refuses: 0.5, 2, -1, 1 as halves, the smallest ones and what is too large; one and two
        // channels.
        {"floats", 2, std::string("\0\0\0\x3f\0\0\0\x40\0\0\x80\xbf\0\0\x80\x3f", 16), dds_format::rgba16_float,
         std::string("\0\x38\0\x40\0\xbc\0\x3c", 8)},
        {"floats at the ends", 6, std::string("\0\0\x80\x33\0\0\x80\x7f\0\0\xc0\x7f", 12), dds_format::rgba16_float,
         std::string("\1\0\xff\x7b\0\0\0\x3c", 8)},
        {"a shared exponent", 67, std::string("\x00\x01\x01\x80", 4), dds_format::rgba16_float,
         std::string("\0\x3c\0\x38\0\0\0\x3c", 8)},
        {"one channel", 56, std::string("\0\x80", 2), dds_format::rgba8, std::string("\x80\0\0\xff", 4)},
        {"two signed channels", 51, std::string("\x7f\x81", 2), dds_format::rgba8_signed,
         std::string("\x7f\x81\0\x7f", 4)},
        {"pairs", 68, std::string("\1\2", 2), dds_format::rgba8, std::string("\1\2\1\xff", 4)},
        {"BC4", 80, one_channel, dds_format::rgba8, std::string("\xff\0\0\xff", 4)},
        {"BC5", 83, one_channel + one_channel, dds_format::rgba8, std::string("\xff\xff\0\xff", 4)},
        {"BC4 with a sign", 81, half, dds_format::rgba8_signed, std::string("\x7f\0\0\x7f", 4)},
        {"BC1 sRGB", 72, std::string("\0\xf8\0\0\0\0\0\0", 8), dds_format::rgba8_srgb, std::string("\xff\0\0\xff", 4)},
        // Green 32 of 63, 130 as a byte: 0.2232 of light, which is 0.5057 to the power of 2.2.
        {"BC1 sRGB, colour", 72, std::string("\0\x04\0\0\0\0\0\0", 8), dds_format::rgba8,
         std::string("\0\x81\0\xff", 4), true},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.name);
        test_dds file = test_dds::dx10(row.dxgi, 0);
        const bool is_block = isBlockCompressed(static_cast<dds_format>(row.dxgi));
        for (file.pixels.clear(); file.pixels.size() < (is_block ? 1 : 16) * row.block.size();)
            file.pixels += row.block;
        texture_reading reading;
        device_formats device{true, {}};
        device.refused.set(row.dxgi, !is_block);
        reading.request({{textureOf("t", file.bytes()), row.is_colour}}, device);
        const std::unique_ptr<read_texture> read = reading.wait();
        ASSERT_TRUE(read && !read->why);
        EXPECT_EQ(read->image.format, row.format);
        const auto& bytes = read->image.subresource(0, 0).bytes;
        ASSERT_EQ(bytes.size(), 16 * row.first_pixel.size());
        EXPECT_EQ(std::string(reinterpret_cast<const char*>(bytes.data()), row.first_pixel.size()), row.first_pixel);
        EXPECT_FALSE(reading.wait());
    }
}

TEST(texture_reading, aNewerSceneReplacesWhatIsWantedAndKeepsWhatItShares)
{
    const std::string bytes = test_dds().bytes();
    std::atomic<int> shared_reads{0};
    const auto shared = textureOf("shared", bytes, &shared_reads);
    texture_reading reading;
    for (int scene = 0; scene < 200; ++scene)
        reading.request({textureOf("own", bytes), shared, textureOf("last", "garbage")}, {});
    std::string order;
    while (const std::unique_ptr<read_texture> read = reading.wait())
        order += read->wanted.texture->path() + (read->why ? "! " : " ");
    EXPECT_TRUE(order.find("own ") != order.npos && order.find("shared ") != order.npos &&
                order.find("last! ") != order.npos && order.size() == 17)
        << order;
    EXPECT_LE(shared_reads, 200);
}

} // namespace

} // namespace korvane
