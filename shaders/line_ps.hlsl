// Pixel shader of lines: the interpolated colour.
#include "screen_colour.hlsli"

struct line_pixel
{
    float4 clip : SV_Position;
    float4 color : COLOR;
};

struct line_targets
{
    float4 base : SV_Target0;
    float4 lit : SV_Target1;
    float4 normal : SV_Target2;
};

#ifdef AS_ON_SCREEN
float4 main(line_pixel pixel) : SV_Target
{
    return float4(encodedQuickly(toneMapped(pixel.color.rgb)), 1);
}
#else
line_targets main(line_pixel pixel)
{
    line_targets result;
    result.lit = pixel.color;
    result.normal = float4(0.5, 0.5, 0.5, 1);
    result.base = pixel.color;
    return result;
}
#endif
