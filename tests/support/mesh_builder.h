#pragma once

// Decoded models made by hand, for tests of what is drawn.

#include "Korvane/models/rmv2_data.h"

#include <glm/geometric.hpp>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace korvane::test
{

// A grid of quads over a function of (u, v) in 0..1; the texture's v counts downwards from the top in the shader, so it
// is stored flipped here as the reader stores it. Triangles are clockwise seen from where the normals point.
template <class point_function, class normal_function>
group_data surfaceGroup(int columns, int rows, point_function&& point, normal_function&& normal)
{
    group_data group;
    const auto count = static_cast<std::size_t>((columns + 1) * (rows + 1));
    group.store.vertices = vertex_array(count);
    for (int j = 0; j <= rows; ++j)
        for (int i = 0; i <= columns; ++i)
        {
            const float u = static_cast<float>(i) / static_cast<float>(columns);
            const float v = static_cast<float>(j) / static_cast<float>(rows);
            vertex_record& record = group.store.vertices.records()[static_cast<std::size_t>(j * (columns + 1) + i)];
            record = vertex_record();
            record.position = point(u, v);
            record.normal = normal(u, v);
            record.uv = {u, 1 - v};
        }
    const auto add = [&group](int a, int b, int c) {
        const auto at = [&group](int i) -> const vertex_record& {
            return group.store.vertices[static_cast<std::size_t>(i)];
        };
        const glm::vec3 across = glm::cross(at(b).position - at(a).position, at(c).position - at(a).position);
        if (glm::dot(across, at(a).normal + at(b).normal + at(c).normal) < 0)
            std::swap(b, c);
        for (const int index : {a, b, c})
            group.store.indices.push_back(static_cast<std::uint16_t>(index));
    };
    for (int j = 0; j < rows; ++j)
        for (int i = 0; i < columns; ++i)
        {
            const int first = j * (columns + 1) + i;
            add(first, first + 1, first + columns + 1);
            add(first + 1, first + columns + 2, first + columns + 1);
        }
    return group;
}

inline group_data sphereGroup(const glm::vec3& centre, float radius, int segments)
{
    const auto direction = [](float u, float v) {
        const float around = u * 6.2831853f;
        const float down = v * 3.1415927f;
        return glm::vec3(std::sin(down) * std::cos(around), std::cos(down), std::sin(down) * std::sin(around));
    };
    return surfaceGroup(
        segments, segments / 2, [=](float u, float v) { return centre + radius * direction(u, v); }, direction);
}

// A square in the plane z = 0 that looks towards +z. For a viewer in front of it u grows to the right and v downwards.
inline group_data squareGroup(float half, int divisions = 1)
{
    return surfaceGroup(
        divisions, divisions, [=](float u, float v) { return glm::vec3((1 - 2 * u) * half, (1 - 2 * v) * half, 0); },
        [](float, float) { return glm::vec3(0, 0, 1); });
}

template <class... group_type>
RMV2_FILE_DATA modelOf(group_type&&... groups)
{
    RMV2_FILE_DATA data;
    data.version = 7;
    data.lod_count = 1;
    data.lods.resize(1);
    (data.lods[0].groups.push_back(std::forward<group_type>(groups)), ...);
    return data;
}

inline group_data textured(group_data group, const std::vector<std::pair<std::uint32_t, std::string>>& paths)
{
    for (const auto& [type, path] : paths)
    {
        texture_entry& entry = group.textures.emplace_back();
        entry.type = type;
        entry.path = path;
    }
    return group;
}

// For those who only look: the data must outlive it.
inline std::shared_ptr<const RMV2_FILE_DATA> lent(const RMV2_FILE_DATA& data)
{
    return {std::shared_ptr<const void>(), &data};
}

} // namespace korvane::test
