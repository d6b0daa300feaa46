#include "D3D11_RENDER_LIB/overlay_layer.h"

#include "D3D11_RENDER_LIB/shader_resources.h"
#include "EASY_GUI/win32/font.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace korvane
{

namespace
{

constexpr char overlay_layer_source[] = "overlay_layer";
constexpr UINT glyph_register = 13;
constexpr int glyphs_in_row = 16;
constexpr int gap = 2; // pixels between glyphs

const D3D11_INPUT_ELEMENT_DESC overlay_elements[] = {
    {"POSITION", 0, DXGI_FORMAT_R32G32_FLOAT, 0, D3D11_APPEND_ALIGNED_ELEMENT, D3D11_INPUT_PER_VERTEX_DATA, 0},
    {"TEXCOORD", 0, DXGI_FORMAT_R32G32_FLOAT, 0, D3D11_APPEND_ALIGNED_ELEMENT, D3D11_INPUT_PER_VERTEX_DATA, 0},
    {"COLOR", 0, DXGI_FORMAT_R32G32B32A32_FLOAT, 0, D3D11_APPEND_ALIGNED_ELEMENT, D3D11_INPUT_PER_VERTEX_DATA, 0},
};

using unique_dc = unique_handle<simple_handle_policy<HDC, &DeleteDC>>;
using unique_bitmap = unique_handle<simple_handle_policy<HBITMAP, &DeleteObject>>;

struct glyph_picture
{
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> coverage;
};

// All glyphs in a grid, white on black; the last cell is white all over.
glyph_picture drawGlyphs(unsigned dpi, glyph_table& table)
{
    const font letters(dpi, font::weight::regular);
    const unique_dc context(CreateCompatibleDC(nullptr));
    SelectObject(context.get(), letters.handle());
    TEXTMETRICW metrics{};
    GetTextMetricsW(context.get(), &metrics);
    const int cell_width = metrics.tmMaxCharWidth + gap;
    const int cell_height = metrics.tmHeight + gap;
    glyph_picture picture;
    picture.width = cell_width * glyphs_in_row;
    picture.height = cell_height * (256 / glyphs_in_row) + gap;

    BITMAPINFO information{};
    information.bmiHeader.biSize = sizeof information.bmiHeader;
    information.bmiHeader.biWidth = picture.width;
    information.bmiHeader.biHeight = -picture.height;
    information.bmiHeader.biPlanes = 1;
    information.bmiHeader.biBitCount = 32;
    void* pixels = nullptr;
    const unique_bitmap bitmap(CreateDIBSection(nullptr, &information, DIB_RGB_COLORS, &pixels, nullptr, 0));
    picture.coverage.assign(static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height), 0);
    if (!bitmap)
        return picture; // without text
    const HGDIOBJ before = SelectObject(context.get(), bitmap.get());
    SetTextColor(context.get(), RGB(255, 255, 255));
    SetBkMode(context.get(), TRANSPARENT);
    for (int code = 32; code < 256; ++code)
    {
        const auto letter = static_cast<wchar_t>(code);
        const int x = code % glyphs_in_row * cell_width;
        const int y = code / glyphs_in_row * cell_height;
        SIZE size{};
        GetTextExtentPoint32W(context.get(), &letter, 1, &size);
        TextOutW(context.get(), x, y, &letter, 1);
        table.glyphs[static_cast<std::size_t>(code)] = {static_cast<float>(x), static_cast<float>(y),
                                                        static_cast<float>(x + std::min<int>(size.cx + 1, cell_width)),
                                                        static_cast<float>(y + metrics.tmHeight),
                                                        static_cast<float>(size.cx)};
    }
    table.glyphs[32].right = table.glyphs[32].left; // nothing to draw
    GdiFlush();
    const auto* const colors = static_cast<const std::uint8_t*>(pixels);
    for (std::size_t i = 0; i < picture.coverage.size(); ++i)
        picture.coverage[i] = colors[i * 4 + 1];
    SelectObject(context.get(), before);
    SelectObject(context.get(), GetStockObject(SYSTEM_FONT));

    std::fill(picture.coverage.end() - picture.width * gap, picture.coverage.end(), std::uint8_t{255});
    table.texture_width = static_cast<float>(picture.width);
    table.texture_height = static_cast<float>(picture.height);
    table.line_height = static_cast<float>(metrics.tmHeight);
    table.solid_x = table.texture_width / 2;
    table.solid_y = table.texture_height - 1;
    return picture;
}

} // namespace

