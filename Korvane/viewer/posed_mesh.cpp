#include "Korvane/viewer/posed_mesh.h"

#include <glm/geometric.hpp>
#include <glm/mat3x3.hpp>

#include <algorithm>
#include <cmath>
#include <limits>

namespace korvane
{

namespace
{

glm::vec3 unit(const glm::vec3& direction)
{
    const float length = glm::length(direction);
    return length > 1e-10f ? direction / length : glm::vec3(0);
}

glm::vec3 along(const glm::mat4& turn, const glm::vec3& direction)
{
    return glm::mat3(turn) * direction;
}

// Möller and Trumbore; below zero: the ray misses it.
float distanceTo(const view_ray& ray, const glm::vec3& a, const glm::vec3& b, const glm::vec3& c)
{
    const glm::vec3 edge1 = b - a, edge2 = c - a;
    const glm::vec3 across = glm::cross(ray.direction, edge2);
    const float area = glm::dot(edge1, across);
    if (area == 0)
        return -1;
    const glm::vec3 from = ray.origin - a;
    const float u = glm::dot(from, across) / area;
    const glm::vec3 other = glm::cross(from, edge1);
    const float v = glm::dot(ray.direction, other) / area;
    if (!(u >= 0 && v >= 0 && u + v <= 1))
        return -1;
    return glm::dot(edge2, other) / area;
}

// Of all vertices of a group; places is used again.
void posePlaces(const posed_scene& pose, const scene_part& part, const scene_group& group,
                std::vector<glm::vec3>& places)
{
    places.clear();
    for (const vertex_record& vertex : group.store->vertices.records())
        places.push_back(posedVertex(pose, part, group, vertex).position);
}

template <class visitor>
void forEachGroup(const loaded_scene& scene, visitor&& visit)
{
    for (std::size_t part = 0; part < scene.parts.size(); ++part)
        for (std::size_t group = 0; group < scene.parts[part].groups().size(); ++group)
            visit(part, group, scene.parts[part], scene.parts[part].groups()[group]);
}

} // namespace

std::array<float, 4> skinningWeights(const std::array<std::uint32_t, 4>& bones, const std::array<float, 4>& weights)
{
    std::array<float, 4> kept = weights;
    float file_sum = 0, sum = 0;
    for (std::size_t i = 0; i < 4; ++i)
    {
        if (i > 0 && bones[i] == bones[0])
            kept[i] = 0;
        file_sum += weights[i];
        sum += kept[i];
    }
    if (!(std::abs(file_sum - 1) <= 0.01f))
        return kept;
    if (!(sum > 1e-6f))
        return {1, 0, 0, 0};
    for (float& weight : kept)
        weight /= sum;
    return kept;
}

bool isMoved(const scene_part& part, const scene_group& group)
{
    return part.bone >= 0 || (part.model->has_skeleton && group.has_weights);
}

posed_vertex posedVertex(const posed_scene& pose, const scene_part& part, const scene_group& group,
                         const vertex_record& vertex)
{
    const glm::vec3 position = usableCoordinates(vertex.position);
    const glm::vec3 normal = usableCoordinates(vertex.normal);
    if (!isMoved(part, group))
        return {position, unit(normal)};
    if (part.bone >= 0)
    {
        const glm::mat4 place = pose.palette(part.rig, static_cast<std::uint32_t>(part.bone)) * part.weapon;
        return {glm::vec3(place * glm::vec4(position, 1)), unit(along(place, normal))};
    }
    std::array<float, 4> weights{};
    for (std::size_t i = 0; i < 4; ++i)
        weights[i] = usableCoordinate(vertex.weights[i]);
    weights = skinningWeights(vertex.bones, weights);
    posed_vertex result;
    for (std::size_t i = 0; i < 4; ++i)
    {
        if (weights[i] == 0)
            continue;
        const glm::mat4& place = pose.palette(part.rig, vertex.bones[i]);
        result.position += weights[i] * glm::vec3(place * glm::vec4(position, 1));
        result.normal += weights[i] * along(place, normal);
    }
    result.normal = unit(result.normal);
    return result;
}

model_bounds posedBounds(const posed_scene& pose)
{
    model_bounds bounds;
    std::vector<glm::vec3> places;
    forEachGroup(pose.scene(), [&](std::size_t, std::size_t, const scene_part& part, const scene_group& group) {
        posePlaces(pose, part, group, places);
        const std::vector<std::uint16_t>& indices = group.store->indices;
        forEachTriangle(*group.store, [&](std::size_t first) {
            for (std::size_t corner = first; corner < first + 3; ++corner)
                bounds.add(usableCoordinates(places[indices[corner]]));
        });
    });
    return bounds;
}

view_ray rayThrough(const glm::mat4& clip_to_world, const glm::vec2& picture, const glm::vec2& pixel)
{
    const glm::vec2 place(2 * pixel.x / picture.x - 1, 1 - 2 * pixel.y / picture.y);
    const glm::vec4 near_end = clip_to_world * glm::vec4(place, 0, 1);
    const glm::vec4 far_end = clip_to_world * glm::vec4(place, 1, 1);
    const glm::vec3 origin = glm::vec3(near_end) / near_end.w;
    return {origin, glm::vec3(far_end) / far_end.w - origin};
}

namespace
{

// Where the ray is within a box, as distances: an empty span for one that it misses.
struct ray_span
{
    float begin = std::numeric_limits<float>::infinity(), end = -std::numeric_limits<float>::infinity();
    bool isEmpty() const { return !(begin <= end); }
};

ray_span spanIn(const model_bounds& box, const view_ray& ray)
{
    ray_span span{0, std::numeric_limits<float>::infinity()};
    for (int axis = 0; axis < 3; ++axis)
    {
        // What is rounded away while triangles are hit must not be missed here.
        const float reach = 1e-5f * (std::abs(box.min[axis]) + std::abs(box.max[axis]) + 1);
        const float low = box.min[axis] - reach, high = box.max[axis] + reach;
        if (ray.direction[axis] == 0)
        {
            if (ray.origin[axis] < low || ray.origin[axis] > high)
                return {};
            continue;
        }
        const float first = (low - ray.origin[axis]) / ray.direction[axis];
        const float second = (high - ray.origin[axis]) / ray.direction[axis];
        span.begin = std::max(span.begin, std::min(first, second));
        span.end = std::min(span.end, std::max(first, second));
    }
    return span;
}

void addTurned(model_bounds& bounds, const model_bounds& box, const glm::mat4& place)
{
    const glm::vec3 centre = glm::vec3(place * glm::vec4(box.centre(), 1)), half = box.extent() * 0.5f;
    const glm::mat3 turn(place);
    const glm::vec3 reach = glm::abs(turn[0]) * half.x + glm::abs(turn[1]) * half.y + glm::abs(turn[2]) * half.z;
    bounds.add(centre - reach);
    bounds.add(centre + reach);
}

// The nearest triangle that a ray hits.
class triangle_search
{
public:
    triangle_search(const posed_scene& pose, const view_ray& ray) : m_pose(pose), m_ray{ray.origin, unit(ray.direction)}
    {
    }

