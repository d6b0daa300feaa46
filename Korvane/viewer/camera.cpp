#include "Korvane/viewer/camera.h"

#include <glm/ext/matrix_clip_space.hpp>
#include <glm/ext/matrix_transform.hpp>
#include <glm/matrix.hpp>

#include <algorithm>
#include <cmath>

namespace korvane
{

namespace
{

constexpr float closest = 0.3f;
constexpr float furthest = 60.0f;
constexpr float steepest = 1.45f;
constexpr float margin = 1.06f;

} // namespace

void camera::frame(const model_bounds& bounds, float aspect)
{
    model_centre = bounds.centre();
    model_extent = bounds.extent();
    const float largest = std::max({model_extent.x, model_extent.y, model_extent.z});
    model_scale = largest > 0 ? framed_extent / largest : 1.0f;
    offset = glm::vec3(0);

    // The cylinder that the box sweeps when it turns must fit, at its nearest and at its tallest.
    const glm::vec3 half = model_extent * (0.5f * model_scale);
    const float radius = std::hypot(half.x, half.z);
    const float tangent = std::tan(field_of_view / 2);
    const float tall = (half.y + radius * std::abs(std::sin(pitch))) / tangent;
    const float wide = radius / (tangent * std::max(aspect, 0.01f));
    distance = std::clamp(std::max(tall, wide) * margin + radius, 1.0f, furthest);
}

void camera::turn(float yaw_change, float pitch_change)
{
    yaw += yaw_change;
    pitch = std::clamp(pitch + pitch_change, -steepest, steepest);
}

void camera::zoom(float factor)
{
    distance = std::clamp(distance * factor, closest, furthest);
}

void camera::move(float distance_change)
{
    distance = std::clamp(distance + distance_change, closest, furthest);
}

void camera::shift(const glm::vec3& change)
{
    offset += change;
}

glm::mat4 camera::view() const
{
    return glm::lookAtLH(eye(), offset, glm::vec3(0, 1, 0));
}

glm::mat4 camera::projection(float aspect)
{
    return glm::perspectiveLH_ZO(field_of_view, aspect, near_plane, far_plane);
}

glm::mat4 camera::yawMatrix() const
{
    return glm::rotate(glm::mat4(1), yaw, glm::vec3(0, 1, 0)) * glm::translate(glm::mat4(1), -model_centre);
}

glm::mat4 camera::pitchMatrix() const
{
    return glm::rotate(glm::mat4(1), pitch, glm::vec3(1, 0, 0));
}

glm::mat4 camera::world() const
{
    return glm::scale(glm::mat4(1), glm::vec3(model_scale));
}

std::optional<glm::vec3> camera::toPixel(const glm::vec3& point, float width, float height) const
{
    const glm::vec4 clip = toClip(width / height) * glm::vec4(point, 1); // w is the distance along the view
    if (clip.w < near_plane)
        return std::nullopt;
    return glm::vec3((clip.x / clip.w * 0.5f + 0.5f) * width, (0.5f - clip.y / clip.w * 0.5f) * height, clip.w);
}

glm::mat4 camera::toClip(float aspect) const
{
    return projection(aspect) * view() * world() * pitchMatrix() * yawMatrix();
}

void camera::fill(float aspect, mvp_buffer& buffer) const
{
    const glm::mat4 seen = view();
    const glm::vec3 at = eye();
    buffer.mWorld = gpuMatrix(world());
    buffer.View = gpuMatrix(seen);
    buffer.ViewI = gpuMatrix(glm::inverse(seen));
    buffer.Projection = gpuMatrix(projection(aspect));
    buffer.rot_y = gpuMatrix(yawMatrix());
    buffer.rot_x = gpuMatrix(pitchMatrix());
    buffer.cameraPosition = {at.x, at.y, at.z};
    buffer.cameraLookAt = {offset.x, offset.y, offset.z};
}

} // namespace korvane
