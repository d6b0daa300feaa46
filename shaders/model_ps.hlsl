// Pixel shader of models: textures to a surface, lit by two lights and the environment. Three targets: the plain
// colour of the surface, the lit colour (linear, high dynamic range), and the normal.
#include "data_maps.hlsli"
#include "model_vertex.hlsli"
#include "pbr_lib.hlsli"
#include "ps_const_buffers.hlsli"
#include "textures.hlsli"
#ifdef WITH_SHADOW
#include "shadow.hlsli"
#endif

struct model_targets
{
    float4 base : SV_Target0;
    float4 lit : SV_Target1;
    float4 normal : SV_Target2;
};

// Surfaces that were drawn before (surface_ps) are shaded by a pixel shader that knows nothing of triangles.
#ifdef OF_SURFACES
#include "shading_buffer.hlsli"
static float footprint; // log2 of the texture coordinates that a pixel covers
#define TEXEL(map, how, uv, level) map.SampleLevel(how, uv, footprint + level)
#else
#define TEXEL(map, how, uv, level) map.Sample(how, uv)
#endif

bool isBound(int slot_bit)
{
    return (debug_flags.z & slot_bit) != 0;
}

#ifndef OF_SURFACES
// Tangent space from how position and texture coordinate change over the screen: for models without tangents.
void tangentsFromScreen(model_pixel pixel, float3 normal, out float3 tangent, out float3 binormal)
{
    const float3 dp1 = ddx(pixel.world);
    const float3 dp2 = ddy(pixel.world);
    const float2 duv1 = ddx(pixel.uv);
    const float2 duv2 = ddy(pixel.uv);
    const float3 across1 = cross(dp2, normal);
    const float3 across2 = cross(normal, dp1);
    tangent = across1 * duv1.x + across2 * duv2.x;
    binormal = across1 * duv1.y + across2 * duv2.y;
    const float longest = max(dot(tangent, tangent), dot(binormal, binormal));
    const float scale = longest > 0 ? rsqrt(longest) : 0;
    tangent *= scale;
    binormal *= scale;
}

void tangentFrame(model_pixel pixel, float3 normal, out float3 tangent, out float3 binormal)
{
    tangentsFromScreen(pixel, normal, tangent, binormal);
    const float3 stored = pixel.tangent - normal * dot(pixel.tangent, normal);
    if (dot(stored, stored) > 0.05)
    {
        tangent = normalize(stored);
        const float3 across = cross(normal, tangent);
        // The stored binormal gives the side when it can be one, the screen otherwise.
        const float side = dot(across, pixel.binormal);
        const float sign_of = abs(side) > 0.5 ? side : dot(across, binormal);
        binormal = sign_of < 0 ? -across : across;
    }
}

float3 surfaceNormal(model_pixel pixel, bool is_front)
{
    float3 normal = normalize(pixel.normal);
    const float3 flat_normal = cross(ddx(pixel.world), ddy(pixel.world));
    if (!(dot(pixel.normal, pixel.normal) > 0.25)) // a model without normals: faceted
        normal = normalize(flat_normal * (dot(flat_normal, pixel.view) < 0 ? -1 : 1));
    return is_front ? normal : -normal;
}
#else
void tangentFrame(model_pixel pixel, float3 normal, out float3 tangent, out float3 binormal)
{
    tangent = pixel.tangent;
    binormal = pixel.binormal;
}
#endif

struct data_texels
{
    float2 normal; // x and y, 0..1; z follows
    float smoothness;
    float occlusion;
};

float smoothnessFrom(float4 texel)
{
    const int channel = clamp(debug_flags.x, 1, 4) - 1;
    return texel[channel];
}

bool isOccluded()
{
    return (debug_flags.w & draw_occluded) != 0;
}

data_texels dataAt(float2 uv)
{
    data_texels result;
#ifdef OF_PACKED_MAPS // pack_ps: each map that is looked at costs where the processor draws
    const float4 texel = TEXEL(tex_normal, s_normal, uv, levels.y);
    result.normal = texel.xy;
    result.smoothness = texel.z;
    result.occlusion = isOccluded() ? texel.w : 1;
#else
    result.normal = normalOf(TEXEL(tex_normal, s_normal, uv, levels.y));
    result.smoothness =
        isBound(bound_gloss) ? smoothnessFrom(TEXEL(tex_gloss_map, SampleType, uv, gloss_levels.x)) : usual_smoothness;
    result.occlusion =
        isOccluded() && isBound(bound_mask) ? occlusionOf(TEXEL(tex_mask, SampleType, uv, levels.w)) : 1;
#endif
    return result;
}

float3 mappedNormal(model_pixel pixel, float3 normal, float2 texel)
{
    if (!isBound(bound_normal))
        return normal;
    float3 local;
    local.xy = texel * 2 - 1;
    local.z = sqrt(saturate(1 - dot(local.xy, local.xy)));

    float3 tangent, binormal;
    tangentFrame(pixel, normal, tangent, binormal);
    return normalize(tangent * local.x + binormal * local.y + normal * local.z);
}

