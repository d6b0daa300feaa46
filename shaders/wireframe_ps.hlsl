// Pixel shader of the wireframe draw mode: one colour, shaded a little by depth of angle.
#include "model_vertex.hlsli"
#include "ps_const_buffers.hlsli"
#include "screen_colour.hlsli"

struct model_targets
{
    float4 base : SV_Target0;
    float4 lit : SV_Target1;
    float4 normal : SV_Target2;
};

float4 edgeColor(model_pixel pixel)
{
    const float facing = abs(dot(normalize(pixel.normal), normalize(pixel.view)));
    const float3 color =
        (debug_flags.w & draw_wire_over) != 0 ? float3(0.03, 0.16, 0.30) : float3(0.35, 0.62, 0.85);
    return float4(color * (0.35 + 0.65 * facing), 1);
}

#ifdef AS_ON_SCREEN
float4 main(model_pixel pixel) : SV_Target
{
    return float4(encodedQuickly(edgeColor(pixel).rgb), groupMark());
}
#else
model_targets main(model_pixel pixel)
{
    model_targets result;
    result.lit = edgeColor(pixel);
    result.normal = float4(normalize(pixel.normal) * 0.5 + 0.5, groupMark());
    result.base = result.lit;
    return result;
}
#endif
