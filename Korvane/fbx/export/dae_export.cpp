#include "Korvane/fbx/export/dae_export.h"

#include "EASY_GUI/services/version.h"
#include "Korvane/fbx/export/dae_nodes.h"
#include "Korvane/fbx/export/euler_keys.h"
#include "Korvane/fbx/export/uri_path.h"

#include <glm/matrix.hpp>

#include <map>
#include <numeric>

namespace korvane
{

namespace
{

using namespace dae_nodes;

constexpr const char* texture_coordinates = "UVSET0";

class dae_writer
{
public:
    dae_writer(const export_scene& scene, const export_options& options, dae_nodes::id_list& ids,
               std::vector<std::string>& bones)
        : m_scene(scene)
        , m_options(options)
        , m_ids(ids)
        , m_bones(bones)
    {
    }

    std::string write()
    {
        giveIds();
        pugi::xml_node root = m_document.append_child("COLLADA");
        root.append_attribute("xmlns") = "http://www.collada.org/2005/11/COLLADASchema";
        root.append_attribute("version") = "1.4.1";
        addAsset(root);
        if (m_options.with_materials)
            addMaterials(root);
        addGeometries(root);
        addControllers(root);
        addVisualScene(root);
        root.append_child("scene").append_child("instance_visual_scene").append_attribute("url") = "#MyScene";
        return documentText(m_document);
    }

private:
    struct mesh_ids
    {
        std::string node, geometry, controller, material, effect;
    };

    void giveIds();
    void addAsset(pugi::xml_node root);
    void addMaterials(pugi::xml_node root);
    void addEffect(pugi::xml_node library, const export_material& material, const std::string& id);
    std::string addTextureSampler(pugi::xml_node profile, const std::string& internal_path, const char* name);
    void addGeometries(pugi::xml_node root);
    void addControllers(pugi::xml_node root);
    void addController(pugi::xml_node library, const export_mesh& mesh, const mesh_ids& ids);
    void addVisualScene(pugi::xml_node root);
    void addBone(pugi::xml_node parent, std::size_t index);
    void addMeshNode(pugi::xml_node parent, const export_mesh& mesh, const mesh_ids& ids);

