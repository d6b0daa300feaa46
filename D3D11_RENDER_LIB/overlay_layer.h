#pragma once

// The device's half of what is written over the picture: the glyphs of the system's font in a texture, and the buffer
// out of which they are drawn. On the thread that draws.

#include "D3D11_RENDER_LIB/lib3d.h"
#include "D3D11_RENDER_LIB/overlay_text.h"

namespace korvane
{

class overlay_layer
{
public:
    // The font for so many dots per inch. False when the device was lost.
    [[nodiscard]] bool create(lib3d& library, unsigned dpi);
    const glyph_table& font() const { return m_font; }
    // Blends over what is in the bound target, after the final pass (which sets the target's size for it).
    void draw(lib3d& library, const overlay_text& content) const;

private:
    glyph_table m_font;
    com_ptr<ID3D11ShaderResourceView> m_glyphs;
    com_ptr<ID3D11Buffer> m_vertices;
    com_ptr<ID3D11VertexShader> m_vs;
    com_ptr<ID3D11PixelShader> m_ps;
    com_ptr<ID3D11InputLayout> m_layout;
    com_ptr<ID3D11BlendState> m_blend;
};

} // namespace korvane
