// What the surface pass keeps of a pixel, for the shading pass (D3D11_RENDER_LIB/scene_targets.h): 16 bytes, whole
// numbers, for where the processor draws each target and each conversion costs.
//   x  texture coordinates, without whole turns, 16 bits each
//   y  depth: along the middle of the view, world units
//   z  normal, 11, 11 and 10 bits
//   w  tangent, 7 bits a coordinate; 9 bits of how much of the texture coordinates a pixel covers; the binormal's side

uint4 packedSurface(float2 uv, float depth, float3 normal, float3 tangent, float side)
{
    const float2 across = ddx(uv), down = ddy(uv);
    const uint2 turn = uint2(frac(uv) * 65535.99);
    // Interpolated directions are no longer than 1.
    const uint3 n = uint3(normal * float3(1023, 1023, 511) + float3(1023.5, 1023.5, 511.5));
    const uint3 t = uint3(tangent * 63 + 63.5);
    // The upper bits of a positive float are its logarithm, nearly, in halves.
    const uint covered = asuint(max(dot(across, across), dot(down, down))) >> 22;
    return uint4(turn.x | turn.y << 16, asuint(depth), n.x | n.y << 11 | n.z << 22,
                 t.x | t.y << 7 | t.z << 14 | (covered & 511) << 21 | (side < 0 ? 0x80000000u : 0));
}

struct unpacked_surface
{
    float2 uv;
    float depth;
    float3 normal;
    float3 tangent;
    float footprint; // log2 of the texture coordinates that a pixel covers
    float side;
};

// Directions that cancel out between two vertices are nothing, not a number that is none.
float3 ofUnitLength(float3 direction)
{
    return direction * rsqrt(max(dot(direction, direction), 1e-6));
}

unpacked_surface unpacked(uint4 kept)
{
    unpacked_surface result;
    result.uv = (float2(kept.x & 0xffff, kept.x >> 16) + 0.5) / 65536;
    result.depth = asfloat(kept.y);
    result.normal = ofUnitLength(float3(kept.z & 0x7ff, kept.z >> 11 & 0x7ff, (kept.z >> 22) * 2 + 1) - 1023);
    const float3 tangent = float3(kept.w & 0x7f, kept.w >> 7 & 0x7f, kept.w >> 14 & 0x7f) - 63;
    result.tangent = ofUnitLength(tangent - result.normal * dot(result.normal, tangent));
    result.footprint = (float)(kept.w >> 21 & 511) * 0.25 - 63.5;
    result.side = (kept.w & 0x80000000u) != 0 ? -1 : 1;
    return result;
}
