// The key light's shadow: how much of it reaches a place. The map holds the depth that the light sees first.
cbuffer ShadowBuffer : register(b2) // 80 bytes; shadow_buffer in D3D11_RENDER_LIB/gpu_layouts.h
{
    matrix to_light; // from the world to the map: x and y -1..1, z 0..1
    float texel;     // of the map, in its texture coordinates
    float slope;     // how far along the normal a place is moved before it is compared, world units
    float darkness;  // of the floor, 0..1
    float pad;
};

Texture2D<float> tex_shadow : register(t3);
SamplerComparisonState s_shadow : register(s5);

float lightReaching(float3 world, float3 normal)
{
    const float4 seen = mul(float4(world + normal * slope, 1), to_light);
    const float2 at = seen.xy * float2(0.5, -0.5) + 0.5;
    if (any(at < 0) || any(at > 1))
        return 1;
    float sum = 0;
    [unroll]
    for (int y = -2; y <= 2; ++y)
        [unroll]
        for (int x = -2; x <= 2; ++x)
            sum += tex_shadow.SampleCmpLevelZero(s_shadow, at + float2(x, y) * texel, seen.z);
    return sum / 25;
}
