// What the surface pass keeps of a pixel, for the shading pass (D3D11_RENDER_LIB/scene_targets.h): 24 bytes.
struct surface_targets
{
    float4 place : SV_Target0; // u, v, log2 of how much of both a pixel covers, distance from the eye; the distance is
                               // below zero where the binormal lies on the other side
    float4 frame : SV_Target1; // normal and tangent, each as two numbers of 0..1
};

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
