// Packs what shading looks at of three maps into one (D3D11_RENDER_LIB/packed_maps.h): x and y of the normal, the
// smoothness, how much of the light from around there is. Drawn once for each mip level, over all of it.
#include "textures.hlsli"
#include "data_maps.hlsli"

cbuffer PackingBuffer : register(b1) // 16 bytes; packing_buffer in D3D11_RENDER_LIB/gpu_layouts.h
{
    int2 size;   // of the level that is drawn, texels
    int bound;   // bound_...: the maps that are there
    int channel; // of the gloss map, 0..3
};

// Of the level that comes nearest in size, for maps of a group need not be equally large.
float4 texelOf(Texture2D map, float2 uv)
{
    uint width, height, count;
    map.GetDimensions(0, width, height, count);
    const float larger = (float)max(width, height) / max(size.x, size.y);
    const int level = clamp((int)round(log2(max(larger, 1))), 0, (int)count - 1);
    map.GetDimensions(level, width, height, count);
    const uint2 extent = uint2(width, height);
    const float2 place = uv * extent + (extent - 0.5); // one turn further, so that nothing is below 0
    const uint2 first = uint2(place) % extent;
    const uint2 next = (first + 1) % extent;
    const float2 part = frac(place);
    return lerp(lerp(map.Load(int3(first, level)), map.Load(int3(next.x, first.y, level)), part.x),
                lerp(map.Load(int3(first.x, next.y, level)), map.Load(int3(next, level)), part.x), part.y);
}

float4 main(float4 position : SV_Position) : SV_Target
{
    const float2 uv = position.xy / size;
    float4 packed = float4(0.5, 0.5, usual_smoothness, 1);
    if ((bound & bound_normal) != 0)
        packed.xy = normalOf(texelOf(tex_normal, uv));
    if ((bound & bound_gloss) != 0)
        packed.z = texelOf(tex_gloss_map, uv)[channel];
    if ((bound & bound_mask) != 0)
        packed.w = occlusionOf(texelOf(tex_mask, uv));
    return packed;
}
