#include "D3D11_RENDER_LIB/gpu_mesh.h"

#include <glm/geometric.hpp>

#include <algorithm>
#include <cmath>

namespace korvane
{

namespace
{

// Coordinates beyond a kilometre are damage too: they would swallow the rest of the model.
constexpr float furthest = 1000.0f;

float usable(float value)
{
    return std::isfinite(value) ? std::clamp(value, -furthest, furthest) : 0.0f;
}

gpu_float3 usable(const glm::vec3& value)
{
    return {usable(value.x), usable(value.y), usable(value.z)};
}

glm::vec3 asVector(const gpu_float3& value)
{
    return {value[0], value[1], value[2]};
}

gpu_vertex gpuVertex(const vertex_record& record, int bone)
{
    gpu_vertex vertex{};
    vertex.position = usable(record.position);
    vertex.uv = {usable(record.uv.x), usable(record.uv.y)};
    vertex.normal = usable(record.normal);
    vertex.tangent = usable(record.tangent);
    vertex.binormal = usable(record.bitangent);
    if (bone >= 0)
    {
        vertex.bones.fill(static_cast<std::uint32_t>(bone));
        vertex.weights = {1, 0, 0, 0};
        return vertex;
    }
    for (std::size_t i = 0; i < 4; ++i)
    {
        vertex.bones[i] = record.bones[i];
        vertex.weights[i] = usable(record.weights[i]);
    }
    return vertex;
}

void copyTriangles(const std::vector<std::uint16_t>& indices, gpu_mesh& mesh)
{
    mesh.indices.reserve(indices.size() / 3 * 3);
    for (std::size_t i = 0; i + 2 < indices.size(); i += 3)
    {
        const auto exists = [&](std::size_t at) { return indices[at] < mesh.vertices.size(); };
        if (exists(i) && exists(i + 1) && exists(i + 2))
            mesh.indices.insert(mesh.indices.end(), indices.begin() + static_cast<std::ptrdiff_t>(i),
                                indices.begin() + static_cast<std::ptrdiff_t>(i) + 3);
        else
            ++mesh.dropped_triangles;
    }
}

// In the left-handed space a triangle that is clockwise for its viewer has its cross product towards the viewer. The
// larger part of the area decides, so that a few mirrored triangles change nothing.
bool isWoundBackwards(const gpu_mesh& mesh)
{
    double agreement = 0;
    for (std::size_t i = 0; i + 2 < mesh.indices.size(); i += 3)
    {
        const gpu_vertex& a = mesh.vertices[mesh.indices[i]];
        const gpu_vertex& b = mesh.vertices[mesh.indices[i + 1]];
        const gpu_vertex& c = mesh.vertices[mesh.indices[i + 2]];
        const glm::vec3 origin = asVector(a.position);
        const glm::vec3 across = glm::cross(asVector(b.position) - origin, asVector(c.position) - origin);
        agreement += double{glm::dot(across, asVector(a.normal) + asVector(b.normal) + asVector(c.normal))};
    }
    return agreement < 0;
}

} // namespace

gpu_mesh buildGpuMesh(const group_data& group, int bone)
{
    gpu_mesh mesh;
    const auto records = group.store.vertices.records();
    mesh.vertices.reserve(records.size());
    for (const vertex_record& record : records)
        mesh.vertices.push_back(gpuVertex(record, bone));
    copyTriangles(group.store.indices, mesh);
    mesh.has_alpha = group.alpha_mode == 1;
    mesh.is_skinned = bone >= 0 || group.header.vertex_format == 3 || group.header.vertex_format == 4;
    mesh.is_wound_backwards = isWoundBackwards(mesh);
    for (std::size_t slot = 0; slot < texture_slot_count; ++slot)
    {
        const auto found =
            std::find_if(group.textures.begin(), group.textures.end(),
                         [slot](const texture_entry& entry) { return entry.type == texture_slot_types[slot]; });
        if (found != group.textures.end())
            mesh.texture_paths[slot] = found->path;
    }
    return mesh;
}

void model_bounds::add(const glm::vec3& point)
{
    least = glm::vec3(std::min(least.x, point.x), std::min(least.y, point.y), std::min(least.z, point.z));
    most = glm::vec3(std::max(most.x, point.x), std::max(most.y, point.y), std::max(most.z, point.z));
}

void addToBounds(const gpu_mesh& mesh, model_bounds& bounds)
{
    for (const std::uint16_t index : mesh.indices)
        bounds.add(asVector(mesh.vertices[index].position));
}

} // namespace korvane
