// Pixel shader that asks a device how dear a texel is (D3D11_RENDER_LIB/device_probe.cpp).
Texture2D probed : register(t0);

float4 main(float4 position : SV_Position) : SV_Target
{
    return probed.Load(int3(position.xy, 0));
}
