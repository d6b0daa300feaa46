#include "D3D11_RENDER_LIB/gpu_mesh.h"

#include "Korvane/scene/scene_geometry.h"

#include <glm/geometric.hpp>

namespace korvane
{

namespace
{

gpu_float3 usable(const glm::vec3& value)
{
    const glm::vec3 kept = usableCoordinates(value);
    return {kept.x, kept.y, kept.z};
}

glm::vec3 asVector(const gpu_float3& value)
{
    return {value[0], value[1], value[2]};
}

gpu_vertex gpuVertex(const vertex_record& record, int bone)
{
    gpu_vertex vertex{};
    vertex.position = usable(record.position);
    vertex.uv = {usableCoordinate(record.uv.x), usableCoordinate(record.uv.y)};
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
        vertex.weights[i] = usableCoordinate(record.weights[i]);
    }
    return vertex;
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

gpu_mesh buildGpuMesh(const vertex_store& store, int bone)
{
    gpu_mesh mesh;
    const auto records = store.vertices.records();
    mesh.vertices.reserve(records.size());
    for (const vertex_record& record : records)
        mesh.vertices.push_back(gpuVertex(record, bone));
    mesh.indices.reserve(store.indices.size());
    forEachTriangle(store, [&](std::size_t first) {
        const auto from = store.indices.begin() + static_cast<std::ptrdiff_t>(first);
        mesh.indices.insert(mesh.indices.end(), from, from + 3);
    });
    mesh.reach = mesh_reach(mesh.vertices);
    mesh.is_wound_backwards = isWoundBackwards(mesh);
    return mesh;
}

} // namespace korvane
