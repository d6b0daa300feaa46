// Final pass: what the scene pass has drawn, on its way to the screen. Colours get softened edges and are encoded; light
// is tone-mapped before. Data (normals) is shown value for value: 128 on the screen is 0.5 in the target.
#include "textures.hlsli"

cbuffer FinalPassBuffer : register(b1) // 16 bytes; final_pass_buffer in D3D11_RENDER_LIB/gpu_layouts.h
{
    int2 size;   // of the target, pixels
    int content; // content_light, content_colour or content_data
    int pad;
};

static const int content_light = 0;  // linear, high dynamic range
static const int content_colour = 1; // linear, 0..1
static const int content_data = 2;   // not a colour

float3 toneMapped(float3 color)
{
    // Bends highlights only: nearly the identity for dark and middle tones.
    const float peak = max(max(color.r, color.g), max(color.b, 1e-4));
    const float start = 0.6;
    const float bent = peak <= start ? peak : start + (1 - start) * (1 - exp((start - peak) / (1 - start)));
    return color * (bent / peak);
}

float3 encoded(float3 color)
{
    color = saturate(color);
    return color <= 0.0031308 ? color * 12.92 : 1.055 * pow(max(color, 1e-6), 1.0 / 2.4) - 0.055;
}

float3 shown(int2 at)
{
    const float3 color = ScreenSpace.Load(int3(clamp(at, 0, size - 1), 0)).rgb;
    return content == content_light ? toneMapped(color) : color;
}

float brightness(float3 color)
{
    return sqrt(dot(saturate(color), float3(0.299, 0.587, 0.114)));
}

float4 main(float4 position : SV_Position) : SV_Target
{
    const int2 at = int2(position.xy);
    const float3 middle = shown(at);
    if (content == content_data)
        return float4(middle, 1);
    const float3 left = shown(at - int2(1, 0));
    const float3 right = shown(at + int2(1, 0));
    const float3 above = shown(at - int2(0, 1));
    const float3 below = shown(at + int2(0, 1));

    // Steps in brightness are blended along the edge, the more the higher the step.
    const float m = brightness(middle);
    const float4 around = float4(brightness(left), brightness(right), brightness(above), brightness(below));
    const float lowest = min(m, min(min(around.x, around.y), min(around.z, around.w)));
    const float highest = max(m, max(max(around.x, around.y), max(around.z, around.w)));
    const float step_height = highest - lowest;
    const float amount = saturate((step_height - 0.06) * 3) * 0.5;
    const float3 average = (left + right + above + below) * 0.25;
    const float3 color = lerp(middle, average, amount);
    return float4(encoded(color), 1);
}
