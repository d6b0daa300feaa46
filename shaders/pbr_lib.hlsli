// Surface shading: a microfacet model with the specular colour and smoothness that the textures give.

struct surface
{
    float3 base;     // diffuse reflectance, linear
    float3 specular; // reflectance at normal incidence, linear
    float roughness; // perceptual, 0.05..1
    float3 normal;   // unit
    float3 view;     // unit, to the eye
};

static const float one_over_pi = 0.318309886;

float3 linearFromGamma(float3 encoded)
{
#ifdef OF_SURFACES // on the screen off by less than a step of 255: powers are dear where the processor draws
    return encoded * encoded * (0.57968 + encoded * (0.738623 - 0.324202 * encoded));
#else
    return pow(max(encoded, 0), 2.2);
#endif
}

float3 fresnel(float3 reflectance, float cosine)
{
    const float rest = 1 - cosine;
    return reflectance + (1 - reflectance) * (rest * rest * (rest * rest) * rest);
}

// The microfacet lobe divided by the cosine of the view, times the cosine of the light: GGX with Smith's visibility.
float3 specularLobe(surface s, float3 to_light, float n_l)
{
    const float3 half_way = normalize(to_light + s.view);
    const float n_h = saturate(dot(s.normal, half_way));
    const float n_v = max(dot(s.normal, s.view), 0.05);
    const float alpha = s.roughness * s.roughness;
    const float alpha2 = alpha * alpha;
    const float d = n_h * n_h * (alpha2 - 1) + 1;
    const float k = alpha * 0.5;
    const float visibility = 0.25 / ((n_l * (1 - k) + k) * (n_v * (1 - k) + k));
    // Without one over pi, as the diffuse part: a light of radiance 1 shows a white wall white.
    return alpha2 / (d * d) * visibility * fresnel(s.specular, saturate(dot(half_way, s.view))) * n_l;
}

// How much of an environment a rough surface mirrors: scale and offset of the reflectance, fitted.
float3 environmentReflectance(surface s)
{
    const float n_v = saturate(dot(s.normal, s.view));
    const float4 r = s.roughness * float4(-1, -0.0275, -0.572, 0.022) + float4(1, 0.0425, 1.04, -0.04);
    const float a = min(r.x * r.x, exp2(-9.28 * n_v)) * r.x + r.y;
    const float2 fit = float2(-1.04, 1.04) * a + r.zw;
    return s.specular * fit.x + fit.y;
}
