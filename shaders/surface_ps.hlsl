// Pixel shader of the surface pass: what the shading pass needs to know, without looking at any texture but for alpha.
// Where the processor draws, most of what a small triangle costs is shading of pixels beside it.
#define WITHOUT_MAIN
#include "model_ps.hlsl"
#include "surface.hlsli"

uint4 main(model_pixel pixel, bool is_front : SV_IsFrontFace) : SV_Target
{
#ifdef WITH_ALPHA
    if (isBound(bound_diffuse) && tex_diffuse.Sample(SampleType, pixel.uv).a < 0.5)
        discard;
#endif
    const float3 normal = surfaceNormal(pixel, is_front);
    float3 tangent, binormal;
    tangentFrame(pixel, normal, tangent, binormal);
    const float side = dot(cross(normal, tangent), binormal) < 0 ? -1 : 1;
    return packedSurface(pixel.uv, pixel.clip.w, normal, dot(tangent, tangent) > 0 ? tangent : float3(1, 0, 0), side);
}
