#pragma once

// The camera of the model view: it stands on the -z side and looks along +z at the model, which turns about its own
// middle (yaw, then pitch). The model is scaled to a largest extent of 1.8 so that distances and lights mean the same
// for a dagger and for a ship. Left-handed, y up; portable and a plain value.

#include "D3D11_RENDER_LIB/gpu_layouts.h"
#include "Korvane/scene/scene_geometry.h"

#include <glm/mat4x4.hpp>
#include <glm/vec3.hpp>

#include <optional>

namespace korvane
{

inline constexpr float field_of_view = 0.5235988f; // vertical, pi / 6
inline constexpr float near_plane = 0.1f;
inline constexpr float far_plane = 100.0f;
inline constexpr float framed_extent = 1.8f;

struct camera
{
    // Radians. At yaw 0 the model's -z side, which figures look towards, faces the viewer; the view starts a little
    // from the side and from above.
    static constexpr float start_yaw = 0.35f;
    static constexpr float start_pitch = -0.10f;

    float yaw = start_yaw;
    float pitch = start_pitch;
    float distance = 4.0f;     // from the point that is looked at
    glm::vec3 offset{0};       // of eye and look-at point
    glm::vec3 model_centre{0}; // in the model's space
    glm::vec3 model_extent{0}; // the same, before scaling
    float model_scale = 1;

    bool operator==(const camera&) const = default;

    // Takes over the bounds of a model; keeps the angles.
    void frame(const model_bounds& bounds, float aspect);
    void turn(float yaw_change, float pitch_change); // the pitch stays short of the poles
    void zoom(float factor);
    void move(float distance_change);
    void shift(const glm::vec3& change); // of the offset, in the view's axes

    glm::vec3 eye() const { return offset - glm::vec3(0, 0, distance); }
    glm::mat4 view() const;
    static glm::mat4 projection(float aspect); // width / height
    glm::mat4 yawMatrix() const;               // includes the move of the model's middle to the origin
    glm::mat4 pitchMatrix() const;
    glm::mat4 world() const;

    // Of a point in the model's space: pixels from the upper left corner, and the distance from the eye; nothing when
    // it is behind the eye.
    std::optional<glm::vec3> toPixel(const glm::vec3& point, float width, float height) const;
    glm::mat4 toClip(float aspect) const; // from the model's space, for GLM's columns

    // Fills the matrices and camera fields of the vertex stage's buffer; the rest stays.
    void fill(float aspect, mvp_buffer& buffer) const;
};

} // namespace korvane
