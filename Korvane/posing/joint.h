#pragma once

// One bone of a pose. A pose is an array of these, in the order of the skeleton file's bones.

#include <glm/gtc/quaternion.hpp>
#include <glm/mat4x4.hpp>
#include <glm/vec3.hpp>

#include <cstdint>
#include <string>

namespace korvane
{

struct joint
{
    glm::vec3 translation{0};       // metres, in the parent's space
    glm::quat rotation{1, 0, 0, 0}; // in the parent's space; GLM's order (w, x, y, z)
    glm::mat4 local{1};             // of the two above (transform.h); local and world are filled by the skeleton_tree
    glm::mat4 world{1};
    std::string name;
    std::uint32_t index = 0;  // the bone's position in the skeleton file
    std::int32_t parent = -1; // index of the parent; -1: none
};

} // namespace korvane
