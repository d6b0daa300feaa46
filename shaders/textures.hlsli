// What the pixel stage can look things up in. The five textures of a group may be missing: debug_flags.z has a bit set
// for each that is there (bit 0: t6).
TextureCube tex_cube_specular : register(t0); // mip level = roughness
TextureCube tex_cube_diffuse : register(t2);
Texture2D tex_diffuse : register(t6);
Texture2D tex_normal : register(t7);
Texture2D tex_specular : register(t8);
Texture2D tex_mask : register(t9);
Texture2D tex_gloss_map : register(t10);
Texture2D ScreenSpace : register(t11);

SamplerState SampleType : register(s0); // linear, wraps
SamplerState s_normal : register(s2);   // linear, wraps

static const int bound_diffuse = 1;
static const int bound_normal = 2;
static const int bound_specular = 4;
static const int bound_mask = 8;
static const int bound_gloss = 16;
