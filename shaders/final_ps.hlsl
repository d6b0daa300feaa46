// Final pass: what the scene pass has drawn, on its way to the screen. Colours get softened edges and are encoded; light
// is tone-mapped before. Data (normals) is shown value for value: 128 on the screen is 0.5 in the target.
#include "textures.hlsli"

cbuffer FinalPassBuffer : register(b1) // 16 bytes; final_pass_buffer in D3D11_RENDER_LIB/gpu_layouts.h
{
    int2 size;   // of the target, pixels
    int content; // content_light, content_colour or content_data
    int flags;   // final_...
};

static const int final_softens = 2; // steps in brightness are blended

Texture2D Marks : register(t12); // the normals' target

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

// Colours are as much as alpha says: nothing (0) where only the background of a clear picture is.
float4 shown(int2 at)
{
    const float4 color = ScreenSpace.Load(int3(clamp(at, 0, size - 1), 0));
    return content == content_light ? float4(toneMapped(color.rgb), color.a) : color;
}

#ifdef WITH_OUTLINES
// How much of the outline of marked groups there is: two pixels on their outer side.
float outline(int2 at)
{
    const float here = Marks.Load(int3(at, 0)).a;
    float most = 0;
    [unroll]
    for (int y = -2; y <= 2; ++y)
        [unroll]
        for (int x = -2; x <= 2; ++x)
            if (x * x + y * y <= 5)
                most = max(most, here - Marks.Load(int3(clamp(at + int2(x, y), 0, size - 1), 0)).a);
    return saturate(most / 0.7);
}

static const float3 outline_color = float3(1.0, 0.62, 0.12); // as it is on the screen
#endif

float brightness(float3 color)
{
    return sqrt(dot(saturate(color), float3(0.299, 0.587, 0.114)));
}

float3 softened(int2 at, float4 middle, out float alpha)
{
    const float4 left = shown(at - int2(1, 0));
    const float4 right = shown(at + int2(1, 0));
    const float4 above = shown(at - int2(0, 1));
    const float4 below = shown(at + int2(0, 1));
    // Steps in brightness are blended along the edge, the more the higher the step.
    const float m = brightness(middle.rgb);
    const float4 around =
        float4(brightness(left.rgb), brightness(right.rgb), brightness(above.rgb), brightness(below.rgb));
    const float lowest = min(m, min(min(around.x, around.y), min(around.z, around.w)));
    const float highest = max(m, max(max(around.x, around.y), max(around.z, around.w)));
    const float step_height = highest - lowest;
    const float amount = saturate((step_height - 0.06) * 3) * 0.5;
    const float4 average = (left + right + above + below) * 0.25;
    const float4 color = lerp(middle, average, amount);
    alpha = color.a;
    return color.rgb;
}

float4 main(float4 position : SV_Position) : SV_Target
{
    const int2 at = int2(position.xy);
    const float4 middle = shown(at);
    float3 color = middle.rgb;
    float alpha = content == content_data ? (middle.a > 0 ? 1 : 0) : middle.a; // of data it is a group's mark
    if (content != content_data)
    {
        if ((flags & final_softens) != 0)
            color = softened(at, middle, alpha);
        color = encoded(color / max(alpha, 1e-3));
    }
#ifdef WITH_OUTLINES
    const float amount = outline(at);
    color = lerp(color, outline_color, amount);
    alpha = max(alpha, amount);
#endif
    return float4(color, alpha);
}
