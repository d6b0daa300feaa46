#include "D3D11_RENDER_LIB/packed_maps.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

namespace korvane
{

namespace
{

constexpr char packed_maps_source[] = "packed_maps";
constexpr std::array<UINT, map_packer::kind_count> registers = {7, 9, 10}; // of shaders/textures.hlsli
constexpr UINT first_map_register = 6;                                     // whose bit of bound_... is the first
// With mip maps, as most textures have: software devices compile shaders for textures without again.
constexpr UINT smallest_side = 4;

struct map_size
{
    UINT width = smallest_side, height = smallest_side;

    void add(ID3D11ShaderResourceView& view)
    {
        com_ptr<ID3D11Resource> resource;
        view.GetResource(resource.put());
        com_ptr<ID3D11Texture2D> texture;
        if (FAILED(resource->QueryInterface(__uuidof(ID3D11Texture2D), reinterpret_cast<void**>(texture.put()))))
            return;
        D3D11_TEXTURE2D_DESC description{};
        texture->GetDesc(&description);
        width = std::max(width, description.Width);
        height = std::max(height, description.Height);
    }
};

} // namespace

std::shared_ptr<const packed_maps> map_packer::find(const maps& of)
{
    return m_entries[of].result;
}

bool map_packer::update(lib3d& library, int channel)
{
    for (auto& [sources, one] : m_entries)
    {
        std::array<texture_view, kind_count> views;
        std::transform(sources.begin(), sources.end(), views.begin(),
                       [](const auto& source) { return source ? source->view : texture_view(); });
        if (one.channel == channel && std::equal(views.begin(), views.end(), one.packed.begin(),
                                                 [](const auto& a, const auto& b) { return a.get() == b.get(); }))
            continue;
        one.packed = std::move(views);
        one.channel = channel;
        if (!createFiller(library) || !createTexture(library, one) || !pack(library, one))
            return false;
    }
    return true;
}

bool map_packer::createFiller(lib3d& library)
{
    if (m_filler)
        return true;
    constexpr std::array<std::uint32_t, smallest_side * smallest_side> nothing{};
    const CD3D11_TEXTURE2D_DESC description(DXGI_FORMAT_R8G8B8A8_UNORM, smallest_side, smallest_side, 1, 3,
                                            D3D11_BIND_SHADER_RESOURCE, D3D11_USAGE_IMMUTABLE);
    const D3D11_SUBRESOURCE_DATA contents[] = {{nothing.data(), 16, 0}, {nothing.data(), 8, 0}, {nothing.data(), 4, 0}};
    com_ptr<ID3D11Texture2D> texture;
    return library.isMade(library.device().CreateTexture2D(&description, contents, texture.put()), texture,
                          "map that is not there", packed_maps_source) &&
           library.isMade(library.device().CreateShaderResourceView(texture.get(), nullptr, m_filler.put()), m_filler,
                          "map that is not there", packed_maps_source);
}

// As large as the largest of the maps.
bool map_packer::createTexture(lib3d& library, entry& one)
{
    map_size size;
    for (const texture_view& view : one.packed)
        if (view)
            size.add(*view.get());
    const UINT larger = std::max(size.width, size.height);
    const CD3D11_TEXTURE2D_DESC description(DXGI_FORMAT_R8G8B8A8_UNORM, size.width, size.height, 1,
                                            static_cast<UINT>(std::bit_width(larger)),
                                            D3D11_BIND_RENDER_TARGET | D3D11_BIND_SHADER_RESOURCE);
    one.result->levels = std::log2(static_cast<float>(larger));
    return library.isMade(library.device().CreateTexture2D(&description, nullptr, one.texture.put()), one.texture,
                          "packed maps", packed_maps_source) &&
           library.isMade(library.device().CreateShaderResourceView(one.texture.get(), nullptr, one.result->view.put()),
                          one.result->view, "packed maps", packed_maps_source);
}

bool map_packer::pack(lib3d& library, entry& one)
{
    ID3D11DeviceContext& context = library.context();
    packing_buffer settings;
    settings.channel = one.channel;
    for (std::size_t i = 0; i < kind_count; ++i)
        settings.bound |= one.packed[i] ? 1 << (registers[i] - first_map_register) : 0;
    D3D11_TEXTURE2D_DESC description{};
    one.texture->GetDesc(&description);
    for (UINT level = 0; level < description.MipLevels; ++level)
    {
        const CD3D11_RENDER_TARGET_VIEW_DESC of_level(D3D11_RTV_DIMENSION_TEXTURE2D, description.Format, level);
        com_ptr<ID3D11RenderTargetView> target;
        if (!library.isMade(library.device().CreateRenderTargetView(one.texture.get(), &of_level, target.put()), target,
                            "packed maps", packed_maps_source))
            return false;
        settings.width = static_cast<std::int32_t>(std::max(description.Width >> level, 1u));
        settings.height = static_cast<std::int32_t>(std::max(description.Height >> level, 1u));
        ID3D11RenderTargetView* const targets[] = {target.get()};
        context.OMSetRenderTargets(1, targets, nullptr);
        const D3D11_VIEWPORT viewport{0, 0, static_cast<float>(settings.width), static_cast<float>(settings.height),
                                      0, 1};
        context.RSSetViewports(1, &viewport);
        for (std::size_t i = 0; i < kind_count; ++i)
        {
            ID3D11ShaderResourceView* const view = (one.packed[i] ? one.packed[i] : m_filler).get();
            context.PSSetShaderResources(registers[i], 1, &view);
        }
        library.drawPacked(settings);
    }
    return true;
}

} // namespace korvane
