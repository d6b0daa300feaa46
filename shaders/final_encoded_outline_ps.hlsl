// The final pass of pictures that were drawn as the screen has them, with the outlines of marked groups.
#define WITH_OUTLINES
#include "final_encoded_ps.hlsl"
