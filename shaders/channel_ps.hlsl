// Pixel shader of models that shows one channel of the surface as a colour: in the first target, whose colours are
// encoded as sRGB. What is no colour is decoded before, so that the screen has the texture's own values.
#include "model_vertex.hlsli"
#include "ps_const_buffers.hlsli"
#include "textures.hlsli"

struct model_targets
{
    float4 base : SV_Target0;
    float4 lit : SV_Target1;
    float4 normal : SV_Target2;
};

static const int channel_specular = 3; // view_channel in Korvane/viewer/view_state.h
static const int channel_gloss = 4;
static const int channel_mask = 5;
static const int channel_alpha = 6;
static const int channel_uv = 7;
static const int channel_weights = 8;

static const float3 nothing_there = float3(0.02, 0.02, 0.03); // the group has no such texture

bool isBound(int slot_bit)
{
    return (debug_flags.z & slot_bit) != 0;
}

float3 linearFromGamma(float3 encoded)
{
    return pow(max(encoded, 0), 2.2);
}

// What the target's encoding undoes.
float3 decoded(float3 shown)
{
    return shown <= 0.04045 ? shown / 12.92 : pow(max((shown + 0.055) / 1.055, 0), 2.4);
}

float3 checker(float2 uv)
{
    const float2 cell = floor(uv * 8);
    const float2 fine = floor(uv * 64);
    const float is_dark = fmod(abs(cell.x + cell.y), 2);
    const float is_fine_dark = fmod(abs(fine.x + fine.y), 2);
    const float2 place = frac(uv); // red to the right, green downwards
    const float3 color = lerp(float3(0.85, 0.85, 0.85), float3(place, 0.35), 0.65);
    return color * (is_dark > 0.5 ? 0.45 : 1.0) * (is_fine_dark > 0.5 ? 0.9 : 1.0);
}

// Blue, green, yellow, red; grey for no weight at all.
float3 heatColor(float heat)
{
    if (heat <= 0)
        return float3(0.16, 0.16, 0.18);
    const float t = saturate(heat) * 3;
    const float3 low = lerp(float3(0.10, 0.20, 0.90), float3(0.10, 0.80, 0.35), saturate(t));
    const float3 middle = lerp(low, float3(0.95, 0.85, 0.10), saturate(t - 1));
    return lerp(middle, float3(0.95, 0.12, 0.08), saturate(t - 2));
}

float3 channelColor(model_pixel pixel, float4 diffuse)
{
    switch (debug_flags.w >> 8)
    {
    case channel_specular:
    {
        if (!isBound(bound_specular))
            return nothing_there;
        const float3 texel = tex_specular.Sample(SampleType, pixel.uv).rgb;
        return is_specular_linear == 1 ? linearFromGamma(texel) : texel;
    }
    case channel_gloss:
        if (!isBound(bound_gloss))
            return nothing_there;
        return decoded(tex_gloss_map.Sample(SampleType, pixel.uv)[clamp(debug_flags.x, 1, 4) - 1].xxx);
    case channel_mask:
        return isBound(bound_mask) ? decoded(tex_mask.Sample(SampleType, pixel.uv).rgb) : nothing_there;
    case channel_alpha:
        return decoded(diffuse.aaa);
    case channel_uv:
        return decoded(checker(pixel.uv));
    default:
        return decoded(heatColor(pixel.heat));
    }
}

// A hint of form, so that an even surface does not lose its shape.
float formOf(model_pixel pixel)
{
    const float facing = abs(dot(normalize(pixel.normal), normalize(pixel.view)));
    return (debug_flags.w >> 8) >= channel_uv ? 0.45 + 0.55 * facing : 1;
}

model_targets main(model_pixel pixel)
{
    float4 diffuse = 1;
    if (isBound(bound_diffuse))
        diffuse = tex_diffuse.Sample(SampleType, pixel.uv);
    if (has_alpha == 1 && diffuse.a < 0.5 && (debug_flags.w >> 8) != channel_alpha)
        discard;
    model_targets result;
    result.base = float4(channelColor(pixel, diffuse) * formOf(pixel), 1);
    result.lit = result.base;
    result.normal = float4(normalize(pixel.normal) * 0.5 + 0.5, groupMark());
    return result;
}
