#pragma once

// Makes Direct3D 11 textures of DDS files in memory, with all their mip maps, array elements and cube faces.

#include "DDSTextureLoader/dds_image.h"
#include "EASY_GUI/win32/com_ptr.h"

#include <d3d11.h>

#include <cstddef>

namespace korvane
{

// An immutable texture and its view. A device's refusal (block-compressed textures must be multiples of 4 pixels) is a
// failure, not an assertion: the file is at fault. On failure view keeps its value.
[[nodiscard]] bool createDdsTexture(ID3D11Device& device, const dds_image& image,
                                    com_ptr<ID3D11ShaderResourceView>& view, failure& why);

// The same in portions, so that a large texture does not hold up a frame: nothing is to be drawn with the view before
// the last one has gone. The image's bytes are used until then.
class dds_upload
{
public:
    [[nodiscard]] bool begin(ID3D11Device& device, const dds_image& image, failure& why);
    // Hands over about that many bytes, whole rows, but at least one row; true when nothing is left.
    [[nodiscard]] bool goOn(ID3D11DeviceContext& context, std::size_t bytes);
    const com_ptr<ID3D11ShaderResourceView>& view() const { return m_view; }

private:
    dds_image m_image;
    com_ptr<ID3D11Texture2D> m_texture;
    com_ptr<ID3D11ShaderResourceView> m_view;
    std::size_t m_subresource = 0; // that goes on
    std::uint32_t m_row = 0;       // of it, of pixels or of blocks
};

} // namespace korvane
