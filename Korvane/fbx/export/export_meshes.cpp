// The meshes of an export_scene, with their skins and materials.

#include "EASY_GUI/services/text.h"
#include "Korvane/fbx/export/euler_keys.h"
#include "Korvane/fbx/export/export_scene.h"
#include "Korvane/fbx/export/export_space.h"
#include "Korvane/fbx/export/rigid_place.h"

#include <glm/geometric.hpp>
#include <glm/matrix.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

namespace korvane
{

namespace
{

constexpr std::uint32_t diffuse_type = 0, normal_type = 1, specular_type = 11, gloss_type = 12, base_colour_type = 27;

struct left_out // of one group
{
    std::size_t values = 0;    // positions, normals or texture coordinates that are no numbers
    std::size_t triangles = 0; // with indices out of range
    std::size_t weights = 0;   // of bones that the skeleton does not have
    std::uint32_t highest_bone = 0;
    std::size_t bone_count = 0; // that it has
};

// What is done to points on their way into the file.
struct point_transform
{
    glm::dmat4 points{1};
    glm::dmat3 directions{1};
    bool is_plain = true;
    bool is_mirrored = false;

    explicit point_transform(const glm::dmat4& matrix) : points(matrix), is_plain(matrix == glm::dmat4(1))
    {
        const double determinant = glm::determinant(glm::dmat3(matrix));
        is_mirrored = determinant < 0;
        if (std::abs(determinant) > 1e-12)
            directions = glm::transpose(glm::inverse(glm::dmat3(matrix)));
    }
};

void warn(export_scene& scene, const std::string& mesh, const left_out& lost)
{
    const auto say = [&](std::size_t count, const std::string& what, const std::string& text) {
        if (count > 0)
            scene.warnings.push_back(mesh + ": " + counted(count, what) + text);
    };
    say(lost.values, "vertex value", " became 0: the file holds no number there, or one that is too large");
    say(lost.triangles, "triangle", " left out: an index is out of range");
    say(lost.weights, "weight",
        " left out: for bones up to " + std::to_string(lost.highest_bone) + ", but the skeleton has " +
            std::to_string(lost.bone_count));
}

void append(std::vector<double>& target, const glm::dvec3& value)
{
    target.insert(target.end(), {value.x, value.y, value.z});
}

glm::dvec3 unitOrZero(const glm::dvec3& direction)
{
    const double length = glm::length(direction);
    return length > 0 ? direction / length : glm::dvec3(0);
}

// Nothing without a tangent, or with one along the normal.
bool addTangent(const vertex_record& vertex, const glm::dvec3& normal, const point_transform& transform,
                export_mesh& mesh)
{
    if (!isExportable(vertex.tangent))
        return false;
    const glm::dvec3 given = glm::dmat3(transform.points) * exportedDirection(vertex.tangent);
    const glm::dvec3 tangent = unitOrZero(given - normal * glm::dot(normal, given));
    if (glm::length(tangent) < 0.5 || glm::length(normal) < 0.5)
        return false;
    append(mesh.tangents, tangent);
    mesh.tangents.push_back(1);
    return true;
}

// The sides of the tangents, out of the triangles: the binormals of some vertex formats say nothing.
void turnTangents(export_mesh& mesh)
{
    const auto point = [&mesh](std::size_t i) {
        return glm::dvec3(mesh.points[3 * i], mesh.points[3 * i + 1], mesh.points[3 * i + 2]);
    };
    const auto uv = [&mesh](std::size_t i) { return glm::dvec2(mesh.uvs[2 * i], mesh.uvs[2 * i + 1]); };
    std::vector<glm::dvec3> upwards(mesh.points.size() / 3, glm::dvec3(0));
    for (std::size_t i = 0; i + 2 < mesh.triangles.size(); i += 3)
    {
        std::array<std::size_t, 3> corners{};
        for (std::size_t k = 0; k < 3; ++k)
            corners[k] = static_cast<std::size_t>(mesh.triangles[i + k]);
        const glm::dvec3 e1 = point(corners[1]) - point(corners[0]), e2 = point(corners[2]) - point(corners[0]);
        const glm::dvec2 d1 = uv(corners[1]) - uv(corners[0]), d2 = uv(corners[2]) - uv(corners[0]);
        const double area = d1.x * d2.y - d1.y * d2.x;
        for (const std::size_t corner : corners)
            upwards[corner] += (e2 * d1.x - e1 * d2.x) * (area < 0 ? -1.0 : 1.0);
    }
    for (std::size_t i = 0; i < upwards.size(); ++i)
    {
        const glm::dvec3 normal(mesh.normals[3 * i], mesh.normals[3 * i + 1], mesh.normals[3 * i + 2]);
        const glm::dvec3 tangent(mesh.tangents[4 * i], mesh.tangents[4 * i + 1], mesh.tangents[4 * i + 2]);
        if (glm::dot(glm::cross(normal, tangent), upwards[i]) < 0)
            mesh.tangents[4 * i + 3] = -1;
    }
}

void addVertices(const vertex_store& store, const point_transform& transform, export_mesh& mesh, left_out& lost)
{
    bool has_tangents = true;
    const auto records = store.vertices.records();
    mesh.points.reserve(records.size() * 3);
    mesh.normals.reserve(records.size() * 3);
    mesh.uvs.reserve(records.size() * 2);
    for (const vertex_record& vertex : records)
    {
        const bool has_position = isExportable(vertex.position), has_normal = isExportable(vertex.normal),
                   has_uv = isExportable(vertex.uv.x) && isExportable(vertex.uv.y);
        lost.values += static_cast<std::size_t>(!has_position) + !has_normal + !has_uv;
        const glm::dvec3 point = has_position ? exportedTranslation(vertex.position) : glm::dvec3(0);
        append(mesh.points, transform.is_plain ? point : glm::dvec3(transform.points * glm::dvec4(point, 1)));
        const glm::dvec3 given = has_normal ? exportedDirection(vertex.normal) : glm::dvec3(0);
        const glm::dvec3 normal = unitOrZero(transform.is_plain ? given : transform.directions * given);
        append(mesh.normals, normal);
        has_tangents = has_tangents && addTangent(vertex, normal, transform, mesh);
        mesh.uvs.push_back(has_uv ? static_cast<double>(vertex.uv.x) : 0);
        mesh.uvs.push_back(has_uv ? static_cast<double>(vertex.uv.y) : 0);
    }
    if (!has_tangents)
        mesh.tangents.clear();
}

void addTriangles(const vertex_store& store, bool is_mirrored, export_mesh& mesh, left_out& lost)
{
    const auto& indices = store.indices;
    mesh.triangles.reserve(indices.size());
    for (std::size_t i = 0; i + 2 < indices.size(); i += 3)
    {
        if (std::max({indices[i], indices[i + 1], indices[i + 2]}) >= store.vertices.size())
            ++lost.triangles;
        else if (is_mirrored) // once more: as they are
            mesh.triangles.insert(mesh.triangles.end(), {indices[i], indices[i + 1], indices[i + 2]});
        else // mirrored in x: the other way round
            mesh.triangles.insert(mesh.triangles.end(), {indices[i], indices[i + 2], indices[i + 1]});
    }
}

// The weights of a vertex by bones that there are, those of the same bone together; they add up to one.
struct vertex_weights
{
    std::array<std::uint32_t, 4> bones{};
    std::array<double, 4> weights{};
    std::size_t count = 0;
};

vertex_weights normalisedWeights(const vertex_record& vertex, std::size_t bone_count, left_out& lost)
{
    vertex_weights result;
    double sum = 0;
    for (std::size_t i = 0; i < vertex.weights.size(); ++i)
    {
        const double weight = static_cast<double>(vertex.weights[i]);
        if (!(weight > 0) || !std::isfinite(weight))
            continue;
        if (vertex.bones[i] >= bone_count)
        {
            ++lost.weights;
            lost.highest_bone = std::max(lost.highest_bone, vertex.bones[i]);
            continue;
        }
        const auto end = result.bones.begin() + static_cast<std::ptrdiff_t>(result.count);
        const auto same = std::find(result.bones.begin(), end, vertex.bones[i]);
        const auto place = static_cast<std::size_t>(same - result.bones.begin());
        result.bones[place] = vertex.bones[i];
        result.weights[place] += weight;
        result.count = std::max(result.count, place + 1);
        sum += weight;
    }
    for (std::size_t i = 0; i < result.count; ++i)
        result.weights[i] /= sum;
    if (result.count == 0)
    {
        result.weights[0] = 1; // bone 0
        result.count = 1;
    }
    return result;
}

void addClusters(const vertex_store& store, const mesh_place& place, export_mesh& mesh, left_out& lost)
{
    lost.bone_count = place.bone_count;
    std::map<std::uint32_t, export_cluster> clusters;
    const auto records = store.vertices.records();
    for (std::size_t i = 0; i < records.size(); ++i)
    {
        const vertex_weights own = normalisedWeights(records[i], place.bone_count, lost);
        for (std::size_t j = 0; j < own.count; ++j)
        {
            export_cluster& cluster = clusters[own.bones[j]];
            cluster.bone = static_cast<std::uint32_t>(place.first_bone) + own.bones[j];
            cluster.points.push_back(static_cast<std::int32_t>(i));
            cluster.weights.push_back(own.weights[j]);
        }
    }
    for (auto& [bone, cluster] : clusters)
        mesh.clusters.push_back(std::move(cluster));
}

std::string texturePath(const group_data& group, std::uint32_t type)
{
    for (const texture_entry& texture : group.textures)
        if (texture.type == type && !texture.path.empty())
        {
            std::string path = texture.path;
            std::replace(path.begin(), path.end(), '/', '\\');
            return path;
        }
    return {};
}

export_material makeMaterial(const group_data& group)
{
    export_material material{displayText(group.header.group_name), texturePath(group, diffuse_type),
                             texturePath(group, normal_type),      texturePath(group, specular_type),
                             texturePath(group, gloss_type),       group.alpha_mode == 1};
    if (material.diffuse_path.empty())
        material.diffuse_path = texturePath(group, base_colour_type);
    return material;
}

// A model's groups may have the names of another one's.
std::string uniqueName(const export_scene& scene, const std::string& wish)
{
    const auto isTaken = [&scene](const std::string& name) {
        return std::any_of(scene.meshes.begin(), scene.meshes.end(),
                           [&name](const export_mesh& mesh) { return mesh.name == name; });
    };
    std::string name = wish;
    for (int number = 2; isTaken(name); ++number)
        name = wish + "_" + std::to_string(number);
    return name;
}

// Where the model's meshes stand: sets what their nodes have of it, and returns what the points get.
glm::dmat4 standMesh(const mesh_place& place, const export_scene& scene, export_mesh& mesh)
{
    const glm::dmat4 whole = exportedPlace(place.place);
    if (place.bone < 0)
        return whole;
    const rigid_place below(glm::inverse(scene.bones[static_cast<std::size_t>(place.bone)].global) * whole);
    mesh.bone = place.bone;
    mesh.translation = below.translation;
    mesh.euler_degrees = principalAngles(below.rotation);
    return below.isWhole() ? glm::dmat4(1) : below.rest;
}

void addMesh(const group_data& group, const std::string& name, const mesh_place& place, export_scene& scene)
{
    export_mesh mesh;
    mesh.name = uniqueName(scene, name);
    mesh.material = scene.materials.size();
    const point_transform transform(standMesh(place, scene, mesh));
    left_out lost;
    addVertices(group.store, transform, mesh, lost);
    if (group.header.vertex_count > 0 && group.store.vertices.size() == 0)
        scene.warnings.push_back(mesh.name + ": empty, its vertex format " +
                                 std::to_string(group.header.vertex_format) + " is not known");
    else
        addTriangles(group.store, transform.is_mirrored, mesh, lost);
    if (!mesh.tangents.empty())
        turnTangents(mesh);
    if (place.bone_count > 0)
        addClusters(group.store, place, mesh, lost);
    warn(scene, mesh.name, lost);
    scene.materials.push_back(makeMaterial(group));
    scene.meshes.push_back(std::move(mesh));
}

} // namespace

bool addMeshes(const RMV2_FILE_DATA& model, std::size_t lod, export_scene& scene, failure& why)
{
    mesh_place place;
    place.bone_count = scene.bones.size();
    return addMeshes(model, lod, place, scene, why);
}

bool addMeshes(const RMV2_FILE_DATA& model, std::size_t lod, const mesh_place& place, export_scene& scene, failure& why)
{
    if (lod >= model.lods.size())
        return fail(why, failure_kind::refused,
                    "there is no LOD " + std::to_string(lod) + ", the model has " + std::to_string(model.lods.size()));
    const std::vector<group_data>& groups = model.lods[lod].groups;
    if (groups.empty())
        scene.warnings.push_back("LOD " + std::to_string(lod) + " of the model has no groups: there are no meshes");
    for (std::size_t i = 0; i < groups.size(); ++i)
        addMesh(groups[i],
                displayText(groups[i].header.group_name) + "_group_0" + std::to_string(i + 1) + "_lod" +
                    std::to_string(lod),
                place, scene);
    return true;
}

} // namespace korvane
