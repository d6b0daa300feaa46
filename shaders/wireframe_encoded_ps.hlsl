// Pixel shader of edges in pictures that are drawn as the screen has them.
#define AS_ON_SCREEN
#include "wireframe_ps.hlsl"
