#include "D3D11_RENDER_LIB/screen_area.h"

#include <cmath>

namespace korvane
{

namespace
{

using vector4 = std::array<float, 4>;

// The constants hold what acts on columns (gpuMatrix).
vector4 applied(const gpu_matrix& matrix, const vector4& point)
{
    vector4 result{};
    for (std::size_t row = 0; row < 4; ++row)
        for (std::size_t column = 0; column < 4; ++column)
            result[row] += matrix[row][column] * point[column];
    return result;
}

// The corners of a box on the screen.
class projected_corners
{
public:
    projected_corners(std::int32_t width, std::int32_t height)
        : m_width(static_cast<float>(width))
        , m_height(static_cast<float>(height))
    {
    }

    void add(const gpu_matrix& to_clip, const model_bounds& box)
    {
        for (int corner = 0; corner < 8; ++corner)
        {
            const vector4 clip =
                applied(to_clip, {(corner & 1) != 0 ? box.max.x : box.min.x, (corner & 2) != 0 ? box.max.y : box.min.y,
                                  (corner & 4) != 0 ? box.max.z : box.min.z, 1});
            if (!(clip[3] > 1e-3f))
            {
                m_is_behind = true;
                return;
            }
            const float x = (clip[0] / clip[3] * 0.5f + 0.5f) * m_width;
            const float y = (0.5f - clip[1] / clip[3] * 0.5f) * m_height;
            m_left = std::min(m_left, x);
            m_right = std::max(m_right, x);
            m_top = std::min(m_top, y);
            m_bottom = std::max(m_bottom, y);
        }
    }
    screen_area area() const
    {
        const auto whole = [](float value, float most) {
            return static_cast<std::int32_t>(std::clamp(value, 0.0f, most));
        };
        if (m_is_behind || !(m_left <= m_right) || !std::isfinite(m_left + m_right + m_top + m_bottom))
            return {0, 0, static_cast<std::int32_t>(m_width), static_cast<std::int32_t>(m_height)};
        return {whole(m_left - 1, m_width), whole(m_top - 1, m_height), whole(m_right + 2, m_width),
                whole(m_bottom + 2, m_height)};
    }

private:
    float m_width, m_height;
    float m_left = 1e30f, m_top = 1e30f, m_right = -1e30f, m_bottom = -1e30f;
    bool m_is_behind = false;
};

} // namespace

void screen_area::add(const screen_area& other)
{
    if (other.isEmpty())
        return;
    if (isEmpty())
        *this = other;
    left = std::min(left, other.left);
    top = std::min(top, other.top);
    right = std::max(right, other.right);
    bottom = std::max(bottom, other.bottom);
}

screen_area screen_area::grown(std::int32_t by, std::int32_t width, std::int32_t height) const
{
    return {std::max(left - by, 0), std::max(top - by, 0), std::min(right + by, width), std::min(bottom + by, height)};
}

model_bounds& mesh_reach::boxOf(std::uint32_t bone)
{
    m_places.resize(max_bones + 1);
    std::uint32_t& place = m_places[std::min<std::size_t>(bone, max_bones)];
    if (place == 0)
    {
        m_bones.push_back({bone, {}});
        place = static_cast<std::uint32_t>(m_bones.size());
    }
    return m_bones[place - 1].box;
}

void mesh_reach::add(std::span<const gpu_vertex> vertices)
{
    for (const gpu_vertex& vertex : vertices)
    {
        const glm::vec3 at(vertex.position[0], vertex.position[1], vertex.position[2]);
        m_box.add(at);
        float sum = 0;
        for (std::size_t i = 0; i < vertex.weights.size(); ++i)
        {
            sum += vertex.weights[i];
            m_is_mixed = m_is_mixed && vertex.weights[i] >= 0;
            if (i == 0 || vertex.weights[i] > 0)
                boxOf(vertex.bones[i]).add(at);
        }
        m_is_mixed = m_is_mixed && std::abs(sum - 1) <= 0.01f;
    }
}

screen_area mesh_reach::onScreen(const mvp_buffer& constants, std::int32_t width, std::int32_t height) const
{
    const gpu_matrix to_clip = gpuProduct(
        constants.Projection,
        gpuProduct(constants.View, gpuProduct(constants.mWorld, gpuProduct(constants.rot_x, constants.rot_y))));
    projected_corners corners(width, height);
    const bool is_static = constants.static_model == 1 && constants.is_weapon != 1;
    if (!is_static && !m_is_mixed)
        return {0, 0, width, height};
    if (is_static)
        corners.add(to_clip, m_box);
    else
        for (const auto& [bone, box] : m_bones)
        {
            gpu_matrix posed =
                bone < max_bones ? gpuProduct(constants.tranforms[bone], constants.inverse[bone]) : gpu_identity;
            if (constants.is_weapon == 1)
                posed = gpuProduct(posed, constants.mWeapon);
            corners.add(gpuProduct(to_clip, posed), box);
        }
    return corners.area();
}

} // namespace korvane
