// Colours on their way to the screen.

float3 toneMapped(float3 color)
{
    // Bends highlights only: nearly the identity for dark and middle tones.
    const float peak = max(max(color.r, color.g), max(color.b, 1e-4));
    const float start = 0.6;
    const float bent = peak <= start ? peak : start + (1 - start) * (1 - exp((start - peak) / (1 - start)));
    return color * (bent / peak);
}

// As sRGB; off by half a step of 255 at most, for powers are dear where the processor draws.
float3 encodedQuickly(float3 color)
{
    color = saturate(color);
    const float3 root = sqrt(color);
    return color <= 0.0031308 ? color * 12.92
                              : ((0.216923 * root - 0.540555) * root + 1.357478) * root - 0.031963;
}

// How much of the outline of marked groups there is: two pixels on their outer side. The marks are in the alpha.
float outlineOf(Texture2D marks, int2 at, int2 size)
{
    const float here = marks.Load(int3(at, 0)).a;
    float most = 0;
    [unroll]
    for (int y = -2; y <= 2; ++y)
        [unroll]
        for (int x = -2; x <= 2; ++x)
            if (x * x + y * y <= 5)
                most = max(most, here - marks.Load(int3(clamp(at + int2(x, y), 0, size - 1), 0)).a);
    return saturate(most / 0.7);
}

static const float3 outline_color = float3(1.0, 0.62, 0.12); // as it is on the screen

// How much of the average of its neighbours a pixel gets: the more, the higher the step in brightness.
float softening(float middle, float4 around)
{
    const float lowest = min(middle, min(min(around.x, around.y), min(around.z, around.w)));
    const float highest = max(middle, max(max(around.x, around.y), max(around.z, around.w)));
    return saturate((highest - lowest - 0.06) * 3) * 0.5;
}
