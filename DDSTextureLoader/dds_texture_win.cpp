#include "DDSTextureLoader/dds_texture.h"

#include <algorithm>
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

D3D11_TEXTURE2D_DESC textureDescription(const dds_image& image, D3D11_USAGE usage)
{
    D3D11_TEXTURE2D_DESC description{};
    description.Width = image.width;
    description.Height = image.height;
    description.MipLevels = image.mip_count;
    description.ArraySize = image.array_size;
    description.Format = static_cast<DXGI_FORMAT>(image.format);
    description.SampleDesc.Count = 1;
    description.Usage = usage;
    description.BindFlags = D3D11_BIND_SHADER_RESOURCE;
    description.MiscFlags = image.is_cube ? UINT{D3D11_RESOURCE_MISC_TEXTURECUBE} : 0u;
    return description;
}

// With contents an immutable texture, else one that is filled later.
bool createTexture(ID3D11Device& device, const dds_image& image, const D3D11_SUBRESOURCE_DATA* contents,
                   com_ptr<ID3D11Texture2D>& texture, com_ptr<ID3D11ShaderResourceView>& view, failure& why)
{
    if (image.format == dds_format::unknown)
        return fail(why, failure_kind::unsupported,
                    "a graphics device has no format for these pixels (" + std::to_string(image.layout.bytes * 8) +
                        " bits each)");
    if (isBlockCompressed(image.format) && (image.width % 4 != 0 || image.height % 4 != 0))
        return fail(why, failure_kind::unsupported,
                    "a block-compressed texture must be a multiple of 4 pixels wide and high, but this one is " +
                        std::to_string(image.width) + " x " + std::to_string(image.height));
    const D3D11_TEXTURE2D_DESC description =
        textureDescription(image, contents ? D3D11_USAGE_IMMUTABLE : D3D11_USAGE_DEFAULT);
    HRESULT result = device.CreateTexture2D(&description, contents, texture.put());
    com_ptr<ID3D11ShaderResourceView> made;
    if (SUCCEEDED(result))
    {
        const D3D11_SHADER_RESOURCE_VIEW_DESC seen = viewDescription(image, description.Format);
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

} // namespace

bool createDdsTexture(ID3D11Device& device, const dds_image& image, com_ptr<ID3D11ShaderResourceView>& view,
                      failure& why)
{
    std::vector<D3D11_SUBRESOURCE_DATA> contents;
    contents.reserve(image.subresources.size());
    for (const dds_subresource& part : image.subresources)
        contents.push_back({part.bytes.data(), part.row_pitch, part.row_pitch * part.rows});
    com_ptr<ID3D11Texture2D> texture;
    return createTexture(device, image, contents.data(), texture, view, why);
}

bool dds_upload::begin(ID3D11Device& device, const dds_image& image, failure& why)
{
    *this = dds_upload();
    m_image = image;
    return createTexture(device, image, nullptr, m_texture, m_view, why);
}

bool dds_upload::goOn(ID3D11DeviceContext& context, std::size_t bytes)
{
    const UINT rows_of_pixels = isBlockCompressed(m_image.format) ? 4 : 1;
    while (m_subresource < m_image.subresources.size())
    {
        const dds_subresource& part = m_image.subresources[m_subresource];
        const auto affordable = static_cast<std::uint32_t>(std::min<std::size_t>(bytes / part.row_pitch, part.rows));
        const std::uint32_t rows = std::min(std::max(affordable, 1u), part.rows - m_row);
        const UINT top = m_row * rows_of_pixels;
        const D3D11_BOX box{0, top, 0, part.width, std::min(top + rows * rows_of_pixels, UINT{part.height}), 1};
        // Of small levels, which may end within a block, always all at once.
        const bool is_whole = rows == part.rows;
        context.UpdateSubresource(m_texture.get(), static_cast<UINT>(m_subresource), is_whole ? nullptr : &box,
                                  part.bytes.data() + std::size_t{m_row} * part.row_pitch, part.row_pitch, 0);
        m_row += rows;
        if (m_row == part.rows)
        {
            ++m_subresource;
            m_row = 0;
        }
        const std::size_t handed_over = std::size_t{rows} * part.row_pitch;
        if (handed_over >= bytes)
            break;
        bytes -= handed_over;
    }
    return m_subresource == m_image.subresources.size();
}

} // namespace korvane
