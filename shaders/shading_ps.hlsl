// Pixel shader of the shading pass: the surfaces of one group, each pixel once (surface_ps).
#define OF_SURFACES
#define WITHOUT_MAIN
#include "model_ps.hlsl"
#include "screen_colour.hlsli"
#include "surface.hlsli"

Texture2D<uint4> Surfaces : register(t13);

model_targets shadedAt(float4 position)
{
    const unpacked_surface kept = unpacked(Surfaces.Load(int3(position.xy, 0)));
    const float3 way = ray.xyz + ray_x.xyz * position.x + ray_y.xyz * position.y;
    footprint = kept.footprint;
    model_pixel pixel;
    pixel.clip = position;
    pixel.uv = kept.uv;
    pixel.normal = kept.normal;
    pixel.tangent = kept.tangent;
    pixel.binormal = cross(kept.normal, kept.tangent) * kept.side;
    pixel.world = eyePosistion + way * kept.depth;
    pixel.view = -way;
    pixel.heat = 0;
    return shaded(pixel, kept.normal);
}

#ifdef OF_USUAL_LIGHTS
float4 main(float4 position : SV_Position) : SV_Target
{
    const model_targets result = shadedAt(position);
    return float4(encodedQuickly(toneMapped(result.lit.rgb)), result.normal.a);
}
#else
model_targets main(float4 position : SV_Position)
{
    return shadedAt(position);
}
#endif
