// The shading pass for the usual lights and for maps whose views decode them.
#define OF_USUAL_LIGHTS
#define OF_DECODED_MAPS
#include "shading_ps.hlsl"
