// Pixel shader of lines: the interpolated colour.
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

line_targets main(line_pixel pixel)
{
    line_targets result;
    result.lit = pixel.color;
    result.normal = float4(0.5, 0.5, 0.5, 1);
    result.base = pixel.color;
    return result;
}
