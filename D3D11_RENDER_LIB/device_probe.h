#pragma once

// Whether a device draws on the processor. Asked by measuring: the adapter's flag knows only the system's own software
// device, and other ones (a virtual machine's, Wine's above Mesa) call themselves by the name of some graphics card.

#include <d3d11.h>

#include <cstddef>
#include <span>

namespace korvane
{

// Compares how long a texel of a block-compressed texture takes with one of a plain texture: to a graphics card they
// are the same, a processor unpacks a block for each. A few milliseconds, more while other programs disturb what is
// measured; leaves the context cleared. A device that refuses anything of it counts as hardware, one that is slow in
// everything as a processor. The bytes are those of the final pass's vertex shader and of probe_ps.
[[nodiscard]] bool drawsOnProcessor(ID3D11Device& device, ID3D11DeviceContext& context,
                                    std::span<const std::byte> vertex_shader, std::span<const std::byte> pixel_shader);

} // namespace korvane
