// Vertex shader of what is written over the picture: places in pixels, from the upper left corner.
#include "final_buffer.hlsli"

struct overlay_vertex // 32 bytes; gpu_overlay_vertex in D3D11_RENDER_LIB/gpu_layouts.h
{
    float2 at : POSITION;
    float2 uv : TEXCOORD;
    float4 color : COLOR;
};

struct overlay_pixel
{
    float4 clip : SV_Position;
    float2 uv : TEXCOORD;
    float4 color : COLOR;
};

overlay_pixel main(overlay_vertex vertex)
{
    overlay_pixel result;
    result.clip = float4(vertex.at / float2(size) * float2(2, -2) + float2(-1, 1), 0, 1);
    result.uv = vertex.uv;
    result.color = vertex.color;
    return result;
}
