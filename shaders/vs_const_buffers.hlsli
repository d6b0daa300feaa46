// Constant buffer of the vertex stage, 33,328 bytes; mirrored by model_view_projection_constant_buffer in
// D3D11_RENDER_LIB/gpu_layouts.h. Row vectors: every product is mul(vector, matrix).
cbuffer ModelViewProjectionConstantBuffer : register(b0)
{
    matrix mWorld;
    matrix View;
    matrix Projection;
    matrix ViewI; // inverse of View: its last row is the eye
    float3 cameraPosition;
    int is_weapon; // 1: the model hangs on one bone
    float3 cameraLookAt;
    int static_model; // 1: not skinned
    float4 color;
    matrix rot_x;
    matrix rot_y;
    matrix rot_z;
    matrix mWeapon;
    matrix tranforms[256]; // current world matrix of each bone
    matrix inverse[256];   // inverse bind matrix of each bone
};
