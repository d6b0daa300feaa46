// The meshes of an export_scene, with their skins and materials.

#include "EASY_GUI/services/text.h"
#include "Korvane/fbx/export/export_scene.h"
#include "Korvane/fbx/export/export_space.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

namespace korvane
{

namespace
{

constexpr std::uint32_t diffuse_type = 0, normal_type = 1, base_colour_type = 27;

struct left_out // of one group
{
    std::size_t values = 0;    // positions, normals or texture coordinates that are no numbers
    std::size_t triangles = 0; // with indices out of range
    std::size_t weights = 0;   // of bones that the skeleton does not have
    std::uint32_t highest_bone = 0;
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
            std::to_string(scene.bones.size()));
}

void append(std::vector<double>& target, const glm::dvec3& value)
{
    target.insert(target.end(), {value.x, value.y, value.z});
}

void addVertices(const vertex_store& store, export_mesh& mesh, left_out& lost)
{
    const auto records = store.vertices.records();
    mesh.points.reserve(records.size() * 3);
    mesh.normals.reserve(records.size() * 3);
    mesh.uvs.reserve(records.size() * 2);
    for (const vertex_record& vertex : records)
    {
        const bool has_position = isExportable(vertex.position), has_normal = isExportable(vertex.normal),
                   has_uv = isExportable(vertex.uv.x) && isExportable(vertex.uv.y);
        lost.values += static_cast<std::size_t>(!has_position) + !has_normal + !has_uv;
        append(mesh.points, has_position ? exportedTranslation(vertex.position) : glm::dvec3(0));
        const glm::dvec3 normal = has_normal ? exportedDirection(vertex.normal) : glm::dvec3(0);
        const double length = glm::length(normal);
        append(mesh.normals, length > 0 ? normal / length : normal);
        mesh.uvs.push_back(has_uv ? static_cast<double>(vertex.uv.x) : 0);
        mesh.uvs.push_back(has_uv ? static_cast<double>(vertex.uv.y) : 0);
    }
}

void addTriangles(const vertex_store& store, export_mesh& mesh, left_out& lost)
{
    const auto& indices = store.indices;
    mesh.triangles.reserve(indices.size());
    for (std::size_t i = 0; i + 2 < indices.size(); i += 3)
    {
        if (std::max({indices[i], indices[i + 1], indices[i + 2]}) >= store.vertices.size())
            ++lost.triangles;
        else // mirrored: the other way round
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

void addClusters(const vertex_store& store, std::size_t bone_count, export_mesh& mesh, left_out& lost)
{
    std::map<std::uint32_t, export_cluster> clusters;
    const auto records = store.vertices.records();
    for (std::size_t i = 0; i < records.size(); ++i)
    {
        const vertex_weights own = normalisedWeights(records[i], bone_count, lost);
        for (std::size_t j = 0; j < own.count; ++j)
        {
            export_cluster& cluster = clusters[own.bones[j]];
            cluster.bone = own.bones[j];
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
                             texturePath(group, normal_type)};
    if (material.diffuse_path.empty())
        material.diffuse_path = texturePath(group, base_colour_type);
    return material;
}

} // namespace

bool addMeshes(const RMV2_FILE_DATA& model, std::size_t lod, export_scene& scene, failure& why)
{
    if (lod >= model.lods.size())
        return fail(why, failure_kind::refused,
                    "there is no LOD " + std::to_string(lod) + ", the model has " + std::to_string(model.lods.size()));
    const std::vector<group_data>& groups = model.lods[lod].groups;
    if (groups.empty())
        scene.warnings.push_back("LOD " + std::to_string(lod) + " of the model has no groups: there are no meshes");
    for (std::size_t i = 0; i < groups.size(); ++i)
    {
        const group_data& group = groups[i];
        export_mesh mesh;
        mesh.name =
            displayText(group.header.group_name) + "_group_0" + std::to_string(i + 1) + "_lod" + std::to_string(lod);
        mesh.material = scene.materials.size();
        left_out lost;
        addVertices(group.store, mesh, lost);
        if (group.header.vertex_count > 0 && group.store.vertices.size() == 0)
            scene.warnings.push_back(mesh.name + ": empty, its vertex format " +
                                     std::to_string(group.header.vertex_format) + " is not known");
        else
            addTriangles(group.store, mesh, lost);
        if (!scene.bones.empty())
            addClusters(group.store, scene.bones.size(), mesh, lost);
        warn(scene, mesh.name, lost);
        scene.materials.push_back(makeMaterial(group));
        scene.meshes.push_back(std::move(mesh));
    }
    return true;
}

} // namespace korvane
