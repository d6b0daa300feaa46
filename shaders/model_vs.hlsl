// Vertex shader of models: skins, turns, projects.
#include "model_vertex.hlsli"
#include "vs_const_buffers.hlsli"

struct model_vertex // 88 bytes; gpu_vertex in D3D11_RENDER_LIB/gpu_layouts.h
{
    float3 position : POSITION;
    float2 uv : TEXCOORD;
    float3 normal : NORMAL;
    float3 tangent : TANGENT;
    float3 binormal : BINORMAL;
    uint4 bones : BLENDINDICES;
    float4 weights : BLENDWEIGHTS;
};

struct posed
{
    float4 position;
    float3 normal;
    float3 tangent;
    float3 binormal;
};

static const uint palette_size = 256;

// Bones repeat to fill the four slots: a bone counts where it comes first.
bool counts(model_vertex vertex, int slot)
{
    return slot == 0 || is_weapon == 1 || vertex.bones[slot] != vertex.bones[0];
}

// What of the weights counts; skinningWeights() in Korvane/viewer/posed_mesh.h. What is left of weights that summed to
// one does so again.
float4 skinningWeights(model_vertex vertex)
{
    float4 kept = vertex.weights;
    [unroll]
    for (int i = 1; i < 4; ++i)
        kept[i] = counts(vertex, i) ? kept[i] : 0;
    const float all = dot(vertex.weights, float4(1, 1, 1, 1));
    const float sum = dot(kept, float4(1, 1, 1, 1));
    if (!(abs(all - 1) <= 0.01))
        return kept;
    return sum > 1e-6 ? kept / sum : float4(1, 0, 0, 0);
}

posed skinned(model_vertex vertex)
{
    posed result;
    result.position = 0;
    result.normal = 0;
    result.tangent = 0;
    result.binormal = 0;
    const float4 weights = skinningWeights(vertex);
    [unroll]
    for (int i = 0; i < 4; ++i)
    {
        if (i > 0 && weights[i] == 0)
            continue;
        const float weight = weights[i];
        float4 position = float4(vertex.position, 1);
        float3x3 turned = {1, 0, 0, 0, 1, 0, 0, 0, 1};
        if (is_weapon == 1)
        {
            position = mul(position, mWeapon);
            turned = (float3x3)mWeapon;
        }
        const uint bone = vertex.bones[i];
        if (bone < palette_size) // what lies above stays in its bind pose
        {
            position = mul(mul(position, inverse[bone]), tranforms[bone]);
            turned = mul(turned, mul((float3x3)inverse[bone], (float3x3)tranforms[bone]));
        }
        result.position += weight * position;
        result.normal += weight * mul(vertex.normal, turned);
        result.tangent += weight * mul(vertex.tangent, turned);
        result.binormal += weight * mul(vertex.binormal, turned);
    }
    result.position.w = 1;
    return result;
}

// A zero vector (a format without tangents) stays zero.
float3 unit(float3 direction)
{
    return direction * rsqrt(max(dot(direction, direction), 1e-20));
}

float3 turnedDirection(float3 direction)
{
    direction = unit(mul(direction, (float3x3)rot_y));
    direction = unit(mul(direction, (float3x3)rot_x));
    return unit(mul(direction, (float3x3)mWorld));
}

// The bone stands in color.x; below zero: none.
float heatOf(model_vertex vertex)
{
    const float4 weights = skinningWeights(vertex);
    float sum = 0;
    [unroll]
    for (int i = 0; i < 4; ++i)
        if ((float)vertex.bones[i] == color.x)
            sum += weights[i];
    return sum;
}

model_pixel main(model_vertex vertex)
{
    posed pose;
    pose.position = float4(vertex.position, 1);
    pose.normal = vertex.normal;
    pose.tangent = vertex.tangent;
    pose.binormal = vertex.binormal;
    if (static_model != 1 || is_weapon == 1)
        pose = skinned(vertex);

    model_pixel result;
    const float4 world = mul(mul(mul(pose.position, rot_y), rot_x), mWorld);
    result.clip = mul(mul(world, View), Projection);
    result.world = world.xyz;
    result.normal = turnedDirection(pose.normal);
    result.tangent = turnedDirection(pose.tangent);
    result.binormal = turnedDirection(pose.binormal);
    result.uv = float2(vertex.uv.x, 1 - vertex.uv.y);
    result.view = normalize(ViewI._41_42_43 - world.xyz);
    result.heat = heatOf(vertex);
    return result;
}
