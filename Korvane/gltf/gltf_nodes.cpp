#include "Korvane/gltf/gltf_nodes.h"

#include "Korvane/fbx/export/euler_keys.h"
#include "Korvane/fbx/export/uri_path.h"

#include <glm/matrix.hpp>

#include <algorithm>
#include <array>
#include <set>
#include <utility>

namespace korvane::gltf_nodes
{

namespace
{

float metres(double inches)
{
    return static_cast<float>(inches / inches_per_metre);
}

gltf_json metresOf(const glm::dvec3& inches)
{
    return {metres(inches.x), metres(inches.y), metres(inches.z)};
}

std::array<float, 4> rotationNumbers(const glm::dquat& rotation)
{
    return {static_cast<float>(rotation.x), static_cast<float>(rotation.y), static_cast<float>(rotation.z),
            static_cast<float>(rotation.w)};
}

// What stands at its parent's origin says nothing.
void place(gltf_json& node, const glm::dvec3& translation, const glm::dvec3& euler_degrees)
{
    if (translation != glm::dvec3(0))
        node["translation"] = metresOf(translation);
    if (euler_degrees != glm::dvec3(0))
        node["rotation"] = rotationNumbers(rotationOf(euler_degrees));
}

std::vector<float> narrowed(const std::vector<double>& values)
{
    std::vector<float> result(values.size());
    std::transform(values.begin(), values.end(), result.begin(),
                   [](double value) { return static_cast<float>(value); });
    return result;
}

// The format wants unit vectors; vertices without a direction look up. Nothing when none has one.
std::vector<float> unitNormals(const export_mesh& mesh)
{
    std::vector<float> normals = narrowed(mesh.normals);
    std::size_t lost = 0;
    for (std::size_t i = 0; i + 2 < normals.size(); i += 3)
        if (normals[i] == 0 && normals[i + 1] == 0 && normals[i + 2] == 0)
        {
            normals[i + 1] = 1;
            ++lost;
        }
    if (lost * 3 == normals.size())
        normals.clear();
    return normals;
}

struct influence
{
    std::array<std::uint16_t, 4> joints{};
    std::array<float, 4> weights{};
    std::size_t count = 0;
};

std::vector<influence> influencesOf(const export_mesh& mesh, std::size_t first_bone)
{
    std::vector<influence> all(mesh.points.size() / 3);
    for (const export_cluster& cluster : mesh.clusters)
        for (std::size_t i = 0; i < cluster.points.size(); ++i)
        {
            influence& own = all[static_cast<std::size_t>(cluster.points[i])];
            const float weight = static_cast<float>(cluster.weights[i]);
            if (own.count == own.weights.size() || !(weight > 0))
                continue;
            own.joints[own.count] = static_cast<std::uint16_t>(cluster.bone - first_bone);
            own.weights[own.count++] = weight;
        }
    for (influence& own : all) // what rounding has changed of the sum, the largest takes
    {
        float sum = 0;
        for (const float weight : own.weights)
            sum += weight;
        *std::max_element(own.weights.begin(), own.weights.end()) += 1 - sum;
    }
    return all;
}

std::size_t skeletonOf(const export_scene& scene, const export_mesh& mesh)
{
    const auto behind = std::upper_bound(scene.skeletons.begin(), scene.skeletons.end(), mesh.clusters.front().bone);
    return static_cast<std::size_t>(behind - scene.skeletons.begin()) - 1;
}

void addSkinAttributes(const export_mesh& mesh, std::size_t first_bone, gltf_json& attributes, gltf_buffer& buffer)
{
    std::vector<std::uint16_t> joints;
    std::vector<float> weights;
    for (const influence& own : influencesOf(mesh, first_bone))
    {
        joints.insert(joints.end(), own.joints.begin(), own.joints.end());
        weights.insert(weights.end(), own.weights.begin(), own.weights.end());
    }
    attributes["JOINTS_0"] = buffer.addJoints(joints);
    attributes["WEIGHTS_0"] = buffer.addFloats(weights, 4, gltf_target::vertices, false);
}

gltf_json primitiveOf(const export_scene& scene, const export_mesh& mesh, gltf_buffer& buffer)
{
    std::vector<float> points(mesh.points.size()), uvs = narrowed(mesh.uvs);
    std::transform(mesh.points.begin(), mesh.points.end(), points.begin(), &metres);
    for (std::size_t i = 1; i < uvs.size(); i += 2) // v counts downwards here
        uvs[i] = static_cast<float>(1 - mesh.uvs[i]);
    gltf_json attributes{{"POSITION", buffer.addFloats(points, 3, gltf_target::vertices, true)}};
    const std::vector<float> normals = unitNormals(mesh);
    if (!normals.empty())
        attributes["NORMAL"] = buffer.addFloats(normals, 3, gltf_target::vertices, false);
    if (!normals.empty() && !mesh.tangents.empty())
        attributes["TANGENT"] = buffer.addFloats(narrowed(mesh.tangents), 4, gltf_target::vertices, false);
    attributes["TEXCOORD_0"] = buffer.addFloats(uvs, 2, gltf_target::vertices, false);
    if (!mesh.clusters.empty())
        addSkinAttributes(mesh, scene.skeletons[skeletonOf(scene, mesh)], attributes, buffer);
    const std::vector<std::uint32_t> indices(mesh.triangles.begin(), mesh.triangles.end());
    return {{"attributes", std::move(attributes)}, {"indices", buffer.addIndices(indices, points.size() / 3)}};
}

} // namespace

gltf_json nodes(const export_scene& scene, const mesh_numbers& numbers)
{
    gltf_json all = gltf_json::array();
    const std::size_t bone_count = scene.bones.size();
    const std::size_t first_mesh = bone_count + (bone_count > 0 ? 1 : 0);
    std::vector<std::vector<std::size_t>> children(bone_count + 1); // of the bones, and of the node above them
    for (std::size_t i = 0; i < bone_count; ++i)
        children[scene.bones[i].parent < 0 ? bone_count : static_cast<std::size_t>(scene.bones[i].parent)].push_back(i);
    for (std::size_t i = 0; i < scene.meshes.size(); ++i)
        if (scene.meshes[i].bone >= 0)
            children[static_cast<std::size_t>(scene.meshes[i].bone)].push_back(first_mesh + i);
    for (std::size_t i = 0; i < first_mesh; ++i)
    {
        gltf_json node{{"name", i < bone_count ? scene.bones[i].name : "Skeleton"}};
        if (i < bone_count)
            place(node, scene.bones[i].translation, scene.bones[i].euler_degrees);
        if (!children[i].empty())
            node["children"] = children[i];
        all.push_back(std::move(node));
    }
    for (std::size_t i = 0; i < scene.meshes.size(); ++i)
    {
        const export_mesh& mesh = scene.meshes[i];
        gltf_json node{{"name", mesh.name}};
        if (mesh.bone >= 0)
            place(node, mesh.translation, mesh.euler_degrees);
        if (numbers.meshes[i] >= 0)
            node["mesh"] = numbers.meshes[i];
        if (numbers.skins[i] >= 0)
            node["skin"] = numbers.skins[i];
        all.push_back(std::move(node));
    }
    return all;
}

std::vector<std::size_t> rootNodes(const export_scene& scene)
{
    std::vector<std::size_t> roots;
    const std::size_t bone_count = scene.bones.size();
    if (bone_count > 0)
        roots.push_back(bone_count);
    for (std::size_t i = 0; i < scene.meshes.size(); ++i)
        if (scene.meshes[i].bone < 0)
            roots.push_back(bone_count + (bone_count > 0 ? 1 : 0) + i);
    return roots;
}

namespace
{

// Of a skeleton's bones, and of the mounts behind them.
gltf_json skinOf(const export_scene& scene, std::size_t skeleton, gltf_buffer& buffer)
{
    const std::size_t end = skeleton + 1 < scene.skeletons.size() ? scene.skeletons[skeleton + 1] : scene.bones.size();
    std::vector<float> inverse_binds;
    std::vector<std::size_t> joints;
    for (std::size_t i = scene.skeletons[skeleton]; i < end; ++i)
    {
        joints.push_back(i);
        const glm::dmat4 inverse = glm::inverse(scene.bones[i].global);
        for (glm::length_t column = 0; column < 4; ++column)
        {
            for (glm::length_t row = 0; row < 3; ++row)
                inverse_binds.push_back(0 + (column == 3 ? metres(inverse[column][row]) // never -0
                                                         : static_cast<float>(inverse[column][row])));
            inverse_binds.push_back(column == 3 ? 1.0f : 0.0f);
        }
    }
    return {{"inverseBindMatrices", buffer.addFloats(inverse_binds, 16, gltf_target::none, false)},
            {"skeleton", scene.bones.size()},
            {"joints", std::move(joints)}};
}

} // namespace

gltf_json skins(const export_scene& scene, gltf_buffer& buffer, mesh_numbers& numbers)
{
    gltf_json all = gltf_json::array();
    std::vector<int> of_skeletons(scene.skeletons.size(), -1);
    for (const export_mesh& mesh : scene.meshes)
    {
        numbers.skins.push_back(-1);
        if (mesh.clusters.empty() || mesh.triangles.empty())
            continue;
        int& number = of_skeletons[skeletonOf(scene, mesh)];
        if (number < 0)
        {
            number = static_cast<int>(all.size());
            all.push_back(skinOf(scene, skeletonOf(scene, mesh), buffer));
        }
        numbers.skins.back() = number;
    }
    return all;
}

gltf_json meshes(const export_scene& scene, const std::vector<std::size_t>& materials, bool with_materials,
                 gltf_buffer& buffer, mesh_numbers& numbers)
{
    gltf_json all = gltf_json::array();
    for (const export_mesh& mesh : scene.meshes)
    {
        numbers.meshes.push_back(mesh.triangles.empty() ? -1 : static_cast<int>(all.size()));
        if (mesh.triangles.empty()) // the format knows no empty ones
            continue;
        gltf_json primitive = primitiveOf(scene, mesh, buffer);
        if (with_materials)
            primitive["material"] = materials[mesh.material];
        all.push_back({{"name", mesh.name + "_mesh"}, {"primitives", gltf_json::array({std::move(primitive)})}});
    }
    return all;
}

gltf_json materials(const export_scene& scene, const gltf_pictures& pictures, std::vector<std::size_t>& numbers)
{
    gltf_json all = gltf_json::array();
    for (std::size_t i = 0; i < scene.materials.size(); ++i)
    {
        const gltf_material_images images =
            i < pictures.materials.size() ? pictures.materials[i] : gltf_material_images();
        const auto texture = [](int image) { return gltf_json{{"index", image}}; }; // textures are numbered as images
        gltf_json surface = gltf_json::object();
        if (images.base_colour >= 0)
            surface["baseColorTexture"] = texture(images.base_colour);
        surface["metallicFactor"] = images.metal_roughness >= 0 ? 1 : 0;
        surface["roughnessFactor"] = images.metal_roughness >= 0 ? 1 : pictures.roughness;
        if (images.metal_roughness >= 0)
            surface["metallicRoughnessTexture"] = texture(images.metal_roughness);
        gltf_json material{{"name", scene.materials[i].name}, {"pbrMetallicRoughness", std::move(surface)}};
        if (images.normal >= 0)
            material["normalTexture"] = texture(images.normal);
        if (scene.materials[i].is_cut_out)
        {
            material["alphaMode"] = "MASK";
            material["doubleSided"] = true;
        }
        const auto known = std::find(all.begin(), all.end(), material);
        numbers.push_back(static_cast<std::size_t>(known - all.begin()));
        if (known == all.end())
            all.push_back(std::move(material));
    }
    return all;
}

gltf_json images(const gltf_pictures& pictures, gltf_buffer& buffer)
{
    gltf_json all = gltf_json::array();
    for (const gltf_image& image : pictures.images)
    {
        gltf_json entry{{"name", image.name}};
        if (!image.path.empty())
            entry["uri"] = uriOf(image.path);
        else
        {
            entry["mimeType"] = "image/png";
            entry["bufferView"] = buffer.addFile(image.png);
        }
        all.push_back(std::move(entry));
    }
    return all;
}

gltf_json animation(const gltf_take& take, gltf_buffer& buffer)
{
    const export_take& keys = take.take;
    if (keys.frame_count == 0 || (keys.rotations.empty() && keys.translations.empty()))
        return nullptr;
    std::vector<float> times(keys.frame_count);
    for (std::size_t i = 0; i < times.size(); ++i)
        times[i] = static_cast<float>(static_cast<double>(i) / keys.frame_rate);
    const std::size_t input = buffer.addFloats(times, 1, gltf_target::none, true);
    gltf_json samplers = gltf_json::array(), channels = gltf_json::array();
    std::set<std::pair<std::uint32_t, bool>> moved; // each once: a damaged animation may name a bone twice
    const auto add = [&](const export_track& track, bool is_rotation, const std::vector<float>& values) {
        if (!moved.emplace(track.bone, is_rotation).second)
            return;
        channels.push_back({{"sampler", samplers.size()},
                            {"target", {{"node", track.bone}, {"path", is_rotation ? "rotation" : "translation"}}}});
        samplers.push_back(
            {{"input", input}, {"output", buffer.addFloats(values, is_rotation ? 4 : 3, gltf_target::none, false)}});
    };
    for (const export_track& track : keys.rotations)
    {
        std::vector<float> values;
        glm::dquat last(1, 0, 0, 0);
        for (const glm::dvec3& key : track.keys)
        {
            const glm::dquat rotation = rotationOf(key);
            last = glm::dot(last, rotation) < 0 ? -rotation : rotation; // the short way
            const std::array<float, 4> numbers = rotationNumbers(last);
            values.insert(values.end(), numbers.begin(), numbers.end());
        }
        add(track, true, values);
    }
    for (const export_track& track : keys.translations)
    {
        std::vector<float> values;
        for (const glm::dvec3& key : track.keys)
            values.insert(values.end(), {metres(key.x), metres(key.y), metres(key.z)});
        add(track, false, values);
    }
    return {{"name", take.name}, {"samplers", std::move(samplers)}, {"channels", std::move(channels)}};
}

} // namespace korvane::gltf_nodes
