#include "D3D11_RENDER_LIB/lib3d.h"
#include "DDSTextureLoader/dds_texture.h"
#include "tests/support/dds_builder.h"

#include <gtest/gtest.h>

namespace korvane
{

namespace
{

using test::test_dds;

TEST(dds_texture, everyFormatBecomesAViewOfItsFormatAndShape)
{
    lib3d library;
    failure why;
    ASSERT_TRUE(library.createDevice(device_kind::best, {}, why)) << describe(why);
    const struct
    {
        std::uint32_t format;
        std::size_t bytes;
        std::uint32_t misc;
        std::uint32_t array_size;
        D3D11_SRV_DIMENSION shape;
    } rows[] = {
        {10, 128, 0, 1, D3D11_SRV_DIMENSION_TEXTURE2D},      {28, 64, 0, 1, D3D11_SRV_DIMENSION_TEXTURE2D},
        {29, 64, 0, 1, D3D11_SRV_DIMENSION_TEXTURE2D},       {87, 64, 0, 1, D3D11_SRV_DIMENSION_TEXTURE2D},
        {88, 64, 0, 1, D3D11_SRV_DIMENSION_TEXTURE2D},       {91, 64, 0, 1, D3D11_SRV_DIMENSION_TEXTURE2D},
        {61, 16, 0, 1, D3D11_SRV_DIMENSION_TEXTURE2D},       {49, 32, 0, 1, D3D11_SRV_DIMENSION_TEXTURE2D},
        {71, 8, 0, 1, D3D11_SRV_DIMENSION_TEXTURE2D},        {72, 8, 0, 1, D3D11_SRV_DIMENSION_TEXTURE2D},
        {74, 16, 0, 1, D3D11_SRV_DIMENSION_TEXTURE2D},       {77, 16, 0, 1, D3D11_SRV_DIMENSION_TEXTURE2D},
        {78, 16, 0, 1, D3D11_SRV_DIMENSION_TEXTURE2D},       {80, 8, 0, 1, D3D11_SRV_DIMENSION_TEXTURE2D},
        {83, 16, 0, 1, D3D11_SRV_DIMENSION_TEXTURE2D},       {98, 16, 0, 1, D3D11_SRV_DIMENSION_TEXTURE2D},
        {99, 16, 0, 1, D3D11_SRV_DIMENSION_TEXTURE2D},       {95, 96, 4, 1, D3D11_SRV_DIMENSION_TEXTURECUBE},
        {29, 192, 0, 3, D3D11_SRV_DIMENSION_TEXTURE2DARRAY},
    };
    for (const auto& row : rows)
    {
        const std::string file = test_dds::dx10(row.format, row.bytes, row.misc, row.array_size).bytes();
        dds_image image;
        ASSERT_TRUE(readDds(std::as_bytes(std::span(file)), image, why)) << row.format << describe(why);
        com_ptr<ID3D11ShaderResourceView> view;
        ASSERT_TRUE(createDdsTexture(library.device(), image, view, why)) << row.format << describe(why);
        D3D11_SHADER_RESOURCE_VIEW_DESC description{};
        view->GetDesc(&description);
        EXPECT_EQ(static_cast<std::uint32_t>(description.Format), row.format);
        EXPECT_EQ(description.ViewDimension, row.shape) << row.format;
    }
}

TEST(dds_texture, blocksThatDoNotFillTheirSizeAreRefused)
{
    lib3d library;
    failure why;
    ASSERT_TRUE(library.createDevice(device_kind::best, {}, why)) << describe(why);
    test_dds odd = test_dds::coded("DXT1", 32);
    odd.width = 6;
    odd.height = 6;
    const std::string file = odd.bytes();
    dds_image image;
    ASSERT_TRUE(readDds(std::as_bytes(std::span(file)), image, why));
    com_ptr<ID3D11ShaderResourceView> view;
    EXPECT_FALSE(createDdsTexture(library.device(), image, view, why));
    EXPECT_EQ(why.kind, failure_kind::unsupported);
    EXPECT_FALSE(view);
}

} // namespace

} // namespace korvane
