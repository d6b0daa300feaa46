// Shows a finished picture of another size in the whole target.
#include "final_buffer.hlsli"
#include "textures.hlsli"

SamplerState s_clamped : register(s1); // linear

float4 main(float4 position : SV_Position) : SV_Target
{
    return ScreenSpace.SampleLevel(s_clamped, position.xy / float2(size), 0);
}
