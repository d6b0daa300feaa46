// Final pass with the outlines of marked groups: marks in the alpha of the normals' target.
#define WITH_OUTLINES
#include "final_ps.hlsl"
