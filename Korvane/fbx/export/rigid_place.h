#pragma once

// A matrix taken apart: a turn and a move, which every format's nodes have, and what is left, which goes into the
// points.

#include <glm/geometric.hpp>
#include <glm/gtc/quaternion.hpp>
#include <glm/mat4x4.hpp>
#include <glm/matrix.hpp>
#include <glm/vec3.hpp>

#include <cmath>

namespace korvane
{

struct rigid_place
{
    explicit rigid_place(const glm::dmat4& whole) : translation(whole[3])
    {
        glm::dvec3 x(whole[0]), y(whole[1]);
        x = glm::length(x) > 1e-9 ? glm::normalize(x) : glm::dvec3(1, 0, 0);
        y -= x * glm::dot(x, y);
        if (glm::length(y) > 1e-9)
        {
            rotation = glm::quat_cast(glm::dmat3(x, glm::normalize(y), glm::cross(x, glm::normalize(y))));
            rest = glm::inverse(matrix()) * whole;
        }
        else // flat: nothing can be said of how it is turned
            rest = glm::dmat4(glm::dmat3(whole));
    }

    glm::dmat4 matrix() const
    {
        glm::dmat4 result = glm::mat4_cast(rotation);
        result[3] = glm::dvec4(translation, 1);
        return result;
    }
    bool isWhole() const // nothing is left
    {
        double most = 0;
        for (glm::length_t column = 0; column < 4; ++column)
            for (glm::length_t row = 0; row < 4; ++row)
                most = std::fmax(most, std::abs(rest[column][row] - (column == row ? 1 : 0)));
        return most < 1e-5;
    }

    glm::dvec3 translation{0};
    glm::dquat rotation{1, 0, 0, 0};
    glm::dmat4 rest{1}; // matrix() * rest is the whole
};

} // namespace korvane