bool overlay_layer::create(lib3d& library, unsigned dpi)
{
    ID3D11Device& device = library.device();
    const glyph_picture picture = drawGlyphs(dpi, m_font);
    const CD3D11_TEXTURE2D_DESC description(DXGI_FORMAT_R8_UNORM, static_cast<UINT>(picture.width),
                                            static_cast<UINT>(picture.height), 1, 1, D3D11_BIND_SHADER_RESOURCE,
                                            D3D11_USAGE_IMMUTABLE);
    D3D11_SUBRESOURCE_DATA contents{};
    contents.pSysMem = picture.coverage.data();
    contents.SysMemPitch = static_cast<UINT>(picture.width);
    const CD3D11_BUFFER_DESC vertices(overlay_text::vertex_capacity * sizeof(gpu_overlay_vertex),
                                      D3D11_BIND_VERTEX_BUFFER, D3D11_USAGE_DYNAMIC, D3D11_CPU_ACCESS_WRITE);
    CD3D11_BLEND_DESC blend{CD3D11_DEFAULT()};
    blend.RenderTarget[0].BlendEnable = TRUE;
    blend.RenderTarget[0].SrcBlend = D3D11_BLEND_SRC_ALPHA;
    blend.RenderTarget[0].DestBlend = D3D11_BLEND_INV_SRC_ALPHA;
    blend.RenderTarget[0].DestBlendAlpha = D3D11_BLEND_ONE;
    com_ptr<ID3D11Texture2D> texture;
    return library.isMade(device.CreateTexture2D(&description, &contents, texture.put()), texture, "glyphs",
                          overlay_layer_source) &&
           library.isMade(device.CreateShaderResourceView(texture.get(), nullptr, m_glyphs.put()), m_glyphs, "glyphs",
                          overlay_layer_source) &&
           library.isMade(device.CreateBuffer(&vertices, nullptr, m_vertices.put()), m_vertices, "overlay vertices",
                          overlay_layer_source) &&
           library.isMade(device.CreateBlendState(&blend, m_blend.put()), m_blend, "overlay blend",
                          overlay_layer_source) &&
           library.createVertexShader(KORVANE_OVERLAY_VS, overlay_elements, "overlay_vs", m_vs, &m_layout) &&
           library.createPixelShader(KORVANE_OVERLAY_PS, "overlay_ps", m_ps);
}

void overlay_layer::draw(lib3d& library, const overlay_text& content) const
{
    ID3D11DeviceContext& context = library.context();
    const std::span<const gpu_overlay_vertex> vertices = content.vertices();
    D3D11_MAPPED_SUBRESOURCE mapped{};
    if (vertices.empty() || FAILED(context.Map(m_vertices.get(), 0, D3D11_MAP_WRITE_DISCARD, 0, &mapped)))
        return;
    std::memcpy(mapped.pData, vertices.data(), vertices.size_bytes());
    context.Unmap(m_vertices.get(), 0);
    ID3D11Buffer* buffer = m_vertices.get();
    ID3D11ShaderResourceView* glyphs = m_glyphs.get();
    const UINT stride = sizeof(gpu_overlay_vertex);
    const UINT offset = 0;
    context.IASetInputLayout(m_layout.get());
    context.IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLELIST);
    context.IASetVertexBuffers(0, 1, &buffer, &stride, &offset);
    context.VSSetShader(m_vs.get(), nullptr, 0);
    context.PSSetShader(m_ps.get(), nullptr, 0);
    context.PSSetShaderResources(glyph_register, 1, &glyphs);
    context.OMSetBlendState(m_blend.get(), nullptr, 0xffffffff);
    context.Draw(static_cast<UINT>(vertices.size()), 0);
}

} // namespace korvane
