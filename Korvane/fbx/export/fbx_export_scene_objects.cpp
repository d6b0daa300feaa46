// Bones, meshes, skins, materials and the bind pose as FBX objects.

#include "EASY_GUI/services/text.h"
#include "Korvane/fbx/container/fbx_records.h"
#include "Korvane/fbx/export/euler_keys.h"
#include "Korvane/fbx/export/fbx_export_objects.h"

#include <glm/matrix.hpp>

#include <map>
#include <tuple>

namespace korvane
{

namespace
{

using namespace fbx_records;

struct mesh_ids
{
    std::int64_t model = 0, geometry = 0;
};

class scene_objects
{
public:
    scene_objects(const export_scene& scene, const export_options& options, const export_target& target,
                  std::vector<std::int64_t>& bone_ids)
        : m_scene(scene)
        , m_options(options)
        , m_target(target)
        , m_bone_ids(bone_ids)
    {
    }

    void add()
    {
        giveIds();
        for (std::size_t i = 0; i < m_scene.bones.size(); ++i)
            addBoneAttribute(i);
        for (std::size_t i = 0; i < m_scene.meshes.size(); ++i)
            addGeometry(m_scene.meshes[i], m_meshes[i]);
        for (std::size_t i = 0; i < m_scene.bones.size(); ++i)
            addBoneModel(i);
        for (std::size_t i = 0; i < m_scene.meshes.size(); ++i)
            addMeshModel(m_scene.meshes[i], m_meshes[i]);
        if (!m_scene.bones.empty())
            addBindPose();
        for (std::size_t i = 0; m_options.with_materials && i < m_scene.meshes.size(); ++i)
            addMaterial(m_scene.materials[m_scene.meshes[i].material], m_meshes[i]);
        for (std::size_t i = 0; i < m_scene.meshes.size(); ++i)
            if (!m_scene.meshes[i].clusters.empty())
                addSkin(m_scene.meshes[i], m_meshes[i]);
    }

private:
    std::int64_t newId() { return m_target.next_id++; }
    void giveIds();
    void addBoneAttribute(std::size_t index);
    void addBoneModel(std::size_t index);
    void addGeometry(const export_mesh& mesh, const mesh_ids& ids);
    void addMeshModel(const export_mesh& mesh, const mesh_ids& ids);
    void addBindPose();
    void addMaterial(const export_material& material, const mesh_ids& ids);
    void addTexture(std::int64_t material, const std::string& internal_path, const char* property);
    std::int64_t videoOf(const std::string& internal_path, const std::string& path);
    void addSkin(const export_mesh& mesh, const mesh_ids& ids);
    glm::dmat4 globalOf(const export_mesh& mesh) const;
    fbx_record& addModel(std::int64_t id, const std::string& name, const char* model_class,
                         const glm::dvec3& translation, const glm::dvec3& rotation);

