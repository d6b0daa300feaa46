// Final pass of pictures that were drawn as the screen has them (shading_usual_ps): their edges are softened.
#include "final_buffer.hlsli"
#include "screen_colour.hlsli"
#include "textures.hlsli"

float brightness(float3 color)
{
    return dot(color, float3(0.299, 0.587, 0.114));
}

float3 shown(int2 at)
{
    return ScreenSpace.Load(int3(clamp(at, 0, size - 1), 0)).rgb;
}

float4 main(float4 position : SV_Position) : SV_Target
{
    const int2 at = int2(position.xy);
    const float3 middle = shown(at);
    const float3 left = shown(at - int2(1, 0));
    const float3 right = shown(at + int2(1, 0));
    const float3 above = shown(at - int2(0, 1));
    const float3 below = shown(at + int2(0, 1));
    const float amount = softening(
        brightness(middle), float4(brightness(left), brightness(right), brightness(above), brightness(below)));
    // Of light, nearly: squares are it.
    const float3 average = (left * left + right * right + above * above + below * below) * 0.25;
    float3 color = sqrt(lerp(middle * middle, average, amount));
#ifdef WITH_OUTLINES
    color = lerp(color, outline_color, outlineOf(ScreenSpace, at, size));
#endif
    return float4(color, 1);
}
