// Pixel shader of the wireframe draw mode: one colour, shaded a little by depth of angle.
#include "model_vertex.hlsli"

struct model_targets
{
    float4 base : SV_Target0;
    float4 lit : SV_Target1;
    float4 normal : SV_Target2;
};

model_targets main(model_pixel pixel)
{
    const float facing = abs(dot(normalize(pixel.normal), normalize(pixel.view)));
    model_targets result;
    result.lit = float4(float3(0.35, 0.62, 0.85) * (0.35 + 0.65 * facing), 1);
    result.normal = float4(normalize(pixel.normal) * 0.5 + 0.5, 1);
    result.base = result.lit;
    return result;
}
