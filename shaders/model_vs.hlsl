// Vertex shader of models: skins, turns, projects.
#include "model_vertex.hlsli"
#include "skinning.hlsli"

// The bone stands in color.x; below zero: none.
float heatOf(model_vertex vertex)
{
    const float4 weights = skinningWeights(vertex, is_weapon == 1);
    float sum = 0;
    [unroll]
    for (int i = 0; i < 4; ++i)
        if ((float)vertex.bones[i] == color.x)
            sum += weights[i];
    return sum;
}

model_pixel main(model_vertex vertex)
{
    const posed pose = poseOf(vertex);

    model_pixel result;
    const float4 world = worldPlace(pose);
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
