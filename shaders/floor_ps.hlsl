// Pixel shader of the floor: nothing but the shadow on it, blended over what is there.
#include "model_vertex.hlsli"
#include "shadow.hlsli"

struct model_targets
{
    float4 base : SV_Target0;
    float4 lit : SV_Target1;
    float4 normal : SV_Target2;
};

model_targets main(model_pixel pixel)
{
    model_targets result;
    result.base = 0;
    result.normal = 0;
    result.lit = float4(0, 0, 0, (1 - lightReaching(pixel.world, float3(0, 0, 0))) * darkness);
    return result;
}
