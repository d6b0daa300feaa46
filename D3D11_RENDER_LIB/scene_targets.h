#pragma once

// What a frame is drawn into before it reaches the screen or a picture: three targets (light as float, normals as unorm
// data, plain colour as sRGB, for eight linear bits would show bands) and depth, all of one size. The view that is
// shown passes through the final pass into the target that the caller owns.

#include "D3D11_RENDER_LIB/lib3d.h"

#include <array>
#include <cstdint>
#include <vector>

namespace korvane
{

enum class shown_target // by the number of the target
{
    plain,
    lit,
    normals
};

// What a frame is to show, and how.
struct shown_frame
{
    shown_target shown = shown_target::lit;
    float background = 0;      // (c, c, 1.3 c); linear
    bool is_clear = false;     // nothing is behind the model
    bool has_outlines = false; // of the groups that are marked
    // The light is drawn as the screen has it, tone-mapped and encoded, into one target with a byte a channel, the
    // marks as alpha. Only what knows of it can be drawn then: surfaces with the usual lights, and lines.
    bool is_encoded = false;
};

// Which part of a picture the targets hold, when they do not hold all of it. A part lies wholly within the picture.
struct picture_part
{
    UINT width = 0; // of the whole picture, pixels
    UINT height = 0;
    UINT left = 0; // of the part
    UINT top = 0;
    // All that has a place in the scene is moved by this on the picture, by less than a pixel: for several samples. By
    // who draws it: not every driver takes fractions of pixels in a viewport.
    float shift_x = 0;
    float shift_y = 0;
    bool has_samples = false; // several of it become one picture: edges are not softened besides
};

class scene_targets
{
public:
    static constexpr std::size_t target_count = 3;
    // A pixel of the shown picture depends on pixels of the scene that far away.
    static constexpr UINT reach = 2;

    // Replaces the targets by ones of that size; width and height are above zero. With more than one sample a pixel the
    // edges of triangles are smooth; where the device has no targets with so many, there is one. False when the device
    // was lost.
    [[nodiscard]] bool create(lib3d& library, UINT width, UINT height, UINT samples = 1);
    void release();

    // From the next begin() on. After create() the targets are the whole picture.
    void show(const picture_part& part) { m_part = part; }

    // What is drawn in these targets is shown enlarged, in outputs of that size. False when the device was lost.
    [[nodiscard]] bool enlargeTo(lib3d& library, UINT width, UINT height);
    picture_part shownPart() const { return isEnlarged() ? picture_part{m_output_width, m_output_height} : m_part; }
    // Of the picture as it is shown.
    float aspect() const { return static_cast<float>(shownPart().width) / static_cast<float>(shownPart().height); }

    UINT width() const { return m_width; }
    UINT height() const { return m_height; }
    const picture_part& part() const { return m_part; }
    bool isWhole() const { return m_part.width == m_width && m_part.height == m_height && !m_part.has_samples; }

    UINT samples() const { return m_samples; }

    // Binds the targets and the whole-size viewport and clears everything, the output too: the background is as the
    // frame says, in the output as finish() shows it; depth 1, stencil 0. Begins the library's scene.
    void begin(lib3d& library, ID3D11RenderTargetView* output, const shown_frame& frame) const;
    void bind(lib3d& library, const shown_frame& frame) const; // again, after something else was drawn into
    // For what is given in pixels of the whole picture, behind finish(): into the same output.
    void usePicturePixels(lib3d& library) const;
    // Shows the frame in the output. Beyond the area there is the background alone.
    void finish(lib3d& library, ID3D11RenderTargetView* output, const shown_frame& frame,
                const screen_area& area) const;
    screen_area whole() const
    {
        return {0, 0, static_cast<std::int32_t>(m_width), static_cast<std::int32_t>(m_height)};
    }

    // On software devices, with one sample: surfaces are drawn first, as what shading needs to know of each pixel, and
    // are shaded then, each pixel once. In forward drawing most of the time goes into pixels beside small triangles.
    // Not for parts of pictures and several samples: they are drawn forward.
    bool hasSurfaces() const { return m_surfaces.target && isWhole(); }
    void bindSurfaces(lib3d& library) const;
    void bindShading(lib3d& library, const shown_frame& frame) const; // the targets, and the surfaces to read
    void endShading(lib3d& library) const;

private:
    // A target that can be looked at afterwards.
    struct layer
    {
        com_ptr<ID3D11Texture2D> texture;
        com_ptr<ID3D11RenderTargetView> target;
        com_ptr<ID3D11ShaderResourceView> view;
    };

    void enlarge(lib3d& library, ID3D11RenderTargetView* output, const screen_area& area) const;
    bool isEnlarged() const { return m_output_width != m_width || m_output_height != m_height; }
    [[nodiscard]] bool createLayer(lib3d& library, DXGI_FORMAT format, const char* name, layer& made);

    UINT m_width = 0;
    UINT m_height = 0;
    UINT m_output_width = 0; // the same, unless it is enlarged
    UINT m_output_height = 0;
    UINT m_samples = 1;
    picture_part m_part;
    std::array<com_ptr<ID3D11Texture2D>, target_count> m_drawn;    // with all samples
    std::array<com_ptr<ID3D11Texture2D>, target_count> m_resolved; // what is shown; with one sample the same
    std::array<com_ptr<ID3D11RenderTargetView>, target_count> m_targets;
    std::array<com_ptr<ID3D11ShaderResourceView>, target_count> m_views;
    com_ptr<ID3D11DepthStencilView> m_depth;
    layer m_surfaces; // empty: not on this device
    layer m_encoded;  // of frames that are encoded
    layer m_finished; // as the screen has it, to be enlarged; made when that is wanted first
};

// A picture in memory that can be drawn into and read back.
class picture_target
{
public:
    [[nodiscard]] bool create(lib3d& library, UINT width, UINT height); // false: the device was lost
    ID3D11RenderTargetView* view() const { return m_view.get(); }
    // Rows from the top, four bytes a pixel. False when the device was lost.
    [[nodiscard]] bool read(lib3d& library, std::vector<std::uint8_t>& rgba) const;

private:
    UINT m_width = 0;
    UINT m_height = 0;
    com_ptr<ID3D11Texture2D> m_texture;
    com_ptr<ID3D11Texture2D> m_staging;
    com_ptr<ID3D11RenderTargetView> m_view;
};

} // namespace korvane
