#include "DDSTextureLoader/dds_texture.h"

#include <cstdio>
#include <string>
#include <vector>

namespace korvane
{

namespace
{

std::string hexText(HRESULT result)
{
    char text[16];
    std::snprintf(text, sizeof text, "%08lX", static_cast<unsigned long>(result));
    return text;
}

D3D11_SHADER_RESOURCE_VIEW_DESC viewDescription(const dds_image& image, DXGI_FORMAT format)
{
    D3D11_SHADER_RESOURCE_VIEW_DESC view{};
    view.Format = format;
    if (image.is_cube && image.array_size > 6)
    {
        view.ViewDimension = D3D11_SRV_DIMENSION_TEXTURECUBEARRAY;
        view.TextureCubeArray.MipLevels = image.mip_count;
        view.TextureCubeArray.NumCubes = image.array_size / 6;
    }
    else if (image.is_cube)
    {
        view.ViewDimension = D3D11_SRV_DIMENSION_TEXTURECUBE;
        view.TextureCube.MipLevels = image.mip_count;
    }
    else if (image.array_size > 1)
    {
        view.ViewDimension = D3D11_SRV_DIMENSION_TEXTURE2DARRAY;
        view.Texture2DArray.MipLevels = image.mip_count;
        view.Texture2DArray.ArraySize = image.array_size;
    }
    else
    {
        view.ViewDimension = D3D11_SRV_DIMENSION_TEXTURE2D;
        view.Texture2D.MipLevels = image.mip_count;
    }
    return view;
}

} // namespace

bool createDdsTexture(ID3D11Device& device, const dds_image& image, com_ptr<ID3D11ShaderResourceView>& view,
                      failure& why)
{
    if (image.format == dds_format::unknown)
        return fail(why, failure_kind::unsupported,
                    "a graphics device has no format for these pixels (" + std::to_string(image.layout.bytes * 8) +
                        " bits each)");
    if (isBlockCompressed(image.format) && (image.width % 4 != 0 || image.height % 4 != 0))
        return fail(why, failure_kind::unsupported,
                    "a block-compressed texture must be a multiple of 4 pixels wide and high, but this one is " +
                        std::to_string(image.width) + " x " + std::to_string(image.height));
    const auto format = static_cast<DXGI_FORMAT>(image.format);

    D3D11_TEXTURE2D_DESC description{};
    description.Width = image.width;
    description.Height = image.height;
    description.MipLevels = image.mip_count;
    description.ArraySize = image.array_size;
    description.Format = format;
    description.SampleDesc.Count = 1;
    description.Usage = D3D11_USAGE_IMMUTABLE;
    description.BindFlags = D3D11_BIND_SHADER_RESOURCE;
    description.MiscFlags = image.is_cube ? UINT{D3D11_RESOURCE_MISC_TEXTURECUBE} : 0u;

    std::vector<D3D11_SUBRESOURCE_DATA> contents;
    contents.reserve(image.subresources.size());
    for (std::uint32_t surface = 0; surface < image.array_size; ++surface)
        for (std::uint32_t mip = 0; mip < image.mip_count; ++mip)
        {
            const dds_subresource& part = image.subresource(surface, mip);
            contents.push_back({part.bytes.data(), part.row_pitch, part.row_pitch * part.rows});
        }

    com_ptr<ID3D11Texture2D> texture;
    HRESULT result = device.CreateTexture2D(&description, contents.data(), texture.put());
    com_ptr<ID3D11ShaderResourceView> made;
    if (SUCCEEDED(result))
    {
        const D3D11_SHADER_RESOURCE_VIEW_DESC seen = viewDescription(image, format);
        result = device.CreateShaderResourceView(texture.get(), &seen, made.put());
    }
    if (FAILED(result))
        return fail(why, failure_kind::unsupported,
                    std::string("the graphics device refuses the texture (") + formatName(image.format) + ", " +
                        std::to_string(image.width) + " x " + std::to_string(image.height) + "; " + hexText(result) +
                        ")");
    view = std::move(made);
    return true;
}

} // namespace korvane
