// Vertex shader of lines and helper geometry: position and colour, in the model's space.
cbuffer ModelViewProjectionConstantBuffer : register(b0)
{
    matrix mWorld;
    matrix View;
    matrix Projection;
    matrix ViewI;
    float3 cameraPosition;
    int padding1;
    float3 cameraLookAt;
    int padding2;
    float4 color;
    matrix rot_x;
    matrix rot_y;
    matrix rot_z;
    matrix rot_weapon;
    matrix tranforms[256];
    matrix inverse[256];
};

struct line_vertex // 28 bytes; line_vertex in D3D11_RENDER_LIB/gpu_layouts.h
{
    float3 position : POSITION;
    float4 color : COLOR;
};

struct line_pixel
{
    float4 clip : SV_Position;
    float4 color : COLOR;
};

line_pixel main(line_vertex vertex)
{
    line_pixel result;
    const float4 world = mul(mul(mul(float4(vertex.position, 1), rot_y), rot_x), mWorld);
    result.clip = mul(mul(world, View), Projection);
    result.color = vertex.color * color;
    return result;
}
