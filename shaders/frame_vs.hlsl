// Vertex shader of the surface pass for groups whose vertices all have normals, tangents and binormals: with less than
// model_vs, for where the processor draws each number costs.
#include "frame_vertex.hlsli"
#include "skinning.hlsli"

frame_pixel main(model_vertex vertex)
{
    const posed pose = poseOf(vertex);
    frame_pixel result;
    result.clip = mul(mul(worldPlace(pose), View), Projection);
    const float side = dot(cross(vertex.normal, vertex.tangent), vertex.binormal) < 0 ? -1 : 1;
    result.uv = float3(vertex.uv.x, 1 - vertex.uv.y, side);
    result.normal = turnedDirection(pose.normal);
    result.tangent = turnedDirection(pose.tangent);
    return result;
}
