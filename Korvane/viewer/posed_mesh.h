#pragma once

// A part of a scene as the vertex shader moves it, computed on the processor: for clicks on the model, for the bounds
// of what is shown, and as what pictures are measured against. Nothing is drawn from it. Portable.

#include "Korvane/scene/loaded_scene.h"
#include "Korvane/viewer/posed_scene.h"

#include <glm/vec3.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace korvane
{

// What of a vertex's weights counts, in the order of its bones; vertexWeights() in shaders/model_vs.hlsl.
//
// Files repeat bones to fill the four places: one that is the first one's bone again counts nothing. Where the file's
// weights sum to one (within a hundredth), what is left is divided by its sum, and a vertex of which nothing is left
// follows its first bone; other sums stay what they are.
[[nodiscard]] std::array<float, 4> skinningWeights(const std::array<std::uint32_t, 4>& bones,
                                                   const std::array<float, 4>& weights);

struct posed_vertex
{
    glm::vec3 position{0};
    glm::vec3 normal{0}; // of unit length, or zero
};

// False for a group that stands as its file has it.
bool isMoved(const scene_part& part, const scene_group& group);
// A vertex of the group in the scene, in the pose that is shown.
[[nodiscard]] posed_vertex posedVertex(const posed_scene& pose, const scene_part& part, const scene_group& group,
                                       const vertex_record& vertex);

// Of all parts as they are shown. Takes a few milliseconds for a figure of 50,000 vertices.
[[nodiscard]] model_bounds posedBounds(const posed_scene& pose);

struct view_ray // in the scene
{
    glm::vec3 origin{0};
    glm::vec3 direction{0}; // of any length
};
// Through a place in the picture, whose origin is the left upper corner. clip_to_world as for GLM's columns, depth 0
// to 1.
[[nodiscard]] view_ray rayThrough(const glm::mat4& clip_to_world, const glm::vec2& picture, const glm::vec2& pixel);

struct picked_triangle
{
    std::size_t part = 0;
    std::size_t group = 0;
    std::size_t triangle = 0; // first corner / 3 in the group's indices
    float distance = 0;       // from the ray's origin, in metres
};
// The nearest triangle, from either side. is_shown says of a part and group whether it can be seen; empty: all can.
using group_filter = std::function<bool(std::size_t part, std::size_t group)>;
[[nodiscard]] std::optional<picked_triangle> pickTriangle(const posed_scene& pose, const view_ray& ray,
                                                          const group_filter& is_shown = {});

} // namespace korvane
