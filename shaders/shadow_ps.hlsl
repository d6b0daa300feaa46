// Pixel shader of the shadow map: depth alone, with holes where the texture has them.
#include "model_vertex.hlsli"
#include "ps_const_buffers.hlsli"
#include "textures.hlsli"

void main(model_pixel pixel)
{
    if (has_alpha == 1 && (debug_flags.z & bound_diffuse) != 0 && tex_diffuse.Sample(SampleType, pixel.uv).a < 0.5)
        discard;
}
