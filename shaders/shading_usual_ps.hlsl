// The shading pass for the lights that are usual, a directional one and a point light, and for pictures that are drawn as
// the screen has them. The processor leaves nothing out that an if leaves out, and each target that it fills costs.
#define OF_USUAL_LIGHTS
#define OF_PACKED_MAPS
#include "shading_ps.hlsl"
