// What the surface pass keeps of a pixel, for the shading pass (D3D11_RENDER_LIB/scene_targets.h): 16 bytes, whole
// numbers, for where the processor draws each target and each conversion costs.
//   x  texture coordinates, without whole turns, 16 bits each
//   y  depth: along the middle of the view, world units
//   z  normal, 16 bits a coordinate
//   w  tangent, 11 bits a coordinate; 9 bits of how much of the texture coordinates a pixel covers; the binormal's side

// Directions as points of a square: the octahedron around them, unfolded.
float2 folded(float3 direction)
{
    const float3 d = direction / (abs(direction.x) + abs(direction.y) + abs(direction.z));
    const float2 side = float2(d.x < 0 ? -1 : 1, d.y < 0 ? -1 : 1);
    const float2 at = d.z < 0 ? (1 - abs(d.yx)) * side : d.xy;
    return at * 0.5 + 0.5;
}

float3 unfolded(float2 at)
{
    const float2 p = at * 2 - 1;
    float3 d = float3(p, 1 - abs(p.x) - abs(p.y));
    const float below = saturate(-d.z);
    d.xy -= float2(d.x < 0 ? -below : below, d.y < 0 ? -below : below);
    return normalize(d);
}

uint4 packedSurface(float2 uv, float depth, float3 normal, float3 tangent, float side)
{
    const float2 across = ddx(uv), down = ddy(uv);
    const uint2 turn = uint2(frac(uv) * 65535.99);
    const uint2 n = uint2(folded(normal) * 65535 + 0.5);
    const uint2 t = uint2(folded(tangent) * 2047 + 0.5);
    // The upper bits of a positive float are its logarithm, nearly, in halves.
    const uint covered = asuint(max(dot(across, across), dot(down, down))) >> 22;
    return uint4(turn.x | turn.y << 16, asuint(depth), n.x | n.y << 16,
                 t.x | t.y << 11 | (covered & 511) << 22 | (side < 0 ? 0x80000000u : 0));
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

unpacked_surface unpacked(uint4 kept)
{
    unpacked_surface result;
    result.uv = (float2(kept.x & 0xffff, kept.x >> 16) + 0.5) / 65536;
    result.depth = asfloat(kept.y);
    result.normal = unfolded(float2(kept.z & 0xffff, kept.z >> 16) / 65535);
    const float3 tangent = unfolded(float2(kept.w & 0x7ff, kept.w >> 11 & 0x7ff) / 2047);
    result.tangent = normalize(tangent - result.normal * dot(result.normal, tangent));
    result.footprint = (float)(kept.w >> 22 & 511) * 0.25 - 63.5;
    result.side = (kept.w & 0x80000000u) != 0 ? -1 : 1;
    return result;
}
