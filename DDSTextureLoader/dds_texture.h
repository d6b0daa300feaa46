#pragma once

// Makes Direct3D 11 textures of DDS files in memory, with all their mip maps, array elements and cube faces.

#include "DDSTextureLoader/dds_image.h"
#include "EASY_GUI/win32/com_ptr.h"

#include <d3d11.h>

namespace korvane
{

// An immutable texture and its view. A device's refusal (block-compressed textures must be multiples of 4 pixels) is a
// failure, not an assertion: the file is at fault. On failure view keeps its value.
[[nodiscard]] bool createDdsTexture(ID3D11Device& device, const dds_image& image,
                                    com_ptr<ID3D11ShaderResourceView>& view, failure& why);

} // namespace korvane
