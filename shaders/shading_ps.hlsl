// Pixel shader of the shading pass: the surfaces of one group, each pixel once (surface_ps).
#define OF_SURFACES
#define WITHOUT_MAIN
#include "model_ps.hlsl"
#include "surface.hlsli"

cbuffer ShadingBuffer : register(b3) // 48 bytes; shading_buffer in D3D11_RENDER_LIB/gpu_layouts.h
{
    float4 ray; // through the upper left corner of the picture, world space, any length
    float4 ray_x; // what it gains for each pixel
    float4 ray_y;
};

Texture2D<float4> Place : register(t13);
Texture2D<float4> Frame : register(t14);

model_targets main(float4 position : SV_Position)
{
    const int3 at = int3(position.xy, 0);
    const float4 place = Place.Load(at);
    const float4 frame = Frame.Load(at);
    const float3 way = normalize(ray.xyz + ray_x.xyz * position.x + ray_y.xyz * position.y);
    footprint = place.z;
    const float3 normal = unfolded(frame.xy);
    model_pixel pixel;
    pixel.clip = position;
    pixel.uv = place.xy;
    pixel.normal = normal;
    pixel.tangent = unfolded(frame.zw);
    pixel.binormal = cross(normal, pixel.tangent) * (place.w < 0 ? -1 : 1);
    pixel.world = eyePosistion + way * abs(place.w);
    pixel.view = -way;
    pixel.heat = 0;
    return shaded(pixel, normal);
}
