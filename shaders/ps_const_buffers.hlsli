// Constant buffer of the pixel stage, 368 bytes; mirrored by light_buffer in D3D11_RENDER_LIB/gpu_layouts.h.
struct Light
{
    float3 lightDirection; // the way the light travels, world space
    float specularPower;
    float4 ambientLight;
    float4 diffuseColor; // of the directional light, or what the point light's colour is multiplied by
    float4 specularColor;
    float radiannce; // the factors are changed by keys; 1 is neutral
    float ambientFactor;
    float diffuseFactor;
    float specularFactor;
    float roughnessFactor;
    float3 point_attenuation; // constant, linear, quadratic
    float3 point_position;
    float point_range;
    float4 point_color; // zero when the point light is off
};

cbuffer LightBuffer : register(b0)
{
    matrix mRotEnv;
    Light light[2];
    int show_reflections;
    uint is_diffuse_linear;  // 1: the view does not decode sRGB, the shader does
    uint is_specular_linear;
    int has_alpha; // 1: alpha tested
    float3 eyePosistion;
    int pad1;
    int4 debug_flags; // x: smoothness channel 1..4, 0 is 1; y: 1 scales by one over pi; z: bit per bound texture slot;
                      // w: flags of the draw, from bit 8 on the channel that is shown
};

static const int draw_selected = 1;    // of debug_flags.w: the group is outlined
static const int draw_wire_over = 2;   // edges over the surface
static const int draw_occluded = 4;    // the mask's alpha darkens what light comes from around

// The alpha of the normals' target, and of a picture as the screen has it: the final pass draws the outline where it changes.
static const float selected_mark = 0.25;

float groupMark()
{
    return (debug_flags.w & draw_selected) != 0 ? selected_mark : 1.0;
}
