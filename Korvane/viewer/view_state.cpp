#include "Korvane/viewer/view_state.h"

#include "Korvane/viewer/key_table.h"

#include <glm/gtc/matrix_transform.hpp>

#include <algorithm>
#include <cmath>

namespace korvane
{

namespace
{

constexpr float turn_per_pixel = 0.008f;
constexpr float zoom_per_notch = 0.9f;
constexpr float steepest_light = 0.85f; // with its own slope short of the poles

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

void view_state::showChannel(view_channel wanted)
{
    shows_normals = shows_plain = false;
    channel = wanted;
}

bool view_state::isHidden(const shown_group& group) const
{
    return hidden && std::binary_search(hidden->begin(), hidden->end(), group);
}

void view_state::setHidden(const shown_group& group, bool is_hidden)
{
    if (is_hidden == isHidden(group))
        return;
    auto changed = hidden ? std::make_shared<shown_groups>(*hidden) : std::make_shared<shown_groups>();
    const auto place = std::lower_bound(changed->begin(), changed->end(), group);
    if (is_hidden)
        changed->insert(place, group);
    else
        changed->erase(place);
    hidden = std::move(changed);
}

bool view_state::onKey(unsigned virtual_key)
{
    const view_key* const key = findViewKey(virtual_key);
    if (key == nullptr || key->change == nullptr)
        return false;
    key->change(*this);
    return true;
}

void view_state::onWheel(float notches)
{
    eye.zoom(std::pow(zoom_per_notch, notches));
}

void view_state::onDrag(float dx_pixels, float dy_pixels)
{
    eye.turn(-dx_pixels * turn_per_pixel, -dy_pixels * turn_per_pixel);
}

void view_state::onLightDrag(float dx_pixels, float dy_pixels)
{
    light_yaw += dx_pixels * turn_per_pixel;
    light_pitch = std::clamp(light_pitch + dy_pixels * turn_per_pixel, -steepest_light, steepest_light);
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
    const glm::mat4 about_y = glm::rotate(glm::mat4(1), light_yaw, glm::vec3(0, 1, 0));
    const gpu_float3& way = lights[0].base.lightDirection;
    const glm::vec3 turned = glm::mat3(about_y * glm::rotate(glm::mat4(1), light_pitch, glm::vec3(1, 0, 0))) *
                             glm::vec3(way[0], way[1], way[2]);
    ps.light[0].lightDirection = {turned.x, turned.y, turned.z};
    ps.mRotEnv = gpuMatrix(glm::transpose(about_y)); // from the world into the environment
    const glm::vec3 at = eye.eye();
    ps.eyePosistion = {at.x, at.y, at.z};
    ps.show_reflections = show_reflections ? 1 : 0;
    ps.debug_flags[0] = smoothness_channel;
    ps.debug_flags[1] = scale_by_one_over_pi ? 1 : 0;
}

} // namespace korvane
