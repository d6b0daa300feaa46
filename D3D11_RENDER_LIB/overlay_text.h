#pragma once

// What is written over the picture, before any Direct3D call: boxes and lines of text as triangles in pixels. Portable.

#include "D3D11_RENDER_LIB/gpu_layouts.h"

#include <array>
#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace korvane
{

// The glyphs of one font in one texture, by their Latin-1 codes; what is beyond is shown as a question mark.
struct glyph_table
{
    struct glyph
    {
        float left = 0, top = 0, right = 0, bottom = 0; // in the texture, pixels
        float advance = 0;                              // to the next one, pixels
    };
    std::array<glyph, 256> glyphs{};
    float texture_width = 1; // pixels
    float texture_height = 1;
    float line_height = 16; // pixels
    // A place that is covered whole, for boxes.
    float solid_x = 0;
    float solid_y = 0;
};

class overlay_text
{
public:
    static constexpr std::size_t vertex_capacity = 6 * 8192; // what is beyond is left out

    explicit overlay_text(const glyph_table& font) : m_font(font) { m_vertices.reserve(vertex_capacity); }

    void clear() { m_vertices.clear(); }
    void box(float left, float top, float right, float bottom, const gpu_float4& color);
    // One line of UTF-8 with its upper left corner there; gives the x where it ends.
    float text(float left, float top, std::string_view line, const gpu_float4& color);
    // The same with a dark edge, to be read over a picture.
    void label(float left, float top, std::string_view line, const gpu_float4& color);
    float widthOf(std::string_view line) const;
    float lineHeight() const { return m_font.line_height; }

    std::span<const gpu_overlay_vertex> vertices() const { return m_vertices; }

private:
    void quad(const std::array<float, 4>& place, const std::array<float, 4>& uv, const gpu_float4& color);

    const glyph_table& m_font;
    std::vector<gpu_overlay_vertex> m_vertices; // never grows beyond what is reserved
};

} // namespace korvane
