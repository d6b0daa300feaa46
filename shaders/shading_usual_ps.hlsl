// The shading pass for the lights that are usual: a directional one and a point light. The processor leaves nothing out
// that an if leaves out.
#define OF_USUAL_LIGHTS
#include "shading_ps.hlsl"
