#include "D3D11_RENDER_LIB/scene_targets.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace korvane
{

namespace
{

constexpr char scene_targets_source[] = "scene_targets";
constexpr UINT surface_register = 13;

// As the final pass shows a dark colour: one that is neither bent nor softened.
float shownValue(float linear, shown_target shown)
{
    return shown == shown_target::normals ? linear
           : linear <= 0.0031308f         ? linear * 12.92f
                                          : 1.055f * std::pow(linear, 1 / 2.4f) - 0.055f;
}

struct target_kind
{
    DXGI_FORMAT format;
    const char* name;
};
constexpr target_kind kinds[scene_targets::target_count] = {
    {DXGI_FORMAT_R8G8B8A8_UNORM_SRGB, "target, plain colour"}, // first: Wine encodes none else
    {DXGI_FORMAT_R16G16B16A16_FLOAT, "target, light"},
    {DXGI_FORMAT_R8G8B8A8_UNORM, "target, normals"}};
constexpr DXGI_FORMAT depth_format = DXGI_FORMAT_D24_UNORM_S8_UINT;

// As many as the device has for the format, of what is wanted.
UINT samplesOf(ID3D11Device& device, DXGI_FORMAT format, UINT wanted)
{
    UINT levels = 0;
    return wanted > 1 && SUCCEEDED(device.CheckMultisampleQualityLevels(format, wanted, &levels)) && levels > 0 ? wanted
                                                                                                                : 1;
}

// The viewport is that of the whole picture, so that no corner of a triangle is computed in another way for a part.
void useViewport(lib3d& library, const picture_part& part)
{
    const D3D11_VIEWPORT viewport{-static_cast<float>(part.left),
                                  -static_cast<float>(part.top),
                                  static_cast<float>(part.width),
                                  static_cast<float>(part.height),
                                  0.0f,
                                  1.0f};
    library.context().RSSetViewports(1, &viewport);
}

bool createTexture(lib3d& library, UINT width, UINT height, DXGI_FORMAT format, UINT bind, const char* name,
                   com_ptr<ID3D11Texture2D>& texture, UINT samples = 1)
{
    D3D11_TEXTURE2D_DESC description{};
    description.Width = width;
    description.Height = height;
    description.MipLevels = 1;
    description.ArraySize = 1;
    description.Format = format;
    description.SampleDesc.Count = samples;
    description.Usage = bind ? D3D11_USAGE_DEFAULT : D3D11_USAGE_STAGING;
    description.BindFlags = bind;
    description.CPUAccessFlags = bind ? 0u : UINT{D3D11_CPU_ACCESS_READ};
    return library.isMade(library.device().CreateTexture2D(&description, nullptr, texture.put()), texture, name,
                          scene_targets_source);
}

} // namespace

bool scene_targets::create(lib3d& library, UINT width, UINT height, UINT samples)
{
    release();
    ID3D11Device& device = library.device();
    m_samples = samples;
    for (const target_kind& kind : kinds)
        m_samples = std::min(m_samples, samplesOf(device, kind.format, samples));
    m_samples = std::min(m_samples, samplesOf(device, depth_format, samples));
    for (std::size_t i = 0; i < target_count; ++i)
    {
        const auto [format, name] = kinds[i];
        if (!createTexture(library, width, height, format, D3D11_BIND_RENDER_TARGET | D3D11_BIND_SHADER_RESOURCE, name,
                           m_resolved[i]))
            return false;
        m_drawn[i] = m_resolved[i];
        if (m_samples > 1 &&
            !createTexture(library, width, height, format, D3D11_BIND_RENDER_TARGET, name, m_drawn[i], m_samples))
            return false;
        if (!library.isMade(device.CreateRenderTargetView(m_drawn[i].get(), nullptr, m_targets[i].put()), m_targets[i],
                            name, scene_targets_source) ||
            !library.isMade(device.CreateShaderResourceView(m_resolved[i].get(), nullptr, m_views[i].put()), m_views[i],
                            name, scene_targets_source))
            return false;
    }
    com_ptr<ID3D11Texture2D> depth;
    if (!createTexture(library, width, height, depth_format, D3D11_BIND_DEPTH_STENCIL, "depth", depth, m_samples) ||
        !library.isMade(device.CreateDepthStencilView(depth.get(), nullptr, m_depth.put()), m_depth, "depth",
                        scene_targets_source))
        return false;
    m_width = width;
    m_height = height;
    m_part = {width, height};
    m_output_width = width;
    m_output_height = height;
    return !library.isSoftware() || m_samples > 1 ||
           (createLayer(library, DXGI_FORMAT_R32G32B32A32_UINT, "surfaces", m_surfaces) &&
            createLayer(library, DXGI_FORMAT_R8G8B8A8_UNORM, "target, as on the screen", m_encoded));
}

bool scene_targets::createLayer(lib3d& library, DXGI_FORMAT format, const char* name, layer& made)
{
    ID3D11Device& device = library.device();
    return createTexture(library, m_width, m_height, format, D3D11_BIND_RENDER_TARGET | D3D11_BIND_SHADER_RESOURCE,
                         name, made.texture) &&
           library.isMade(device.CreateRenderTargetView(made.texture.get(), nullptr, made.target.put()), made.target,
                          name, scene_targets_source) &&
           library.isMade(device.CreateShaderResourceView(made.texture.get(), nullptr, made.view.put()), made.view,
                          name, scene_targets_source);
}

bool scene_targets::enlargeTo(lib3d& library, UINT width, UINT height)
{
    m_output_width = width;
    m_output_height = height;
    return !isEnlarged() || m_finished.view ||
           createLayer(library, DXGI_FORMAT_R8G8B8A8_UNORM, "target, to be enlarged", m_finished);
}

// The area is of these targets.
void scene_targets::enlarge(lib3d& library, ID3D11RenderTargetView* output, const screen_area& area) const
{
    library.context().OMSetRenderTargets(1, &output, nullptr);
    useViewport(library, {m_output_width, m_output_height});
    final_pass_buffer settings;
    settings.width = static_cast<std::int32_t>(m_output_width);
    settings.height = static_cast<std::int32_t>(m_output_height);
    const auto wider = [&](std::int32_t place) { return place * settings.width / static_cast<std::int32_t>(m_width); };
    const auto higher = [&](std::int32_t place) {
        return place * settings.height / static_cast<std::int32_t>(m_height);
    };
    library.drawEnlarged(m_finished.view.get(), settings,
                         {wider(area.left), higher(area.top), wider(area.right), higher(area.bottom)});
}

void scene_targets::bindSurfaces(lib3d& library) const
{
    ID3D11RenderTargetView* const target = m_surfaces.target.get();
    library.context().OMSetRenderTargets(1, &target, m_depth.get());
}

void scene_targets::bindShading(lib3d& library, const shown_frame& frame) const
{
    bind(library, frame);
    ID3D11ShaderResourceView* const view = m_surfaces.view.get();
    library.context().PSSetShaderResources(surface_register, 1, &view);
}

void scene_targets::endShading(lib3d& library) const
{
    ID3D11ShaderResourceView* const none = nullptr;
    library.context().PSSetShaderResources(surface_register, 1, &none);
}

void scene_targets::release()
{
    *this = scene_targets();
}

void scene_targets::begin(lib3d& library, ID3D11RenderTargetView* output, const shown_frame& frame) const
{
    ID3D11DeviceContext& context = library.context();
    const float c = frame.is_clear ? 0.0f : frame.background;
    const float color[4] = {c, c, 1.3f * c, frame.is_clear ? 0.0f : 1.0f};
    const float seen = shownValue(c, frame.shown), seen_blue = shownValue(1.3f * c, frame.shown);
    const float seen_color[4] = {seen, seen, seen_blue, frame.shown == shown_target::normals ? 1.0f : color[3]};
    if (frame.is_encoded)
        context.ClearRenderTargetView(m_encoded.target.get(), seen_color);
    else
        for (const auto& target : m_targets)
            context.ClearRenderTargetView(target.get(), color);
    context.ClearRenderTargetView(output, seen_color);
    context.ClearDepthStencilView(m_depth.get(), D3D11_CLEAR_DEPTH | D3D11_CLEAR_STENCIL, 1.0f, 0);
    bind(library, frame);
    library.beginScene(frame.is_encoded);
}

void scene_targets::bind(lib3d& library, const shown_frame& frame) const
{
    ID3D11RenderTargetView* targets[target_count] = {m_encoded.target.get()};
    if (!frame.is_encoded)
        std::transform(m_targets.begin(), m_targets.end(), targets, [](const auto& target) { return target.get(); });
    library.context().OMSetRenderTargets(frame.is_encoded ? 1 : target_count, targets, m_depth.get());
    useViewport(library, m_part);
}

void scene_targets::usePicturePixels(lib3d& library) const
{
    const picture_part seen = shownPart();
    useViewport(library, seen);
    final_pass_buffer settings;
    settings.width = static_cast<std::int32_t>(seen.width);
    settings.height = static_cast<std::int32_t>(seen.height);
    library.setFinalPass(settings);
}

void scene_targets::finish(lib3d& library, ID3D11RenderTargetView* output, const shown_frame& frame,
                           const screen_area& area) const
{
    constexpr auto marks = static_cast<std::size_t>(shown_target::normals);
    const auto wanted = static_cast<std::size_t>(frame.shown);
    ID3D11RenderTargetView* const target = isEnlarged() ? m_finished.target.get() : output;
    library.context().OMSetRenderTargets(1, &target, nullptr);
    useViewport(library, {m_width, m_height});
    if (m_samples > 1)
        for (std::size_t i = 0; i < target_count; ++i)
            if (i == wanted || (frame.has_outlines && i == marks))
                library.context().ResolveSubresource(m_resolved[i].get(), 0, m_drawn[i].get(), 0, kinds[i].format);
    final_pass_buffer settings;
    settings.width = static_cast<std::int32_t>(m_width);
    settings.height = static_cast<std::int32_t>(m_height);
    settings.content = frame.shown == shown_target::lit       ? target_content::light
                       : frame.shown == shown_target::normals ? target_content::data
                                                              : target_content::colour;
    settings.flags = m_samples == 1 && !m_part.has_samples ? final_softens : 0;
    const auto& seen = frame.is_encoded ? m_encoded.view : m_views[wanted];
    // What is enlarged of it mixes neighbours.
    const screen_area drawn = isEnlarged() ? area.grown(1, settings.width, settings.height) : area;
    library.drawFinalPass(seen.get(), m_views[marks].get(), settings, drawn, frame.has_outlines);
    if (isEnlarged())
        enlarge(library, output, area);
}

bool picture_target::create(lib3d& library, UINT width, UINT height)
{
    m_width = width;
    m_height = height;
    constexpr DXGI_FORMAT format = DXGI_FORMAT_R8G8B8A8_UNORM;
    return createTexture(library, width, height, format, D3D11_BIND_RENDER_TARGET, "picture", m_texture) &&
           createTexture(library, width, height, format, 0, "picture, to be read", m_staging) &&
           library.isMade(library.device().CreateRenderTargetView(m_texture.get(), nullptr, m_view.put()), m_view,
                          "picture", scene_targets_source);
}

bool picture_target::read(lib3d& library, std::vector<std::uint8_t>& rgba) const
{
    library.context().CopyResource(m_staging.get(), m_texture.get());
    D3D11_MAPPED_SUBRESOURCE mapped{};
    if (!library.hasSucceeded(device_step::present,
                              library.context().Map(m_staging.get(), 0, D3D11_MAP_READ, 0, &mapped),
                              scene_targets_source))
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
