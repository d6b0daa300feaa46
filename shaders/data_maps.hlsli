// What the data maps of a group mean: normal, gloss and mask.

static const float usual_smoothness = 0.4; // without a gloss map

// Both kinds of normal maps: x in alpha with red at one, or x in red with alpha at one; y in green. 0..1
float2 normalOf(float4 texel)
{
    return float2(texel.r * texel.a, texel.g);
}

// The games keep it in the mask map's alpha; maps without alpha say one, some say nothing but zero.
float occlusionOf(float4 texel)
{
    return texel.a > 0 ? texel.a : 1;
}
