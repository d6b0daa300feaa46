#include "Korvane/viewer/view_state.h"

#include <cmath>

namespace korvane
{

namespace
{

constexpr float turn_per_key = 0.06f;
constexpr float distance_per_key = 0.1f;
constexpr float turn_per_pixel = 0.008f;
constexpr float zoom_per_notch = 0.9f;
constexpr float point_step = 0.05f;

} // namespace

view_state::view_state()
{
    // Light 0: the key light from the upper left, behind the viewer. Light 1: a point light on the other side.
    gpu_light& key = lights[0].base;
    key.lightDirection = {0.52f, -0.62f, 0.59f};
    key.ambientLight = {0.85f, 0.85f, 0.85f, 1};
    key.diffuseColor = {1.05f, 1.00f, 0.93f, 1};
    key.specularColor = {1.05f, 1.00f, 0.93f, 1};
    gpu_light& side = lights[1].base;
    side.diffuseColor = {0.14f, 0.15f, 0.18f, 1};
    side.specularColor = {0.14f, 0.15f, 0.18f, 1};
    setLightDefaults();
}

void view_state::setLightDefaults()
{
    lights[0].point = point_light();
    lights[1].point = point_light();
    lights[1].point.is_active = true;
    lights[1].point.position = glm::vec3(1.0f, 1.0f, -1.0f);
}

bool view_state::onLightKey(unsigned virtual_key)
{
    gpu_light& light = lights[0].base;
    glm::vec3& point = lights[1].point.position;
    switch (virtual_key)
    {
    case key_code::page_up:
        light.ambientFactor *= 1.04f;
        return true;
    case key_code::page_down:
        light.ambientFactor *= 0.96f;
        return true;
    case key_code::home:
        light.radiannce *= 1.05f;
        return true;
    case key_code::end:
        light.radiannce *= 0.95f;
        return true;
    case key_code::up:
        light.specularFactor *= 1.05f;
        return true;
    case key_code::down:
        light.specularFactor *= 0.95f;
        return true;
    case key_code::right:
        light.roughnessFactor *= 1.005f;
        return true;
    case key_code::left:
        light.roughnessFactor *= 0.995f;
        return true;
    case key_code::numpad4:
        point.x -= point_step;
        return true;
    case key_code::numpad6:
        point.x += point_step;
        return true;
    case key_code::numpad8:
        point.y -= point_step;
        return true;
    case key_code::numpad2:
        point.y += point_step;
        return true;
    case key_code::numpad7:
        point.z -= point_step;
        return true;
    case key_code::numpad1:
        point.z += point_step;
        return true;
    default:
        return false;
    }
}

bool view_state::onToggleKey(unsigned virtual_key)
{
    switch (virtual_key)
    {
    case 'B':
        is_background_dark = !is_background_dark;
        return true;
    case 'F':
        shows_normals = !shows_normals;
        return true;
    case 'O':
        shows_plain = !shows_plain;
        return true;
    case 'W':
        shows_floor = !shows_floor;
        return true;
    case 'S':
        shows_skeleton = !shows_skeleton;
        return true;
    case 'T':
        show_reflections = !show_reflections;
        return true;
    case 'P':
        scale_by_one_over_pi = !scale_by_one_over_pi;
        return true;
    case 'C':
        is_wireframe = !is_wireframe;
        frame_limit = is_wireframe ? 1 : unlimited;
        return true;
    default:
        return false;
    }
}

bool view_state::onKey(unsigned virtual_key)
{
    if (virtual_key < key_code::first || virtual_key > key_code::last)
        return false;
    if (onLightKey(virtual_key) || onToggleKey(virtual_key))
        return true;
    gpu_light& light = lights[0].base;
    switch (virtual_key)
    {
    case '1':
    case '2':
    case '3':
    case '4':
        smoothness_channel = static_cast<int>(virtual_key - '0');
        return true;
    case 'A':
        eye.turn(turn_per_key, 0);
        return true;
    case 'D':
        eye.turn(-turn_per_key, 0);
        return true;
    case 'Q':
        eye.move(distance_per_key);
        return true;
    case 'E':
        eye.move(-distance_per_key);
        return true;
    case 'R':
        light.radiannce = light.ambientFactor = light.diffuseFactor = 1.0f;
        light.specularFactor = light.roughnessFactor = 1.0f;
        eye.offset = glm::vec3(0);
        return true;
    default:
        return false;
    }
}

void view_state::onWheel(float notches)
{
    eye.zoom(std::pow(zoom_per_notch, notches));
}

void view_state::onDrag(float dx_pixels, float dy_pixels)
{
    eye.turn(-dx_pixels * turn_per_pixel, -dy_pixels * turn_per_pixel);
}

void view_state::onShift(float dx_pixels, float dy_pixels, float height_pixels)
{
    if (height_pixels <= 0)
        return;
    const float per_pixel = 2 * eye.distance * std::tan(field_of_view / 2) / height_pixels;
    eye.shift(glm::vec3(-dx_pixels * per_pixel, dy_pixels * per_pixel, 0));
}

void view_state::fill(float aspect, mvp_buffer& vs, light_buffer& ps) const
{
    eye.fill(aspect, vs);
    for (std::size_t i = 0; i < lights.size(); ++i)
    {
        const point_light& point = lights[i].point;
        gpu_light& light = ps.light[i];
        light = lights[i].base;
        light.point_position = {point.position.x, point.position.y, point.position.z};
        light.point_attenuation = {point.attenuation.x, point.attenuation.y, point.attenuation.z};
        light.point_range = point.is_active ? point.range : 0;
        light.point_color = point.is_active ? point.color : std::array<float, 4>{};
    }
    const glm::vec3 at = eye.eye();
    ps.eyePosistion = {at.x, at.y, at.z};
    ps.show_reflections = show_reflections ? 1 : 0;
    ps.debug_flags[0] = smoothness_channel;
    ps.debug_flags[1] = scale_by_one_over_pi ? 1 : 0;
}

} // namespace korvane
