// Pixel shader of lines in pictures that are drawn as the screen has them.
#define AS_ON_SCREEN
#include "line_ps.hlsl"