    const export_scene& m_scene;
    const export_options& m_options;
    id_list& m_ids;
    std::vector<std::string>& m_bones;
    pugi::xml_document m_document;
    std::vector<std::vector<std::size_t>> m_children; // of each bone
    std::vector<mesh_ids> m_meshes;
    std::map<std::string, std::string> m_images; // internal path to id
};

void dae_writer::giveIds()
{
    // Bones first: readers take the ids of joints for their names.
    m_children.resize(m_scene.bones.size());
    for (std::size_t i = 0; i < m_scene.bones.size(); ++i)
    {
        m_bones.push_back(m_ids.make(m_scene.bones[i].name));
        if (m_scene.bones[i].parent >= 0)
            m_children[static_cast<std::size_t>(m_scene.bones[i].parent)].push_back(i);
    }
    for (const export_mesh& mesh : m_scene.meshes)
    {
        const std::string node = m_ids.make(mesh.name);
        m_meshes.push_back({node, m_ids.make(node + "_mesh"), m_ids.make(node + "_skin"),
                            m_ids.make(node + "_material"), m_ids.make(node + "_effect")});
    }
}

void dae_writer::addAsset(pugi::xml_node root)
{
    // "1970-01-01 10:00:00:000" as "1970-01-01T10:00:00Z"
    std::string time = creationTime().substr(0, 19) + "Z";
    if (time.size() > 10)
        time[10] = 'T';
    pugi::xml_node asset = root.append_child("asset");
    asset.append_child("contributor").append_child("authoring_tool").text() =
        (std::string(program_name) + " Collada exchange " + std::string(program_version)).c_str();
    asset.append_child("created").text() = time.c_str();
    asset.append_child("modified").text() = time.c_str();
    pugi::xml_node unit = asset.append_child("unit");
    unit.append_attribute("name") = "inch";
    unit.append_attribute("meter") = "0.0254";
    asset.append_child("up_axis").text() = "Y_UP";
}

std::string dae_writer::addTextureSampler(pugi::xml_node profile, const std::string& internal_path, const char* name)
{
    const std::string surface = std::string(name) + "-surface", sampler = std::string(name) + "-sampler";
    pugi::xml_node parameter = profile.append_child("newparam");
    parameter.append_attribute("sid") = surface.c_str();
    pugi::xml_node own = parameter.append_child("surface");
    own.append_attribute("type") = "2D";
    own.append_child("init_from").text() = m_images[internal_path].c_str();
    parameter = profile.append_child("newparam");
    parameter.append_attribute("sid") = sampler.c_str();
    parameter.append_child("sampler2D").append_child("source").text() = surface.c_str();
    return sampler;
}

void dae_writer::addEffect(pugi::xml_node library, const export_material& material, const std::string& id)
{
    pugi::xml_node profile = addElement(library, "effect", id, material.name).append_child("profile_COMMON");
    const auto samplerOf = [&](const std::string& path, const char* name) {
        return path.empty() ? std::string() : addTextureSampler(profile, path, name);
    };
    const std::string diffuse = samplerOf(material.diffuse_path, "diffuse");
    const std::string normal = samplerOf(material.normal_path, "normal");
    pugi::xml_node technique = profile.append_child("technique");
    technique.append_attribute("sid") = "common";
    pugi::xml_node phong = technique.append_child("phong");
    const auto addTexture = [](pugi::xml_node parent, const char* name, const std::string& sampler) {
        pugi::xml_node texture = parent.append_child(name).append_child("texture");
        texture.append_attribute("texture") = sampler.c_str();
        texture.append_attribute("texcoord") = texture_coordinates;
    };
    if (!diffuse.empty())
        addTexture(phong, "diffuse", diffuse);
    else
        phong.append_child("diffuse").append_child("color").text() = "0.8 0.8 0.8 1";
    phong.append_child("specular").append_child("color").text() = "0.05 0.05 0.05 1";
    phong.append_child("shininess").append_child("float").text() = "20";
    if (normal.empty())
        return;
    pugi::xml_node extra = technique.append_child("extra").append_child("technique");
    extra.append_attribute("profile") = "FCOLLADA"; // where readers look for normal maps
    addTexture(extra, "bump", normal);
}

void dae_writer::addMaterials(pugi::xml_node root)
{
    for (const export_material& material : m_scene.materials)
        for (const std::string& path : {material.diffuse_path, material.normal_path})
            if (!path.empty())
                m_images.try_emplace(path, std::string());
    if (!m_images.empty())
    {
        pugi::xml_node images = root.append_child("library_images");
        for (auto& [path, id] : m_images)
        {
            const std::string file = m_options.texture_path ? m_options.texture_path(path) : path;
            const std::string name = file.substr(file.find_last_of("/\\") + 1);
            id = m_ids.make(name);
            addElement(images, "image", id, name).append_child("init_from").text() = uriOf(file).c_str();
        }
    }
    pugi::xml_node materials = root.append_child("library_materials");
    pugi::xml_node effects = root.append_child("library_effects");
    for (std::size_t i = 0; i < m_scene.meshes.size(); ++i)
    {
        const export_material& material = m_scene.materials[m_scene.meshes[i].material];
        addElement(materials, "material", m_meshes[i].material, material.name)
            .append_child("instance_effect")
            .append_attribute("url") = ("#" + m_meshes[i].effect).c_str();
        addEffect(effects, material, m_meshes[i].effect);
    }
}

void dae_writer::addGeometries(pugi::xml_node root)
{
    pugi::xml_node library = root.append_child("library_geometries");
    for (std::size_t i = 0; i < m_scene.meshes.size(); ++i)
    {
        const export_mesh& mesh = m_scene.meshes[i];
        const std::string& id = m_meshes[i].geometry;
        pugi::xml_node own = addElement(library, "geometry", id, mesh.name + "_mesh").append_child("mesh");
        addSource(own, id + "-positions", mesh.points, "X Y Z");
        addSource(own, id + "-normals", mesh.normals, "X Y Z");
        addSource(own, id + "-uvs", mesh.uvs, "S T").append_attribute("name") = uv_set_name;
        addInput(addElement(own, "vertices", id + "-vertices"), "POSITION", id + "-positions");
        pugi::xml_node triangles = own.append_child("triangles");
        if (m_options.with_materials)
            triangles.append_attribute("material") = m_meshes[i].material.c_str();
        triangles.append_attribute("count") = static_cast<unsigned long long>(mesh.triangles.size() / 3);
        addInput(triangles, "VERTEX", id + "-vertices", 0);
        addInput(triangles, "NORMAL", id + "-normals", 0);
        addInput(triangles, "TEXCOORD", id + "-uvs", 0, 0);
        std::string indices;
        indices.reserve(mesh.triangles.size() * 6);
        for (const std::int32_t index : mesh.triangles)
            (indices += indices.empty() ? "" : " ") += std::to_string(index);
        triangles.append_child("p").text() = indices.c_str();
    }
}

void dae_writer::addControllers(pugi::xml_node root)
{
    pugi::xml_node library;
    for (std::size_t i = 0; i < m_scene.meshes.size(); ++i)
    {
        if (m_scene.meshes[i].clusters.empty() && m_scene.meshes[i].bone < 0)
            continue;
        if (!library)
            library = root.append_child("library_controllers");
        addController(library, m_scene.meshes[i], m_meshes[i]);
    }
}

// What hangs on a bone is all moved by it: readers as Blender drop meshes below a joint.
std::vector<export_cluster> clustersOf(const export_mesh& mesh)
{
    if (mesh.bone < 0)
        return mesh.clusters;
    export_cluster all;
    all.bone = static_cast<std::uint32_t>(mesh.bone);
    all.points.resize(mesh.points.size() / 3);
    std::iota(all.points.begin(), all.points.end(), 0);
    all.weights.assign(all.points.size(), 1.0);
    return {all};
}

void dae_writer::addController(pugi::xml_node library, const export_mesh& mesh, const mesh_ids& ids)
{
    const std::string& id = ids.controller;
    std::string joints;
    std::vector<double> inverse_binds, weights;
    std::vector<std::vector<std::pair<std::size_t, std::size_t>>> by_point(mesh.points.size() / 3); // joint, weight
    const std::vector<export_cluster> clusters = clustersOf(mesh);
    for (std::size_t i = 0; i < clusters.size(); ++i)
    {
        const export_cluster& cluster = clusters[i];
        (joints += i > 0 ? " " : "") += m_bones[cluster.bone];
        appendMatrix(inverse_binds, glm::inverse(m_scene.bones[cluster.bone].global));
        for (std::size_t j = 0; j < cluster.points.size(); ++j)
        {
            by_point[static_cast<std::size_t>(cluster.points[j])].emplace_back(i, weights.size());
            weights.push_back(cluster.weights[j]);
        }
    }
    pugi::xml_node skin = addElement(library, "controller", id, mesh.name + "_skin  ").append_child("skin");
    skin.append_attribute("source") = ("#" + ids.geometry).c_str();
    std::vector<double> shape;
    appendMatrix(shape, mesh.bone < 0 ? glm::dmat4(1)
                                      : m_scene.bones[static_cast<std::size_t>(mesh.bone)].global *
                                            localMatrix(mesh.translation, mesh.euler_degrees));
    skin.append_child("bind_shape_matrix").text() = numberList(shape).c_str();
    addNameSource(skin, id + "-joints", joints, clusters.size(), "JOINT", "name");
    addSource(skin, id + "-binds", inverse_binds, "TRANSFORM", "float4x4");
    addSource(skin, id + "-weights", weights, "WEIGHT");
    pugi::xml_node joint_list = skin.append_child("joints");
    addInput(joint_list, "JOINT", id + "-joints");
    addInput(joint_list, "INV_BIND_MATRIX", id + "-binds");
    pugi::xml_node list = skin.append_child("vertex_weights");
    list.append_attribute("count") = static_cast<unsigned long long>(by_point.size());
    addInput(list, "JOINT", id + "-joints", 0);
    addInput(list, "WEIGHT", id + "-weights", 1);
    std::string counts, pairs;
    for (const auto& own : by_point)
    {
        (counts += counts.empty() ? "" : " ") += std::to_string(own.size());
        for (const auto& [joint, weight] : own)
            ((pairs += pairs.empty() ? "" : " ") += std::to_string(joint) + " ") += std::to_string(weight);
    }
    list.append_child("vcount").text() = counts.c_str();
    list.append_child("v").text() = pairs.c_str();
}

pugi::xml_node addMatrix(pugi::xml_node node, const glm::dvec3& translation, const glm::dvec3& euler_degrees)
{
    std::vector<double> numbers;
    appendMatrix(numbers, localMatrix(translation, euler_degrees));
    pugi::xml_node matrix = node.append_child("matrix");
    matrix.text() = numberList(numbers).c_str();
    return matrix;
}

void dae_writer::addBone(pugi::xml_node parent, std::size_t index)
{
    const export_bone& bone = m_scene.bones[index];
    pugi::xml_node node = addElement(parent, "node", m_bones[index], bone.name);
    node.append_attribute("sid") = m_bones[index].c_str();
    node.append_attribute("type") = "JOINT";
    addMatrix(node, bone.translation, bone.euler_degrees).append_attribute("sid") = bone_matrix;
    for (const std::size_t child : m_children[index])
        addBone(node, child);
}

void dae_writer::addMeshNode(pugi::xml_node parent, const export_mesh& mesh, const mesh_ids& ids)
{
    pugi::xml_node node = addElement(parent, "node", ids.node, mesh.name);
    node.append_attribute("type") = "NODE";
    const bool is_skinned = !mesh.clusters.empty() || mesh.bone >= 0;
    pugi::xml_node instance = node.append_child(is_skinned ? "instance_controller" : "instance_geometry");
    instance.append_attribute("url") = ("#" + (is_skinned ? ids.controller : ids.geometry)).c_str();
    for (std::size_t i = 0; is_skinned && i < m_scene.bones.size(); ++i)
        if (m_scene.bones[i].parent < 0)
            instance.append_child("skeleton").text() = ("#" + m_bones[i]).c_str();
    if (!m_options.with_materials)
        return;
    pugi::xml_node material =
        instance.append_child("bind_material").append_child("technique_common").append_child("instance_material");
    material.append_attribute("symbol") = ids.material.c_str();
    material.append_attribute("target") = ("#" + ids.material).c_str();
    pugi::xml_node binding = material.append_child("bind_vertex_input");
    binding.append_attribute("semantic") = texture_coordinates;
    binding.append_attribute("input_semantic") = "TEXCOORD";
    binding.append_attribute("input_set") = 0;
}

void dae_writer::addVisualScene(pugi::xml_node root)
{
    pugi::xml_node scene =
        addElement(root.append_child("library_visual_scenes"), "visual_scene", "MyScene", "My Scene");
    for (std::size_t i = 0; i < m_scene.bones.size(); ++i)
        if (m_scene.bones[i].parent < 0)
            addBone(scene, i);
    for (std::size_t i = 0; i < m_scene.meshes.size(); ++i)
        addMeshNode(scene, m_scene.meshes[i], m_meshes[i]);
}

} // namespace

dae_export::dae_export(const export_scene& scene, const export_options& options)
    : m_scene(scene)
    , m_text(dae_writer(scene, options, m_ids, m_bones).write())
{
    constexpr std::string_view end_of_asset = "</asset>\n"; // nothing before it holds one
    m_take_position = m_text.find(end_of_asset) + end_of_asset.size();
}

std::string dae_export::text(const export_take* take) const
{
    const std::string animations = take ? daeTake(*take, m_scene, m_bones, m_ids) : std::string();
    std::string text;
    text.reserve(m_text.size() + animations.size());
    return text.append(m_text, 0, m_take_position).append(animations).append(m_text, m_take_position);
}

} // namespace korvane
