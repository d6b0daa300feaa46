// Final pass: what the scene pass has drawn, on its way to the screen. Colours get softened edges and are encoded; light
// is tone-mapped before. Data (normals) is shown value for value: 128 on the screen is 0.5 in the target.
#include "final_buffer.hlsli"
#include "screen_colour.hlsli"
#include "textures.hlsli"

static const int final_softens = 2; // steps in brightness are blended

Texture2D Marks : register(t12); // the normals' target

static const int content_light = 0;  // linear, high dynamic range
static const int content_colour = 1; // linear, 0..1
static const int content_data = 2;   // not a colour

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
    const float amount =
        softening(brightness(middle.rgb), float4(brightness(left.rgb), brightness(right.rgb), brightness(above.rgb),
                                                 brightness(below.rgb)));
    const float4 color = lerp(middle, (left + right + above + below) * 0.25, amount);
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
    const float amount = outlineOf(Marks, at, size);
    color = lerp(color, outline_color, amount);
    alpha = max(alpha, amount);
#endif
    return float4(color, alpha);
}
