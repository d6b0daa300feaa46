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
    } rows[] = {
        {"BC4", 80, one_channel, dds_format::rgba8, std::string("\xff\0\0\xff", 4)},
        {"BC5", 83, one_channel + one_channel, dds_format::rgba8, std::string("\xff\xff\0\xff", 4)},
        {"BC4 with a sign", 81, half, dds_format::rgba8_signed, std::string("\x7f\0\0\x7f", 4)},
        {"BC1 sRGB", 72, std::string("\0\xf8\0\0\0\0\0\0", 8), dds_format::rgba8_srgb, std::string("\xff\0\0\xff", 4)},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.name);
        test_dds file = test_dds::dx10(row.dxgi, 0);
        file.pixels = row.block;
        texture_reading reading;
        reading.request({textureOf("t", file.bytes())}, true);
        const std::unique_ptr<read_texture> read = reading.wait();
        ASSERT_TRUE(read && !read->why);
        EXPECT_EQ(read->image.format, row.format);
        const auto& bytes = read->image.subresource(0, 0).bytes;
        ASSERT_EQ(bytes.size(), 64u);
        EXPECT_EQ(std::string(reinterpret_cast<const char*>(bytes.data()), 4), row.first_pixel);
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
        reading.request({textureOf("own", bytes), shared, textureOf("last", "garbage")}, false);
    std::string order;
    while (const std::unique_ptr<read_texture> read = reading.wait())
        order += read->texture->path() + (read->why ? "! " : " ");
    EXPECT_TRUE(order.find("own ") != order.npos && order.find("shared ") != order.npos &&
                order.find("last! ") != order.npos && order.size() == 17)
        << order;
    EXPECT_LE(shared_reads, 200);
}

} // namespace

} // namespace korvane
