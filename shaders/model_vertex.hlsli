// What the model vertex shader hands to the pixel shaders of models. World space.
struct model_pixel
{
    float4 clip : SV_Position;
    float2 uv : TEXCOORD0; // v counts downwards
    float3 normal : NORMAL;
    float3 tangent : TANGENT;
    float3 binormal : BINORMAL;
    float3 world : TEXCOORD1;
    float3 view : TEXCOORD2; // from the surface to the eye, unit length
    float heat : TEXCOORD3;  // the weight of the bone whose weights are shown
};
