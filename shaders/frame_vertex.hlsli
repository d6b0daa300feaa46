// What frame_vs hands to frame_ps. World space.
struct frame_pixel
{
    float4 clip : SV_Position;
    float3 uv : TEXCOORD0; // v counts downwards; z: 1 or -1, the side that the binormal lies on
    float3 normal : NORMAL;
    float3 tangent : TANGENT;
};
