// Pixel shader of the surface pass for groups that are alpha tested.
#define WITH_ALPHA
#include "surface_ps.hlsl"
