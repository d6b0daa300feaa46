// Pixel shader of the surface pass for groups whose vertices all have normals, tangents and binormals (frame_vs).
#include "frame_vertex.hlsli"
#include "surface.hlsli"

uint4 main(frame_pixel pixel) : SV_Target
{
    return packedSurface(pixel.uv.xy, pixel.clip.w, pixel.normal, pixel.tangent, pixel.uv.z);
}
