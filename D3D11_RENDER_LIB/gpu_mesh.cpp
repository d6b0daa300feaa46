#include "D3D11_RENDER_LIB/gpu_mesh.h"

#include "Korvane/scene/scene_geometry.h"

#include <glm/geometric.hpp>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

namespace korvane
{

namespace
{

constexpr std::size_t portion = 256; // vertices: 22 KiB

// Whether no component has to be mended. Whole numbers are compared, which goes for several at once: those of larger
// numbers, of infinity and of what is no number, are larger. Bones are small ones or have the vertex looked at closer.
bool isUsableAsItIs(const vertex_record& record)
{
    using words = std::array<std::uint32_t, sizeof(vertex_record) / sizeof(std::uint32_t)>;
    constexpr auto largest = std::bit_cast<std::int32_t>(furthest_coordinate);
    int too_large = 0;
    for (const std::uint32_t word : std::bit_cast<words>(record))
        too_large |= static_cast<std::int32_t>(word & 0x7fffffff) > largest;
    return too_large == 0;
}

vertex_record usable(const vertex_record& record)
{
    vertex_record result = record;
    result.position = usableCoordinates(record.position);
    result.uv = {usableCoordinate(record.uv.x), usableCoordinate(record.uv.y)};
    result.normal = usableCoordinates(record.normal);
    result.bitangent = usableCoordinates(record.bitangent);
    result.tangent = usableCoordinates(record.tangent);
    std::transform(record.weights.begin(), record.weights.end(), result.weights.begin(), usableCoordinate);
    return result;
}

gpu_float3 asArray(const glm::vec3& value)
{
    return {value.x, value.y, value.z};
}

void convert(const vertex_record& record, gpu_vertex& vertex)
{
    vertex.position = asArray(record.position);
    vertex.uv = {record.uv.x, record.uv.y};
    vertex.normal = asArray(record.normal);
    vertex.tangent = asArray(record.tangent);
    vertex.binormal = asArray(record.bitangent);
    vertex.bones = record.bones;
    vertex.weights = record.weights;
}

// All three are about as long as they should be and stand across each other.
bool hasFrame(const vertex_record& record)
{
    const glm::vec3 across = glm::cross(record.normal, record.tangent);
    const float side = glm::dot(across, record.bitangent);
    return glm::dot(record.normal, record.normal) > 0.25f && glm::dot(across, across) > 0.1f && side * side > 0.25f;
}

// In the left-handed space a triangle that is clockwise for its viewer has its cross product towards the viewer. The
// larger part of the area decides, so that a few mirrored triangles change nothing.
bool isWoundBackwards(std::span<const vertex_record> vertices, std::span<const std::uint16_t> indices)
{
    double agreement = 0;
    for (std::size_t i = 0; i + 2 < indices.size(); i += 3)
    {
        const vertex_record& a = vertices[indices[i]];
        const vertex_record& b = vertices[indices[i + 1]];
        const vertex_record& c = vertices[indices[i + 2]];
        const glm::vec3 across = glm::cross(b.position - a.position, c.position - a.position);
        const float agrees = glm::dot(across, a.normal + b.normal + c.normal);
        if (std::abs(agrees) < 1e20f) // false for what is no number
            agreement += double{agrees};
    }
    return agreement < 0;
}

} // namespace

std::span<const std::uint16_t> drawnIndices(const vertex_store& store, std::vector<std::uint16_t>& kept)
{
    const std::span<const std::uint16_t> all = store.indices;
    const std::size_t count = store.vertices.size();
    if (all.size() % 3 == 0 &&
        std::all_of(all.begin(), all.end(), [count](std::uint16_t index) { return index < count; }))
        return all;
    forEachTriangle(store, [&](std::size_t first) {
        const auto from = all.begin() + static_cast<std::ptrdiff_t>(first);
        kept.insert(kept.end(), from, from + 3);
    });
    return kept;
}

mesh_summary buildGpuVertices(const vertex_store& store, int bone, const vertex_port& take)
{
    mesh_summary mesh;
    const auto records = store.vertices.records();
    std::vector<gpu_vertex> vertices(std::min(records.size(), portion));
    for (std::size_t first = 0; first < records.size(); first += portion)
    {
        const std::size_t count = std::min(portion, records.size() - first);
        for (std::size_t i = 0; i < count; ++i)
        {
            const vertex_record& record = records[first + i];
            convert(isUsableAsItIs(record) ? record : usable(record), vertices[i]);
            mesh.has_frames = mesh.has_frames && hasFrame(record);
            if (bone >= 0)
            {
                vertices[i].bones.fill(static_cast<std::uint32_t>(bone));
                vertices[i].weights = {1, 0, 0, 0};
            }
        }
        const auto made = std::span<const gpu_vertex>(vertices).first(count);
        mesh.reach.add(made);
        take(first, made);
    }
    std::vector<std::uint16_t> kept;
    mesh.is_wound_backwards = isWoundBackwards(records, drawnIndices(store, kept));
    return mesh;
}

} // namespace korvane
