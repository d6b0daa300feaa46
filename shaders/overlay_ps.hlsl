// Pixel shader of what is written over the picture: the glyphs' coverage times a colour, as it is on the screen.
Texture2D<float> tex_glyphs : register(t13);
SamplerState s_glyphs : register(s4);

struct overlay_pixel
{
    float4 clip : SV_Position;
    float2 uv : TEXCOORD;
    float4 color : COLOR;
};

float4 main(overlay_pixel pixel) : SV_Target
{
    return float4(pixel.color.rgb, pixel.color.a * tex_glyphs.Sample(s_glyphs, pixel.uv));
}
