// Pixel shader of one colour: what bench/viewer.cpp compares a frame with.
#include "model_vertex.hlsli"

float4 main(model_pixel pixel) : SV_Target
{
    return float4(0.3, 0.4, 0.5, 1);
}
