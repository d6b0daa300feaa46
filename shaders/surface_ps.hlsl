// Pixel shader of the surface pass: what the shading pass needs to know, without looking at any texture but for alpha.
// Where the processor draws, most of what a small triangle costs is shading of pixels beside it.
#define WITHOUT_MAIN
#include "model_ps.hlsl"
#include "surface.hlsli"

surface_targets main(model_pixel pixel, bool is_front : SV_IsFrontFace)
{
#ifdef WITH_ALPHA
    if (isBound(bound_diffuse) && tex_diffuse.Sample(SampleType, pixel.uv).a < 0.5)
        discard;
#endif
    const float3 normal = surfaceNormal(pixel, is_front);
    float3 tangent, binormal;
    tangentFrame(pixel, normal, tangent, binormal);
    const float2 across = ddx(pixel.uv), down = ddy(pixel.uv);
    const float side = dot(cross(normal, tangent), binormal) < 0 ? -1 : 1;
    const float3 way = pixel.world - eyePosistion;
    surface_targets result;
    result.place = float4(pixel.uv, 0.5 * log2(max(max(dot(across, across), dot(down, down)), 1e-20)),
                          side * sqrt(dot(way, way)));
    result.frame = float4(folded(normal), folded(dot(tangent, tangent) > 0 ? tangent : float3(1, 0, 0)));
    return result;
}
