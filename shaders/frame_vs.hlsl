// Vertex shader of the surface pass for groups whose vertices all have normals, tangents and binormals: with less than
// model_vs, for where the processor draws each number costs. All that moves a bone's vertices is one matrix.
#include "frame_vertex.hlsli"
#include "skinning.hlsli"

cbuffer PoseBuffer : register(b2) // 12,416 bytes; pose_buffer in D3D11_RENDER_LIB/gpu_layouts.h
{
    matrix to_clip; // from the world
    int pose_is_static;
    int pose_is_weapon;
    int2 pose_pad;
    float4 palette[3 * (palette_size + 1)]; // rows: from the model to the world; the last bone is none
};

struct bone_rows
{
    float4 x, y, z;
};

bone_rows rowsOf(uint bone)
{
    const uint first = 3 * min(bone, palette_size);
    bone_rows rows;
    rows.x = palette[first];
    rows.y = palette[first + 1];
    rows.z = palette[first + 2];
    return rows;
}

bone_rows blended(model_vertex vertex)
{
    const float4 weights = pose_is_static != 0 ? float4(1, 0, 0, 0) : skinningWeights(vertex, pose_is_weapon != 0);
    const uint4 bones = pose_is_static != 0 ? palette_size : vertex.bones;
    bone_rows sum;
    sum.x = sum.y = sum.z = 0;
    [unroll]
    for (int i = 0; i < 4; ++i)
    {
        const bone_rows one = rowsOf(bones[i]);
        sum.x += weights[i] * one.x;
        sum.y += weights[i] * one.y;
        sum.z += weights[i] * one.z;
    }
    return sum;
}

frame_pixel main(model_vertex vertex)
{
    const bone_rows place = blended(vertex);
    const float4 position = float4(vertex.position, 1);
    const float4 world = float4(dot(place.x, position), dot(place.y, position), dot(place.z, position), 1);
    frame_pixel result;
    result.clip = mul(world, to_clip);
    const float side = dot(cross(vertex.normal, vertex.tangent), vertex.binormal) < 0 ? -1 : 1;
    result.uv = float3(vertex.uv.x, 1 - vertex.uv.y, side);
    const float3x3 turn = float3x3(place.x.xyz, place.y.xyz, place.z.xyz);
    result.normal = unit(mul(turn, vertex.normal));
    result.tangent = unit(mul(turn, vertex.tangent));
    return result;
}