    const export_scene& m_scene;
    const export_options& m_options;
    const export_target& m_target;
    std::vector<std::int64_t>& m_bone_ids;
    std::vector<mesh_ids> m_meshes;
    std::map<std::string, std::int64_t> m_videos;                           // by internal path
    std::map<std::pair<std::string, std::string>, std::int64_t> m_textures; // by internal path and property
};

void scene_objects::giveIds()
{
    m_bone_ids.clear();
    for (std::size_t i = 0; i < m_scene.bones.size(); ++i)
        m_bone_ids.push_back(newId());
    for (std::size_t i = 0; i < m_scene.meshes.size(); ++i)
    {
        const std::int64_t model = newId();
        m_meshes.push_back({model, newId()});
    }
}

void scene_objects::addBoneAttribute(std::size_t index)
{
    const export_bone& bone = m_scene.bones[index];
    const std::int64_t id = newId();
    fbx_record& attribute = addObject(m_target.objects, "NodeAttribute", id, fullName(bone.name, "NodeAttribute"),
                                      bone.is_root ? "Root" : "LimbNode");
    property_list(attribute).colour("Color", bone.limb_colour).number("Size", 1);
    if (bone.is_root)
        attribute.add("TypeFlags", std::string("Null"), std::string("Skeleton"), std::string("Root"));
    else
        attribute.add("TypeFlags", std::string("Skeleton"));
    connect(m_target.connections, id, m_bone_ids[index]);
}

fbx_record& scene_objects::addModel(std::int64_t id, const std::string& name, const char* model_class,
                                    const glm::dvec3& translation, const glm::dvec3& rotation)
{
    fbx_record& model = addObject(m_target.objects, "Model", id, fullName(name, "Model"), model_class);
    model.add("Version", std::int32_t(232));
    property_list(model)
        .flag("RotationActive", true)
        .choice("InheritType", 1)
        .vector("ScalingMax", glm::dvec3(0))
        .integer("DefaultAttributeIndex", 0)
        .animatable("Lcl Translation", "Lcl Translation", translation)
        .animatable("Lcl Rotation", "Lcl Rotation", rotation)
        .animatable("Lcl Scaling", "Lcl Scaling", glm::dvec3(1));
    model.add("Shading", true);
    model.add("Culling", std::string("CullingOff"));
    return model;
}

// The node of the root bone is a limb node, too: readers drop one of class "Root", with all that hangs on it. That it
// is the root, its attribute says.
void scene_objects::addBoneModel(std::size_t index)
{
    const export_bone& bone = m_scene.bones[index];
    addModel(m_bone_ids[index], bone.name, "LimbNode", bone.translation, bone.euler_degrees);
    connect(m_target.connections, m_bone_ids[index],
            bone.parent < 0 ? 0 : m_bone_ids[static_cast<std::size_t>(bone.parent)]);
}

void scene_objects::addMeshModel(const export_mesh& mesh, const mesh_ids& ids)
{
    addModel(ids.model, mesh.name, "Mesh", mesh.translation, mesh.euler_degrees);
    connect(m_target.connections, ids.model, mesh.bone < 0 ? 0 : m_bone_ids[static_cast<std::size_t>(mesh.bone)]);
    connect(m_target.connections, ids.geometry, ids.model);
}

void scene_objects::addGeometry(const export_mesh& mesh, const mesh_ids& ids)
{
    fbx_record& geometry =
        addObject(m_target.objects, "Geometry", ids.geometry, fullName(mesh.name + "_mesh", "Geometry"), "Mesh");
    geometry.add("GeometryVersion", std::int32_t(124));
    geometry.add("Vertices", mesh.points);
    std::vector<std::int32_t> corners = mesh.triangles;
    for (std::size_t i = 2; i < corners.size(); i += 3)
        corners[i] = -corners[i] - 1; // the last one of its polygon
    geometry.add("PolygonVertexIndex", std::move(corners));
    const auto addElement = [&geometry](const char* name, std::int32_t version, const char* title, const char* mapping,
                                        const char* reference) -> fbx_record& {
        fbx_record& element = geometry.add(name, std::int32_t(0));
        element.add("Version", version);
        element.add("Name", std::string(title));
        element.add("MappingInformationType", std::string(mapping));
        element.add("ReferenceInformationType", std::string(reference));
        return element;
    };
    std::vector<const char*> elements{"LayerElementNormal", "LayerElementUV"};
    addElement("LayerElementNormal", 101, "", "ByVertice", "Direct").add("Normals", mesh.normals);
    addElement("LayerElementUV", 101, uv_set_name, "ByVertice", "Direct").add("UV", mesh.uvs);
    if (m_options.with_materials)
    {
        addElement("LayerElementMaterial", 101, "", "AllSame", "IndexToDirect")
            .add("Materials", std::vector<std::int32_t>{0});
        elements.push_back("LayerElementMaterial");
    }
    fbx_record& layer = geometry.add("Layer", std::int32_t(0));
    layer.add("Version", std::int32_t(100));
    for (const char* element : elements)
    {
        fbx_record& entry = layer.add("LayerElement");
        entry.add("Type", std::string(element));
        entry.add("TypedIndex", std::int32_t(0));
    }
}

void scene_objects::addBindPose()
{
    fbx_record& pose = addObject(m_target.objects, "Pose", newId(), fullName(bind_pose_name, "Pose"), "BindPose");
    pose.add("Type", std::string("BindPose"));
    pose.add("Version", std::int32_t(100));
    pose.add("NbPoseNodes", static_cast<std::int32_t>(m_scene.bones.size() + m_scene.meshes.size()));
    const auto addNode = [&pose](std::int64_t id, const glm::dmat4& global) {
        fbx_record& node = pose.add("PoseNode");
        node.add("Node", id);
        node.add("Matrix", matrixValues(global));
    };
    for (std::size_t i = 0; i < m_meshes.size(); ++i)
        addNode(m_meshes[i].model, globalOf(m_scene.meshes[i]));
    for (std::size_t i = 0; i < m_scene.bones.size(); ++i)
        addNode(m_bone_ids[i], m_scene.bones[i].global);
}

glm::dmat4 scene_objects::globalOf(const export_mesh& mesh) const
{
    return mesh.bone < 0 ? glm::dmat4(1)
                         : m_scene.bones[static_cast<std::size_t>(mesh.bone)].global *
                               localMatrix(mesh.translation, mesh.euler_degrees);
}

void scene_objects::addMaterial(const export_material& material, const mesh_ids& ids)
{
    const std::int64_t id = newId();
    fbx_record& record = addObject(m_target.objects, "Material", id, fullName(material.name, "Material"), "");
    record.add("Version", std::int32_t(102));
    record.add("ShadingModel", std::string("phong"));
    record.add("MultiLayer", std::int32_t(0));
    const glm::dvec3 grey(0.8);
    property_list(record)
        .add("AmbientColor", "Color", "", "A", 0.0, 0.0, 0.0)
        .add("DiffuseColor", "Color", "", "A", grey.x, grey.y, grey.z)
        .add("DiffuseFactor", "Number", "", "A", 1.0)
        .add("SpecularColor", "Color", "", "A", 0.2, 0.2, 0.2)
        .add("SpecularFactor", "Number", "", "A", 0.25)
        .add("ShininessExponent", "Number", "", "A", 20.0);
    connect(m_target.connections, id, ids.model);
    addTexture(id, material.diffuse_path, "DiffuseColor");
    addTexture(id, material.normal_path, "NormalMap");
}

std::int64_t scene_objects::videoOf(const std::string& internal_path, const std::string& path)
{
    const auto [place, is_new] = m_videos.try_emplace(internal_path, 0);
    if (!is_new)
        return place->second;
    place->second = newId();
    const std::string name = displayText(fileName(internal_path));
    fbx_record& video = addObject(m_target.objects, "Video", place->second, fullName(name, "Video"), "Clip");
    video.add("Type", std::string("Clip"));
    property_list(video).add("Path", "KString", "XRefUrl", "", path);
    video.add("UseMipMap", std::int32_t(0));
    video.add("Filename", path);
    video.add("RelativeFilename", path);
    return place->second;
}

void scene_objects::addTexture(std::int64_t material, const std::string& internal_path, const char* property)
{
    if (internal_path.empty())
        return;
    const auto [place, is_new] = m_textures.try_emplace({internal_path, property}, 0);
    if (is_new)
    {
        const std::string path = m_options.texture_path ? m_options.texture_path(internal_path) : internal_path;
        const std::int64_t video = videoOf(internal_path, path);
        const std::int64_t id = place->second = newId();
        const std::string name = displayText(fileName(internal_path));
        fbx_record& texture = addObject(m_target.objects, "Texture", id, fullName(name, "Texture"), "");
        texture.add("Type", std::string("TextureVideoClip"));
        texture.add("Version", std::int32_t(202));
        texture.add("TextureName", fullName(name, "Texture"));
        property_list(texture).text("UVSet", uv_set_name).flag("UseMaterial", true);
        texture.add("Media", fullName(name, "Video"));
        texture.add("FileName", path);
        texture.add("RelativeFilename", path);
        texture.add("ModelUVTranslation", 0.0, 0.0);
        texture.add("ModelUVScaling", 1.0, 1.0);
        texture.add("Texture_Alpha_Source", std::string("None"));
        texture.add("Cropping", std::int32_t(0), std::int32_t(0), std::int32_t(0), std::int32_t(0));
        connect(m_target.connections, video, id);
    }
    connect(m_target.connections, place->second, material, property);
}

void scene_objects::addSkin(const export_mesh& mesh, const mesh_ids& ids)
{
    const std::int64_t skin = newId();
    fbx_record& record =
        addObject(m_target.objects, "Deformer", skin, fullName(mesh.name + "_skin  ", "Deformer"), "Skin");
    record.add("Version", std::int32_t(101));
    record.add("Link_DeformAcuracy", 50.0); // the format's spelling
    connect(m_target.connections, skin, ids.geometry);
    for (const export_cluster& cluster : mesh.clusters)
    {
        const export_bone& bone = m_scene.bones[cluster.bone];
        const std::int64_t id = newId();
        fbx_record& own =
            addObject(m_target.objects, "Deformer", id, fullName(bone.name + "__CLUSTER", "SubDeformer"), "Cluster");
        own.add("Version", std::int32_t(100));
        own.add("Mode", std::string("Total1"));
        own.add("UserData", std::string(), std::string());
        own.add("Indexes", cluster.points);
        own.add("Weights", cluster.weights);
        // From the mesh, whose node stands at the origin, into the bone's space.
        own.add("Transform", matrixValues(glm::inverse(bone.global)));
        own.add("TransformLink", matrixValues(bone.global));
        connect(m_target.connections, id, skin);
        connect(m_target.connections, m_bone_ids[cluster.bone], id);
    }
}

} // namespace

void addSceneObjects(const export_scene& scene, const export_options& options, const export_target& target,
                     std::vector<std::int64_t>& bone_ids)
{
    scene_objects(scene, options, target, bone_ids).add();
}

} // namespace korvane
