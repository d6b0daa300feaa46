#include "D3D11_RENDER_LIB/scene_targets.h"

#include <cstring>

namespace korvane
{

namespace
{

constexpr char source_name[] = "scene_targets";

bool createTexture(lib3d& library, UINT width, UINT height, DXGI_FORMAT format, UINT bind, const char* name,
                   com_ptr<ID3D11Texture2D>& texture)
{
    D3D11_TEXTURE2D_DESC description{};
    description.Width = width;
    description.Height = height;
    description.MipLevels = 1;
    description.ArraySize = 1;
    description.Format = format;
    description.SampleDesc.Count = 1;
    description.Usage = bind ? D3D11_USAGE_DEFAULT : D3D11_USAGE_STAGING;
    description.BindFlags = bind;
    description.CPUAccessFlags = bind ? 0u : UINT{D3D11_CPU_ACCESS_READ};
    return library.isMade(library.device().CreateTexture2D(&description, nullptr, texture.put()), texture, name,
                          source_name);
}

} // namespace

bool scene_targets::create(lib3d& library, UINT width, UINT height)
{
    static const struct
    {
        DXGI_FORMAT format;
        const char* name;
    } kinds[target_count] = {{DXGI_FORMAT_R8G8B8A8_UNORM_SRGB, "target, plain colour"}, // first: Wine encodes none else
                             {DXGI_FORMAT_R16G16B16A16_FLOAT, "target, light"},
                             {DXGI_FORMAT_R8G8B8A8_UNORM, "target, normals"}};
    release();
    ID3D11Device& device = library.device();
    for (std::size_t i = 0; i < target_count; ++i)
    {
        com_ptr<ID3D11Texture2D> texture;
        if (!createTexture(library, width, height, kinds[i].format,
                           D3D11_BIND_RENDER_TARGET | D3D11_BIND_SHADER_RESOURCE, kinds[i].name, texture) ||
            !library.isMade(device.CreateRenderTargetView(texture.get(), nullptr, m_targets[i].put()), m_targets[i],
                            kinds[i].name, source_name) ||
            !library.isMade(device.CreateShaderResourceView(texture.get(), nullptr, m_views[i].put()), m_views[i],
                            kinds[i].name, source_name))
            return false;
    }
    com_ptr<ID3D11Texture2D> depth;
    if (!createTexture(library, width, height, DXGI_FORMAT_D24_UNORM_S8_UINT, D3D11_BIND_DEPTH_STENCIL, "depth",
                       depth) ||
        !library.isMade(device.CreateDepthStencilView(depth.get(), nullptr, m_depth.put()), m_depth, "depth",
                        source_name))
        return false;
    m_width = width;
    m_height = height;
    return true;
}

void scene_targets::release()
{
    *this = scene_targets();
}

void scene_targets::begin(lib3d& library, ID3D11RenderTargetView* output, float background) const
{
    ID3D11DeviceContext& context = library.context();
    ID3D11RenderTargetView* targets[target_count];
    const float color[4] = {background, background, 1.3f * background, 1.0f};
    for (std::size_t i = 0; i < target_count; ++i)
    {
        targets[i] = m_targets[i].get();
        context.ClearRenderTargetView(targets[i], color);
    }
    context.ClearRenderTargetView(output, color);
    context.ClearDepthStencilView(m_depth.get(), D3D11_CLEAR_DEPTH | D3D11_CLEAR_STENCIL, 1.0f, 0);
    context.OMSetRenderTargets(target_count, targets, m_depth.get());
    const D3D11_VIEWPORT viewport{0, 0, static_cast<float>(m_width), static_cast<float>(m_height), 0.0f, 1.0f};
    context.RSSetViewports(1, &viewport);
}

void scene_targets::finish(lib3d& library, ID3D11RenderTargetView* output, shown_target shown) const
{
    library.context().OMSetRenderTargets(1, &output, nullptr);
    final_pass_buffer settings;
    settings.width = static_cast<std::int32_t>(m_width);
    settings.height = static_cast<std::int32_t>(m_height);
    settings.content = shown == shown_target::lit       ? target_content::light
                       : shown == shown_target::normals ? target_content::data
                                                        : target_content::colour;
    library.drawFinalPass(m_views[static_cast<std::size_t>(shown)].get(), settings);
}

bool picture_target::create(lib3d& library, UINT width, UINT height)
{
    m_width = width;
    m_height = height;
    constexpr DXGI_FORMAT format = DXGI_FORMAT_R8G8B8A8_UNORM;
    return createTexture(library, width, height, format, D3D11_BIND_RENDER_TARGET, "picture", m_texture) &&
           createTexture(library, width, height, format, 0, "picture, to be read", m_staging) &&
           library.isMade(library.device().CreateRenderTargetView(m_texture.get(), nullptr, m_view.put()), m_view,
                          "picture", source_name);
}

bool picture_target::read(lib3d& library, std::vector<std::uint8_t>& rgba) const
{
    library.context().CopyResource(m_staging.get(), m_texture.get());
    D3D11_MAPPED_SUBRESOURCE mapped{};
    if (!library.hasSucceeded(device_step::present,
                              library.context().Map(m_staging.get(), 0, D3D11_MAP_READ, 0, &mapped), source_name))
        return false;
    const std::size_t row_bytes = std::size_t{m_width} * 4;
    rgba.resize(row_bytes * m_height);
    for (std::size_t row = 0; row < m_height; ++row)
        std::memcpy(rgba.data() + row * row_bytes, static_cast<const char*>(mapped.pData) + row * mapped.RowPitch,
                    row_bytes);
    library.context().Unmap(m_staging.get(), 0);
    return true;
}

} // namespace korvane
