// How a vertex of a model stands: skinned and turned. What a shader does not use of it costs nothing.
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

// What of the weights counts; skinningWeights() in Korvane/viewer/posed_mesh.h. Bones repeat to fill the four slots: a
// bone counts where it comes first, but for weapons. What is left of weights that summed to one does so again.
float4 skinningWeights(model_vertex vertex, bool is_of_weapon)
{
    float4 kept = vertex.weights;
    [unroll]
    for (int i = 1; i < 4; ++i)
        kept[i] = is_of_weapon || vertex.bones[i] != vertex.bones[0] ? kept[i] : 0;
    const float all = dot(vertex.weights, float4(1, 1, 1, 1));
    const float sum = dot(kept, float4(1, 1, 1, 1));
    if (!(abs(all - 1) <= 0.01))
        return kept;
    return sum > 1e-6 ? kept / sum : float4(1, 0, 0, 0);
}

posed asStored(model_vertex vertex)
{
    posed result;
    result.position = float4(vertex.position, 1);
    result.normal = vertex.normal;
    result.tangent = vertex.tangent;
    result.binormal = vertex.binormal;
    return result;
}

posed movedBy(posed pose, matrix place)
{
    pose.position = mul(pose.position, place);
    pose.normal = mul(pose.normal, (float3x3)place);
    pose.tangent = mul(pose.tangent, (float3x3)place);
    pose.binormal = mul(pose.binormal, (float3x3)place);
    return pose;
}

posed skinned(model_vertex vertex)
{
    posed result;
    result.position = 0;
    result.normal = 0;
    result.tangent = 0;
    result.binormal = 0;
    const float4 weights = skinningWeights(vertex, is_weapon == 1);
    [unroll]
    for (int i = 0; i < 4; ++i)
    {
        if (i > 0 && weights[i] == 0)
            continue;
        const float weight = weights[i];
        posed moved = asStored(vertex);
        if (is_weapon == 1)
            moved = movedBy(moved, mWeapon);
        const uint bone = vertex.bones[i];
        if (bone < palette_size) // what lies above stays in its bind pose
            moved = movedBy(movedBy(moved, inverse[bone]), tranforms[bone]);
        result.position += weight * moved.position;
        result.normal += weight * moved.normal;
        result.tangent += weight * moved.tangent;
        result.binormal += weight * moved.binormal;
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
    return unit(mul(mul(mul(direction, (float3x3)rot_y), (float3x3)rot_x), (float3x3)mWorld));
}

posed poseOf(model_vertex vertex)
{
    posed pose = asStored(vertex);
    if (static_model != 1 || is_weapon == 1)
        pose = skinned(vertex);
    return pose;
}

float4 worldPlace(posed pose)
{
    return mul(mul(mul(pose.position, rot_y), rot_x), mWorld);
}
