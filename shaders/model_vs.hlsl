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

posed skinned(model_vertex vertex)
{
    posed result;
    result.position = 0;
    result.normal = 0;
    result.tangent = 0;
    result.binormal = 0;
    [unroll]
    for (int i = 0; i < 4; ++i)
    {
        // Bones repeat to fill the four slots: a bone counts where it comes first.
        if (i > 0 && is_weapon != 1 && vertex.bones[i] == vertex.bones[0])
            continue;
        const uint bone = min(vertex.bones[i], 255u);
        const float weight = vertex.weights[i];
        float4 position = float4(vertex.position, 1);
        if (is_weapon == 1)
            position = mul(position, mWeapon);
        position = mul(mul(position, inverse[bone]), tranforms[bone]);
        result.position += weight * position;
        const float3x3 rotation = mul((float3x3)inverse[bone], (float3x3)tranforms[bone]);
        const float3x3 turned = is_weapon == 1 ? mul((float3x3)mWeapon, rotation) : rotation;
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
    return result;
}
