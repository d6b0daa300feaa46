#include "D3D11_RENDER_LIB/gpu_textures.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace korvane
{

namespace
{

constexpr char gpu_textures_source[] = "sub_mesh";
constexpr std::size_t portion_bytes = std::size_t{2} << 20; // a millisecond or two

// 8 x 8 squares over the whole texture, so that it shows at any size.
bool createCheckerboard(lib3d& library, texture_view& view)
{
    constexpr std::uint32_t size = 64, square = 8;
    std::array<std::uint32_t, std::size_t{size} * size> pixels;
    for (std::uint32_t i = 0; i < pixels.size(); ++i)
        pixels[i] = ((i / size / square + i % size / square) & 1) != 0 ? 0xffff00ff : 0xff101010;
    dds_image image;
    image.format = dds_format::rgba8_srgb;
    image.width = image.height = size;
    image.mip_count = image.array_size = 1;
    image.subresources = {{std::as_bytes(std::span(pixels)), size, size, size * 4, size}};
    failure why;
    if (!createDdsTexture(library.device(), image, view, why))
        return !library.isLost(); // an empty place is all that is left to show
    return library.isMade(S_OK, view, "checkerboard", gpu_textures_source);
}

device_formats formatsOf(lib3d& library)
{
    constexpr UINT needed = D3D11_FORMAT_SUPPORT_TEXTURE2D | D3D11_FORMAT_SUPPORT_SHADER_SAMPLE;
    device_formats formats{library.isSoftware(), {}};
    for (std::size_t format = 1; format < formats.refused.size(); ++format)
    {
        UINT support = 0;
        const HRESULT answer = library.device().CheckFormatSupport(static_cast<DXGI_FORMAT>(format), &support);
        formats.refused.set(format, FAILED(answer) || (support & needed) != needed);
    }
    return formats;
}

// A small texture with mip maps, as most have.
bool createPending(lib3d& library, texture_view& view)
{
    constexpr std::array<std::uint32_t, 16> white = {~0u, ~0u, ~0u, ~0u, ~0u, ~0u, ~0u, ~0u,
                                                     ~0u, ~0u, ~0u, ~0u, ~0u, ~0u, ~0u, ~0u};
    const auto bytes = std::as_bytes(std::span(white));
    dds_image image;
    image.format = dds_format::rgba8;
    image.width = image.height = 4;
    image.mip_count = 3;
    image.array_size = 1;
    image.subresources = {{bytes, 4, 4, 16, 4}, {bytes, 2, 2, 8, 2}, {bytes, 1, 1, 4, 1}};
    failure why;
    if (!createDdsTexture(library.device(), image, view, why))
        return !library.isLost();
    return library.isMade(S_OK, view, "texture to come", gpu_textures_source);
}

} // namespace

std::shared_ptr<const gpu_texture> gpu_textures::find(const std::shared_ptr<const scene_texture>& texture,
                                                      bool is_colour)
{
    if (!texture)
        return nullptr;
    if (const auto known = m_entries.find(texture); known != m_entries.end())
    {
        known->second.is_colour = known->second.is_colour && is_colour;
        return known->second.shown;
    }
    entry made;
    if (m_po_former != nullptr)
    {
        const auto& former = m_po_former->m_entries;
        if (const auto same = former.find(texture); same != former.end())
            made = same->second;
        else if (const auto named = std::find_if(
                     former.begin(), former.end(),
                     [&](const auto& one) { return one.first->path() == texture->path() && one.second.is_there; });
                 named != former.end())
            made.shown = std::make_shared<gpu_texture>(*named->second.shown);
    }
    if (!made.shown)
        made.shown = std::make_shared<gpu_texture>();
    made.is_colour = is_colour;
    m_order.push_back(texture);
    return m_entries.emplace(texture, std::move(made)).first->second.shown;
}

bool gpu_textures::load(lib3d& library)
{
    std::vector<texture_request> wanted;
    for (const auto& texture : m_order)
    {
        entry& known = m_entries.at(texture);
        known.is_there = known.is_there && (known.is_colour || !known.is_kept_as_colour);
        if (!known.is_there)
            wanted.emplace_back(texture, known.is_colour);
    }
    texture_view pending;
    if (!wanted.empty() && !createPending(library, pending))
        return false;
    for (const texture_request& one : wanted)
        m_entries.at(one.texture).shown->pending = pending;
    m_reading.request(std::move(wanted), formatsOf(library));
    return true;
}

bool gpu_textures::goOn(lib3d& library, std::chrono::milliseconds patience)
{
    const auto end = std::chrono::steady_clock::now() + patience;
    do
    {
        if (!takeOver(library, false))
            return false;
    } while (m_po_current && std::chrono::steady_clock::now() < end);
    return true;
}

bool gpu_textures::finish(lib3d& library)
{
    do
    {
        if (!takeOver(library, true))
            return false;
    } while (m_po_current);
    return true;
}

// One portion. Afterwards there is a current texture unless none is ready.
bool gpu_textures::takeOver(lib3d& library, bool waits)
{
    if (!m_po_current)
    {
        m_po_current = waits ? m_reading.wait() : m_reading.take();
        return !m_po_current || begin(library);
    }
    if (m_upload.view())
    {
        if (m_upload.goOn(library.context(), portion_bytes))
            end(m_upload.view());
        else
            return true;
    }
    m_po_current = waits ? m_reading.wait() : m_reading.take();
    return !m_po_current || begin(library);
}

bool gpu_textures::begin(lib3d& library)
{
    m_upload = dds_upload();
    read_texture& read = *m_po_current;
    if (!m_entries.contains(read.wanted.texture)) // of a former scene
        return true;
    std::size_t bytes = 0;
    for (const dds_subresource& part : read.image.subresources)
        bytes += part.bytes.size();
    if (read.why)
        return giveUp(library);
    texture_view view;
    const bool is_made = bytes > portion_bytes ? m_upload.begin(library.device(), read.image, read.why)
                                               : createDdsTexture(library.device(), read.image, view, read.why);
    if (!is_made)
        return giveUp(library);
    const texture_view& made = m_upload.view() ? m_upload.view() : view;
    if (!library.isMade(S_OK, made, read.wanted.texture->path().c_str(), gpu_textures_source))
        return false;
    if (view)
        end(view);
    return true;
}

bool gpu_textures::giveUp(lib3d& library)
{
    if (library.isLost())
        return false;
    failure& why = m_po_current->why;
    why.path = m_po_current->wanted.texture->path();
    tell(m_log, describe(why) + "; a checkerboard is in its place");
    if (!m_checkerboard && !createCheckerboard(library, m_checkerboard))
        return false;
    end(m_checkerboard);
    return true;
}

void gpu_textures::end(const texture_view& view)
{
    entry& known = m_entries.at(m_po_current->wanted.texture);
    D3D11_SHADER_RESOURCE_VIEW_DESC description{};
    if (view)
        view->GetDesc(&description);
    known.shown->view = view;
    const auto side = static_cast<float>(std::max(m_po_current->image.width, m_po_current->image.height));
    known.shown->levels = std::log2(std::max(side, 1.0f));
    known.shown->is_srgb = isSrgb(static_cast<dds_format>(description.Format));
    known.is_there = true;
    known.is_kept_as_colour = m_po_current->wanted.is_colour;
    m_po_current->wanted.texture->letGo();
}

} // namespace korvane