surface readSurface(model_pixel pixel, float3 normal, float4 diffuse, float smoothness)
{
    surface s;
    s.base = diffuse.rgb;
    s.specular = 0.04;
    if (isBound(bound_specular))
    {
        const float3 texel = TEXEL(tex_specular, SampleType, pixel.uv, levels.z).rgb;
        s.specular = is_specular_linear == 1 ? linearFromGamma(texel) : texel;
    }
    s.roughness = clamp((1 - smoothness) * light[0].roughnessFactor, 0.05, 1);
    s.normal = normal;
    s.view = normalize(pixel.view);
    return s;
}

float3 lightOn(surface s, float3 to_light, float3 diffuse_radiance, float3 specular_radiance)
{
    const float n_l = saturate(dot(s.normal, to_light));
    return s.base * n_l * diffuse_radiance + specularLobe(s, to_light, n_l) * specular_radiance;
}

float3 diffuseOf(Light one)
{
    return one.diffuseColor.rgb * one.diffuseFactor * one.radiannce;
}

float3 specularOf(Light one)
{
    return one.specularColor.rgb * one.specularFactor * one.radiannce;
}

float3 directionalLight(surface s, Light one)
{
    return lightOn(s, -normalize(one.lightDirection), diffuseOf(one), specularOf(one));
}

float3 pointLight(surface s, Light one, float3 world)
{
    const float3 way = one.point_position - world;
    const float distance = max(length(way), 1e-3);
    const float3 fade = one.point_attenuation * float3(1, distance, distance * distance);
    const float3 radiance = one.point_color.rgb / max(fade.x + fade.y + fade.z, 0.05);
    return lightOn(s, way / distance, radiance * diffuseOf(one), radiance * specularOf(one)) *
           (one.point_range > distance ? 1 : 0);
}

float3 lightsOn(surface s, float3 world)
{
    float3 sum = 0;
#ifdef OF_USUAL_LIGHTS // one of each kind: the processor would compute all four
    sum = directionalLight(s, light[0]) + pointLight(s, light[1], world);
#else
    [unroll]
    for (int i = 0; i < 2; ++i)
    {
        if (dot(light[i].lightDirection, light[i].lightDirection) > 0)
        {
            float3 seen = 1;
#ifdef WITH_SHADOW
            if (i == 0)
                seen = lightReaching(world, s.normal);
#endif
            sum += directionalLight(s, light[i]) * seen;
        }
        if (light[i].point_range > 0)
            sum += pointLight(s, light[i], world);
    }
#endif
    return debug_flags.y != 0 ? sum * one_over_pi : sum;
}

#ifndef OF_SURFACES
float3 irradianceFrom(float3 direction)
{
    return tex_cube_diffuse.SampleLevel(SampleType, direction, 0).rgb;
}

float3 radianceFrom(float3 direction, float roughness)
{
    uint width, height, levels;
    tex_cube_specular.GetDimensions(0, width, height, levels);
    return tex_cube_specular.SampleLevel(SampleType, direction, roughness * (levels - 1)).rgb;
}
#endif

float3 environmentOn(surface s)
{
    const float3x3 turn = (float3x3)mRotEnv;
    const float3 ambient = light[0].ambientLight.rgb * light[0].ambientFactor;
    float3 sum = irradianceFrom(mul(s.normal, turn)) * s.base * ambient;
    if (show_reflections != 0)
        sum += radianceFrom(mul(reflect(-s.view, s.normal), turn), s.roughness) * environmentReflectance(s) *
               light[0].specularFactor * light[0].ambientFactor;
    return sum;
}

model_targets shaded(model_pixel pixel, float3 normal)
{
    float4 diffuse = float4(0.24, 0.235, 0.23, 1); // clay, for a model without its textures
    if (isBound(bound_diffuse))
    {
        diffuse = TEXEL(tex_diffuse, SampleType, pixel.uv, levels.x);
#ifndef OF_SURFACES
        if (has_alpha == 1 && diffuse.a < 0.5)
            discard;
#endif
        if (is_diffuse_linear == 1)
            diffuse.rgb = linearFromGamma(diffuse.rgb);
    }
    const data_texels data = dataAt(pixel.uv);
    const surface s = readSurface(pixel, mappedNormal(pixel, normal, data.normal), diffuse, data.smoothness);
    model_targets result;
    result.lit = float4(lightsOn(s, pixel.world) + environmentOn(s) * data.occlusion, 1);
    result.normal = float4(s.normal * 0.5 + 0.5, groupMark());
    result.base = float4(s.base, 1);
    return result;
}

#ifndef WITHOUT_MAIN
model_targets main(model_pixel pixel, bool is_front : SV_IsFrontFace)
{
    return shaded(pixel, surfaceNormal(pixel, is_front));
}
#endif
