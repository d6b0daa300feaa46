#pragma once

// The structures that the shaders read, byte for byte. Each says which shader source it must match; the assertions hold
// it there. Matrices are held as the shaders expect them: transposed (see gpuMatrix).

#include <glm/mat4x4.hpp>

#include <array>
#include <cstddef>
#include <cstdint>

namespace korvane
{

using gpu_float3 = std::array<float, 3>;
using gpu_float4 = std::array<float, 4>;
using gpu_matrix = std::array<gpu_float4, 4>;

inline constexpr gpu_matrix gpu_identity{{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};
inline constexpr std::size_t max_bones = 256;

// GLM's matrices act on column vectors from the left, the shaders' on row vectors from the right, and the shaders store
// columns: so GLM's rows are what a constant buffer holds.
[[nodiscard]] inline gpu_matrix gpuMatrix(const glm::mat4& matrix)
{
    gpu_matrix result{};
    for (std::size_t row = 0; row < 4; ++row)
        for (std::size_t column = 0; column < 4; ++column)
            result[row][column] = matrix[static_cast<int>(column)][static_cast<int>(row)];
    return result;
}

// First the one, then the other.
[[nodiscard]] inline gpu_matrix gpuProduct(const gpu_matrix& later, const gpu_matrix& first)
{
    gpu_matrix result{};
    for (std::size_t row = 0; row < 4; ++row)
        for (std::size_t column = 0; column < 4; ++column)
            for (std::size_t i = 0; i < 4; ++i)
                result[row][column] += later[row][i] * first[i][column];
    return result;
}

// model_vertex in shaders/model_vs.hlsl and the model input layout
struct gpu_vertex
{
    gpu_float3 position;
    std::array<float, 2> uv;
    gpu_float3 normal;
    gpu_float3 tangent;
    gpu_float3 binormal;
    std::array<std::uint32_t, 4> bones;
    gpu_float4 weights;
};
static_assert(sizeof(gpu_vertex) == 88);
static_assert(offsetof(gpu_vertex, position) == 0);
static_assert(offsetof(gpu_vertex, uv) == 12);
static_assert(offsetof(gpu_vertex, normal) == 20);
static_assert(offsetof(gpu_vertex, tangent) == 32);
static_assert(offsetof(gpu_vertex, binormal) == 44);
static_assert(offsetof(gpu_vertex, bones) == 56);
static_assert(offsetof(gpu_vertex, weights) == 72);

// line_vertex in shaders/line_vs.hlsl and the line input layout
struct gpu_line_vertex
{
    gpu_float3 position;
    gpu_float4 color;
};
static_assert(sizeof(gpu_line_vertex) == 28);
static_assert(offsetof(gpu_line_vertex, color) == 12);

// ModelViewProjectionConstantBuffer in shaders/vs_const_buffers.hlsli and shaders/line_vs.hlsl
struct model_view_projection_constant_buffer
{
    gpu_matrix mWorld = gpu_identity;
    gpu_matrix View = gpu_identity;
    gpu_matrix Projection = gpu_identity;
    gpu_matrix ViewI = gpu_identity;
    gpu_float3 cameraPosition{};
    std::int32_t is_weapon = 0;
    gpu_float3 cameraLookAt{};
    std::int32_t static_model = 0;
    gpu_float4 color{1, 1, 1, 1};
    gpu_matrix rot_x = gpu_identity;
    gpu_matrix rot_y = gpu_identity;
    gpu_matrix rot_z = gpu_identity;
    gpu_matrix mWeapon = gpu_identity;
    std::array<gpu_matrix, max_bones> tranforms;
    std::array<gpu_matrix, max_bones> inverse;

    model_view_projection_constant_buffer()
    {
        tranforms.fill(gpu_identity);
        inverse.fill(gpu_identity);
    }
};
using mvp_buffer = model_view_projection_constant_buffer;
static_assert(sizeof(mvp_buffer) == 33328);
static_assert(offsetof(mvp_buffer, mWorld) == 0);
static_assert(offsetof(mvp_buffer, View) == 64);
static_assert(offsetof(mvp_buffer, Projection) == 128);
static_assert(offsetof(mvp_buffer, ViewI) == 192);
static_assert(offsetof(mvp_buffer, cameraPosition) == 256);
static_assert(offsetof(mvp_buffer, is_weapon) == 268);
static_assert(offsetof(mvp_buffer, cameraLookAt) == 272);
static_assert(offsetof(mvp_buffer, static_model) == 284);
static_assert(offsetof(mvp_buffer, color) == 288);
static_assert(offsetof(mvp_buffer, rot_x) == 304);
static_assert(offsetof(mvp_buffer, rot_y) == 368);
static_assert(offsetof(mvp_buffer, rot_z) == 432);
static_assert(offsetof(mvp_buffer, mWeapon) == 496);
static_assert(offsetof(mvp_buffer, tranforms) == 560);
static_assert(offsetof(mvp_buffer, inverse) == 16944);

// PoseBuffer in shaders/frame_vs.hlsl
struct pose_buffer
{
    using bone_rows = std::array<gpu_float4, 3>;

    gpu_matrix to_clip = gpu_identity; // from the world
    std::int32_t is_static = 0;
    std::int32_t is_weapon = 0;
    std::array<std::int32_t, 2> pad{};
    std::array<bone_rows, max_bones + 1> palette{}; // from the model to the world; the last for no bone
};
static_assert(sizeof(pose_buffer) == 12416);
static_assert(offsetof(pose_buffer, palette) == 80);

// Light in shaders/ps_const_buffers.hlsli. A directional light (none when its direction is zero) and a point light (off
// when its range is zero) that share their colours and factors.
struct gpu_light
{
    gpu_float3 lightDirection{};
    float specularPower = 1;
    gpu_float4 ambientLight{};
    gpu_float4 diffuseColor{};
    gpu_float4 specularColor{};
    float radiannce = 1;
    float ambientFactor = 1;
    float diffuseFactor = 1;
    float specularFactor = 1;
    float roughnessFactor = 1;
    gpu_float3 point_attenuation{}; // constant, linear, quadratic
    gpu_float3 point_position{};
    float point_range = 0;
    gpu_float4 point_color{};
};
static_assert(sizeof(gpu_light) == 128);
static_assert(offsetof(gpu_light, specularPower) == 12);
static_assert(offsetof(gpu_light, ambientLight) == 16);
static_assert(offsetof(gpu_light, diffuseColor) == 32);
static_assert(offsetof(gpu_light, specularColor) == 48);
static_assert(offsetof(gpu_light, radiannce) == 64);
static_assert(offsetof(gpu_light, roughnessFactor) == 80);
static_assert(offsetof(gpu_light, point_attenuation) == 84);
static_assert(offsetof(gpu_light, point_position) == 96);
static_assert(offsetof(gpu_light, point_range) == 108);
static_assert(offsetof(gpu_light, point_color) == 112);

// LightBuffer in shaders/ps_const_buffers.hlsli
struct light_buffer
{
    gpu_matrix mRotEnv = gpu_identity;
    std::array<gpu_light, 2> light{};
    std::int32_t show_reflections = 1;
    std::uint32_t is_diffuse_linear = 0;
    std::uint32_t is_specular_linear = 0;
    std::int32_t has_alpha = 0;
    gpu_float3 eyePosistion{};
    std::int32_t pad1 = 0;
    // smoothness channel 1..4, scale by one over pi, bound texture slots, flags of the draw (draw_...) and from bit 8
    // on the channel that is shown
    std::array<std::int32_t, 4> debug_flags{1, 0, 0, 0};
};

// draw_... in shaders/ps_const_buffers.hlsli
inline constexpr std::int32_t draw_selected = 1;
inline constexpr std::int32_t draw_wire_over = 2;
inline constexpr std::int32_t draw_occluded = 4;
inline constexpr int draw_channel_shift = 8;

static_assert(sizeof(light_buffer) == 368);
static_assert(offsetof(light_buffer, mRotEnv) == 0);
static_assert(offsetof(light_buffer, light) == 64);
static_assert(offsetof(light_buffer, show_reflections) == 320);
static_assert(offsetof(light_buffer, is_diffuse_linear) == 324);
static_assert(offsetof(light_buffer, is_specular_linear) == 328);
static_assert(offsetof(light_buffer, has_alpha) == 332);
static_assert(offsetof(light_buffer, eyePosistion) == 336);
static_assert(offsetof(light_buffer, pad1) == 348);
static_assert(offsetof(light_buffer, debug_flags) == 352);

// What the final pass shows, and so what it does with it: content_... in shaders/final_ps.hlsl.
enum class target_content : std::int32_t
{
    light,  // linear, high dynamic range
    colour, // linear, 0..1
    data    // shown value for value
};

// FinalPassBuffer in shaders/final_buffer.hlsli
struct final_pass_buffer
{
    std::int32_t width = 1;
    std::int32_t height = 1;
    target_content content = target_content::light;
    std::int32_t flags = 0; // final_...
};
static_assert(sizeof(final_pass_buffer) == 16);

// final_... in shaders/final_ps.hlsl
inline constexpr std::int32_t final_softens = 2;

// PackingBuffer in shaders/pack_ps.hlsl
struct packing_buffer
{
    std::int32_t width = 1;
    std::int32_t height = 1;
    std::int32_t bound = 0;
    std::int32_t channel = 0;
};
static_assert(sizeof(packing_buffer) == 16);

// ShadowBuffer in shaders/shadow.hlsli
struct shadow_buffer
{
    gpu_matrix to_light = gpu_identity;
    float texel = 1;
    float slope = 0;
    float darkness = 0;
    float pad = 0;
};
static_assert(sizeof(shadow_buffer) == 80);

// ShadingBuffer in shaders/shading_ps.hlsl
struct shading_buffer
{
    gpu_float4 ray{}; // from the eye through the upper left corner of the picture, world space, one unit of depth
    gpu_float4 ray_x{};
    gpu_float4 ray_y{};
    std::array<gpu_float4, 9> irradiance{};
    gpu_float4 lobe_sharpness{};
    std::array<gpu_float4, 3> lobe_direction{}; // x of all four, y, z
    std::array<gpu_float4, 3> lobe_amplitude{}; // red, green, blue
    std::array<gpu_float4, 3> room{};           // what is added below, the middle, what is added above
    std::array<float, 8> levels{};              // diffuse, normal, specular, mask, gloss
};
static_assert(sizeof(shading_buffer) == 384);
static_assert(offsetof(shading_buffer, lobe_sharpness) == 192);
static_assert(offsetof(shading_buffer, levels) == 352);

// overlay_vertex in shaders/overlay_vs.hlsl
struct gpu_overlay_vertex
{
    std::array<float, 2> at; // pixels from the upper left corner
    std::array<float, 2> uv;
    gpu_float4 color; // as it is on the screen
};
static_assert(sizeof(gpu_overlay_vertex) == 32);

} // namespace korvane