    void addGroup(std::size_t part, std::size_t group)
    {
        m_part = part;
        m_group = group;
        const scene_part& shown = m_pose.scene().parts[part];
        const std::vector<std::uint16_t>& indices = source().store->indices;
        if (!shown.boxes || group >= shown.boxes->size())
            return addTriangles(0, indices.size());
        const group_boxes& boxes = (*shown.boxes)[group];
        if (!isWorthALook(boxes.all, boxes.is_unbounded))
            return;
        for (const triangle_run& run : boxes.runs)
            if (isWorthALook(run.boxes, run.is_unbounded))
                addTriangles(run.first_index, run.end_index);
    }

    const std::optional<picked_triangle>& nearest() const { return m_nearest; }

private:
    const scene_part& shown() const { return m_pose.scene().parts[m_part]; }
    const scene_group& source() const { return shown().groups()[m_group]; }

    bool isWorthALook(const std::vector<bone_box>& boxes, bool is_unbounded) const
    {
        const scene_part& part = shown();
        const bool is_moved = isMoved(part, source());
        if (is_unbounded && is_moved && part.bone < 0)
            return true;
        model_bounds bounds;
        for (const bone_box& one : boxes)
            if (!is_moved)
            {
                bounds.add(one.box.min);
                bounds.add(one.box.max);
            }
            else if (part.bone >= 0)
                addTurned(bounds, one.box,
                          m_pose.palette(part.rig, static_cast<std::uint32_t>(part.bone)) * part.weapon);
            else
                addTurned(bounds, one.box, m_pose.palette(part.rig, one.bone));
        const ray_span span = bounds.isEmpty() ? ray_span() : spanIn(bounds, m_ray);
        return !span.isEmpty() && (!m_nearest || span.begin <= m_nearest->distance);
    }

    void addTriangles(std::size_t first_index, std::size_t end_index)
    {
        const vertex_store& store = *source().store;
        const auto placeOf = [&](std::size_t corner) {
            return posedVertex(m_pose, shown(), source(), store.vertices[store.indices[corner]]).position;
        };
        forEachTriangle(store, first_index, end_index, [&](std::size_t first) {
            const float distance = distanceTo(m_ray, placeOf(first), placeOf(first + 1), placeOf(first + 2));
            if (distance >= 0 && (!m_nearest || distance < m_nearest->distance))
                m_nearest = picked_triangle{m_part, m_group, first / 3, distance};
        });
    }

    const posed_scene& m_pose;
    view_ray m_ray;
    std::size_t m_part = 0, m_group = 0; // that are looked at
    std::optional<picked_triangle> m_nearest;
};

} // namespace

std::optional<picked_triangle> pickTriangle(const posed_scene& pose, const view_ray& ray, const group_filter& is_shown)
{
    triangle_search search(pose, ray);
    forEachGroup(pose.scene(), [&](std::size_t part, std::size_t group, const scene_part&, const scene_group&) {
        if (!is_shown || is_shown(part, group))
            search.addGroup(part, group);
    });
    return search.nearest();
}

} // namespace korvane
