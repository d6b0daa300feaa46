#pragma once

// What triangles cover of a picture, by plain arithmetic: filled without the graphics device.

#include <glm/mat4x4.hpp>
#include <glm/vec2.hpp>
#include <glm/vec3.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

namespace korvane::test
{

class silhouette
{
public:
    // to_clip as for GLM's columns.
    silhouette(std::uint32_t width, std::uint32_t height, const glm::mat4& to_clip)
        : m_width(width)
        , m_height(height)
        , m_to_clip(to_clip)
        , m_covered(std::size_t{width} * height, false)
    {
    }
    void add(const std::array<glm::vec3, 3>& triangle)
    {
        std::array<glm::vec2, 3> at;
        std::transform(triangle.begin(), triangle.end(), at.begin(), [this](const glm::vec3& corner) {
            const glm::vec4 clip = m_to_clip * glm::vec4(corner, 1);
            return glm::vec2((clip.x / clip.w * 0.5f + 0.5f) * static_cast<float>(m_width),
                             (0.5f - clip.y / clip.w * 0.5f) * static_cast<float>(m_height));
        });
        const auto [left, right] = std::minmax({at[0].x, at[1].x, at[2].x});
        const auto [top, bottom] = std::minmax({at[0].y, at[1].y, at[2].y});
        for (std::uint32_t y = pixel(top, m_height); y < pixel(bottom + 1, m_height); ++y)
            for (std::uint32_t x = pixel(left, m_width); x < pixel(right + 1, m_width); ++x)
                if (isInside(at, {static_cast<float>(x) + 0.5f, static_cast<float>(y) + 0.5f}))
                    m_covered[std::size_t{y} * m_width + x] = true;
    }
    bool covers(std::uint32_t x, std::uint32_t y) const { return m_covered[std::size_t{y} * m_width + x]; }
    bool isEdge(std::uint32_t x, std::uint32_t y) const // not at the picture's own edge
    {
        for (const std::uint32_t row : {y - 1, y, y + 1})
            for (const std::uint32_t column : {x - 1, x, x + 1})
                if (covers(column, row) != covers(x, y))
                    return true;
        return false;
    }

private:
    static std::uint32_t pixel(float at, std::uint32_t size)
    {
        return static_cast<std::uint32_t>(std::clamp(std::floor(at), 0.0f, static_cast<float>(size)));
    }
    static bool isInside(const std::array<glm::vec2, 3>& at, const glm::vec2& p)
    {
        const auto side = [&p](const glm::vec2& from, const glm::vec2& to) {
            return (to.x - from.x) * (p.y - from.y) - (to.y - from.y) * (p.x - from.x);
        };
        const float ab = side(at[0], at[1]), bc = side(at[1], at[2]), ca = side(at[2], at[0]);
        return (ab >= 0 && bc >= 0 && ca >= 0) || (ab <= 0 && bc <= 0 && ca <= 0);
    }

    std::uint32_t m_width, m_height;
    glm::mat4 m_to_clip;
    std::vector<bool> m_covered;
};

} // namespace korvane::test
