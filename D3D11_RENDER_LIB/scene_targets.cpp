#include "D3D11_RENDER_LIB/scene_targets.h"

#include "D3D11_RENDER_LIB/d3d_check.h"

#include <cstring>

namespace korvane
{

namespace
{

constexpr char source_name[] = "scene_targets";

com_ptr<ID3D11Texture2D> texture2d(ID3D11Device& device, UINT width, UINT height, DXGI_FORMAT format, UINT bind)
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
    com_ptr<ID3D11Texture2D> texture;
    requireSuccess(device.CreateTexture2D(&description, nullptr, texture.put()), source_name);
    return texture;
}

} // namespace

void scene_targets::create(ID3D11Device& device, UINT width, UINT height)
{
    static const DXGI_FORMAT formats[target_count] = {DXGI_FORMAT_R16G16B16A16_FLOAT, DXGI_FORMAT_R8G8B8A8_UNORM,
                                                      DXGI_FORMAT_R8G8B8A8_UNORM};
    release();
    m_width = width;
    m_height = height;
    for (std::size_t i = 0; i < target_count; ++i)
    {
        const com_ptr<ID3D11Texture2D> texture =
            texture2d(device, width, height, formats[i], D3D11_BIND_RENDER_TARGET | D3D11_BIND_SHADER_RESOURCE);
        requireSuccess(device.CreateRenderTargetView(texture.get(), nullptr, m_targets[i].put()), source_name);
        requireSuccess(device.CreateShaderResourceView(texture.get(), nullptr, m_views[i].put()), source_name);
    }
    const com_ptr<ID3D11Texture2D> depth =
        texture2d(device, width, height, DXGI_FORMAT_D24_UNORM_S8_UINT, D3D11_BIND_DEPTH_STENCIL);
    requireSuccess(device.CreateDepthStencilView(depth.get(), nullptr, m_depth.put()), source_name);
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
    settings.is_linear = shown == shown_target::lit ? 1 : 0;
    library.drawFinalPass(m_views[static_cast<std::size_t>(shown)].get(), settings);
}

void picture_target::create(ID3D11Device& device, UINT width, UINT height)
{
    m_width = width;
    m_height = height;
    m_texture = texture2d(device, width, height, DXGI_FORMAT_R8G8B8A8_UNORM, D3D11_BIND_RENDER_TARGET);
    m_staging = texture2d(device, width, height, DXGI_FORMAT_R8G8B8A8_UNORM, 0);
    requireSuccess(device.CreateRenderTargetView(m_texture.get(), nullptr, m_view.put()), source_name);
}

void picture_target::read(lib3d& library, std::vector<std::uint8_t>& rgba) const
{
    library.context().CopyResource(m_staging.get(), m_texture.get());
    D3D11_MAPPED_SUBRESOURCE mapped{};
    requireSuccess(library.context().Map(m_staging.get(), 0, D3D11_MAP_READ, 0, &mapped), source_name);
    const std::size_t row_bytes = std::size_t{m_width} * 4;
    rgba.resize(row_bytes * m_height);
    for (std::size_t row = 0; row < m_height; ++row)
        std::memcpy(rgba.data() + row * row_bytes, static_cast<const char*>(mapped.pData) + row * mapped.RowPitch,
                    row_bytes);
    library.context().Unmap(m_staging.get(), 0);
}

} // namespace korvane
