#include "D3D11_RENDER_LIB/overlay_text.h"

#include <cmath>
#include <cstdint>

namespace korvane
{

namespace
{

// Calls visit with each character's glyph; malformed bytes and what is beyond Latin-1 are question marks.
template <class visitor>
void forEachGlyph(const glyph_table& font, std::string_view line, visitor&& visit)
{
    for (std::size_t i = 0; i < line.size(); ++i)
    {
        const auto byte = static_cast<unsigned char>(line[i]);
        std::size_t code = byte;
        if (byte >= 0x80)
        {
            const bool is_latin = (byte == 0xc2 || byte == 0xc3) && i + 1 < line.size();
            code = is_latin ? (byte & 3u) << 6 | (static_cast<unsigned char>(line[i + 1]) & 0x3fu) : '?';
            while (i + 1 < line.size() && (static_cast<unsigned char>(line[i + 1]) & 0xc0) == 0x80)
                ++i;
        }
        visit(font.glyphs[code < 256 ? code : '?']);
    }
}

} // namespace

void overlay_text::quad(const std::array<float, 4>& place, const std::array<float, 4>& uv, const gpu_float4& color)
{
    if (m_vertices.size() + 6 > vertex_capacity)
        return;
    const auto corner = [&](std::size_t x, std::size_t y) {
        m_vertices.push_back(
            {{place[x], place[y]}, {uv[x] / m_font.texture_width, uv[y] / m_font.texture_height}, color});
    };
    for (const auto& [x, y] : {std::pair(0u, 1u), {2u, 1u}, {0u, 3u}, {0u, 3u}, {2u, 1u}, {2u, 3u}})
        corner(x, y);
}

void overlay_text::box(float left, float top, float right, float bottom, const gpu_float4& color)
{
    const float x = m_font.solid_x;
    const float y = m_font.solid_y;
    quad({left, top, right, bottom}, {x, y, x, y}, color);
}

float overlay_text::text(float left, float top, std::string_view line, const gpu_float4& color)
{
    float x = std::round(left); // glyphs are sharp on whole pixels
    const float y = std::round(top);
    forEachGlyph(m_font, line, [&](const glyph_table::glyph& glyph) {
        if (glyph.right > glyph.left)
            quad({x, y, x + glyph.right - glyph.left, y + glyph.bottom - glyph.top},
                 {glyph.left, glyph.top, glyph.right, glyph.bottom}, color);
        x += glyph.advance;
    });
    return x;
}

void overlay_text::label(float left, float top, std::string_view line, const gpu_float4& color)
{
    constexpr gpu_float4 edge{0, 0, 0, 0.75f};
    for (const auto& [x, y] : {std::pair(-1.0f, 0.0f), {1.0f, 0.0f}, {0.0f, -1.0f}, {0.0f, 1.0f}})
        text(left + x, top + y, line, edge);
    text(left, top, line, color);
}

float overlay_text::widthOf(std::string_view line) const
{
    float width = 0;
    forEachGlyph(m_font, line, [&width](const glyph_table::glyph& glyph) { width += glyph.advance; });
    return width;
}

} // namespace korvane
