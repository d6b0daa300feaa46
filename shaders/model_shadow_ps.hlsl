// Pixel shader of models where the key light casts shadows.
#define WITH_SHADOW
#include "model_ps.hlsl"
