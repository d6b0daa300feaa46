#include "Korvane/fbx/scene/fbx_scene_reader.h"

#include <limits>
#include <optional>
#include <utility>

namespace korvane
{

namespace
{

using mapping_kind = fbx_layer_element::mapping_kind;

std::optional<mapping_kind> mappingOf(std::string_view word)
{
    if (word == "ByVertice" || word == "ByVertex")
        return mapping_kind::control_point;
    if (word == "ByPolygonVertex")
        return mapping_kind::corner;
    if (word == "ByPolygon")
        return mapping_kind::polygon;
    if (word == "AllSame")
        return mapping_kind::all_same;
    return std::nullopt;
}

class mesh_reader
{
public:
    mesh_reader(fbx_scene_work& work, std::size_t object, failure& why)
        : m_work(work)
        , m_object(object)
        , m_record(*work.objects[object].record)
        , m_why(why)
    {
    }

    bool read(fbx_mesh& mesh)
    {
        mesh.points = takeNumbers(findChild(m_record, "Vertices"));
        if (mesh.points.size() % 3 != 0 || mesh.points.size() / 3 > std::numeric_limits<std::int32_t>::max())
            return malformed("Vertices", "Vertices has " + std::to_string(mesh.points.size()) +
                                             " numbers: not three for each control point");
        if (!readPolygons(mesh))
            return false;
        for (fbx_record& child : m_record.children)
        {
            const bool is_normal = child.name == "LayerElementNormal";
            if (is_normal && !readElement(child, "Normals", "NormalsIndex", 3, mesh, mesh.normals))
                return false;
            if (child.name == "LayerElementUV" && !readElement(child, "UV", "UVIndex", 2, mesh, mesh.uv_sets))
                return false;
            if (child.name == "LayerElementMaterial" && mesh.polygon_materials.empty())
                readMaterials(child, mesh);
        }
        return true;
    }

private:
    static constexpr std::string_view corners_name = "PolygonVertexIndex";

    bool malformed(std::string_view child, const std::string& what)
    {
        return m_work.malformed(m_object, child, m_work.label(m_object) + ": " + what, m_why);
    }
    bool malformedElement(const fbx_record& element, std::string_view child, const std::string& what)
    {
        const fbx_record* const found = element.find(child);
        const std::string field = "Objects/" + m_record.name + "/" + element.name;
        return failRecord(m_why, found != nullptr ? *found : element,
                          found != nullptr ? field + "/" + found->name : field, m_work.label(m_object) + ": " + what);
    }

    // The last corner of a polygon is stored as its bits inverted.
    bool readPolygons(fbx_mesh& mesh)
    {
        const std::vector<std::int32_t> indices = takeIntegers(findChild(m_record, corners_name));
        if (indices.size() > std::numeric_limits<std::uint32_t>::max())
            return malformed(corners_name, "there are " + std::to_string(indices.size()) + " corners of polygons");
        if (!indices.empty() && indices.back() >= 0)
            return malformed(corners_name, "the last polygon of PolygonVertexIndex is not closed");
        const std::size_t count = mesh.pointCount();
        mesh.corners.resize(indices.size());
        for (std::size_t i = 0; i < indices.size(); ++i)
        {
            const bool is_last = indices[i] < 0;
            const auto point = static_cast<std::uint32_t>(is_last ? ~indices[i] : indices[i]);
            if (point >= count)
                return malformed(corners_name, "corner " + std::to_string(i) +
                                                   " of PolygonVertexIndex is control point " + std::to_string(point) +
                                                   " of " + std::to_string(count));
            mesh.corners[i] = point;
            if (is_last)
                mesh.polygon_ends.push_back(static_cast<std::uint32_t>(i + 1));
        }
        return true;
    }

    static std::size_t entryCount(mapping_kind mapping, const fbx_mesh& mesh)
    {
        switch (mapping)
        {
        case mapping_kind::control_point:
            return mesh.pointCount();
        case mapping_kind::corner:
            return mesh.corners.size();
        case mapping_kind::polygon:
            return mesh.polygon_ends.size();
        case mapping_kind::all_same:
            break;
        }
        return mesh.corners.empty() ? 0 : 1;
    }

    bool readElement(fbx_record& record, std::string_view values_name, std::string_view indices_name, std::size_t width,
                     const fbx_mesh& mesh, std::vector<fbx_layer_element>& list)
    {
        const fbx_record* const mapping = record.find("MappingInformationType");
        const fbx_record* const reference = record.find("ReferenceInformationType");
        const fbx_record* const name = record.find("Name");
        const auto kind = mappingOf(mapping != nullptr ? mapping->textAt(0) : std::string_view());
        if (!kind)
        {
            m_work.note(m_work.label(m_object) + ": " + record.name + " is mapped in a way that is not read");
            return true;
        }
        fbx_layer_element element;
        element.name = name != nullptr ? name->textAt(0) : std::string_view();
        element.mapping = *kind;
        element.width = width;
        element.values = takeNumbers(findChild(record, values_name));
        if (reference != nullptr && reference->textAt(0) != "Direct")
            element.indices = takeIntegers(findChild(record, indices_name));
        if (element.values.empty() && entryCount(*kind, mesh) > 0) // some programs write no more than its head
        {
            m_work.note(m_work.label(m_object) + ": " + record.name + " has no entries and is left out");
            return true;
        }
        if (!checkElement(record, values_name, indices_name, element, mesh))
            return false;
        list.push_back(std::move(element));
        return true;
    }

    bool checkElement(const fbx_record& record, std::string_view values_name, std::string_view indices_name,
                      const fbx_layer_element& element, const fbx_mesh& mesh)
    {
        const std::string& name = record.name;
        const std::size_t needed = entryCount(element.mapping, mesh);
        const std::size_t available = element.values.size() / element.width;
        if (element.values.size() % element.width != 0)
            return malformedElement(record, values_name,
                                    name + " has " + std::to_string(element.values.size()) + " numbers: not " +
                                        std::to_string(element.width) + " for each entry");
        const std::size_t count = element.indices.empty() ? available : element.indices.size();
        if (count < needed)
            return malformedElement(record, element.indices.empty() ? values_name : indices_name,
                                    name + " has " + std::to_string(count) + " entries for " + std::to_string(needed) +
                                        " places");
        for (std::size_t i = 0; i < element.indices.size(); ++i)
            if (element.indices[i] < -1 || element.indices[i] >= static_cast<std::int64_t>(available))
                return malformedElement(record, indices_name,
                                        "index " + std::to_string(i) + " of " + name + " is " +
                                            std::to_string(element.indices[i]) + " of " + std::to_string(available) +
                                            " entries");
        return true;
    }

    // One for all polygons, or one for each; anything else is left out, and no reason to refuse the mesh.
    void readMaterials(fbx_record& record, fbx_mesh& mesh)
    {
        const fbx_record* const mapping = record.find("MappingInformationType");
        const auto kind = mappingOf(mapping != nullptr ? mapping->textAt(0) : std::string_view());
        std::vector<std::int32_t> numbers = takeIntegers(findChild(record, "Materials"));
        if (kind == mapping_kind::all_same && !numbers.empty())
            numbers.assign(mesh.polygon_ends.size(), std::int32_t{numbers.front()});
        else if (kind != mapping_kind::polygon || numbers.size() != mesh.polygon_ends.size())
        {
            m_work.note(m_work.label(m_object) + ": " + record.name + " has " + std::to_string(numbers.size()) +
                        " entries for " + std::to_string(mesh.polygon_ends.size()) + " polygons and is left out");
            return;
        }
        mesh.polygon_materials = std::move(numbers);
    }

    fbx_scene_work& m_work;
    std::size_t m_object;
    fbx_record& m_record;
    failure& m_why;
};

class skin_reader
{
public:
    skin_reader(fbx_scene_work& work, failure& why)
        : m_work(work)
        , m_why(why)
        , m_is_used(work.objects.objects().size(), false)
    {
    }

    // A skin deforms one mesh: the first that it is connected to.
    bool readOf(std::size_t object)
    {
        fbx_mesh& mesh = m_work.scene.meshes[m_work.mesh_of[object]];
        for (const fbx_link& link : m_work.objects.children(object))
        {
            if (!m_work.objects[link.object].is("Deformer", "Skin") || m_is_used[link.object])
                continue;
            m_is_used[link.object] = true;
            fbx_skin skin;
            skin.name = m_work.objects[link.object].name;
            if (!readClusters(link.object, mesh, skin))
                return false;
            mesh.skins.push_back(std::move(skin));
        }
        return true;
    }

private:
    bool readClusters(std::size_t object, const fbx_mesh& mesh, fbx_skin& skin)
    {
        for (const fbx_link& link : m_work.objects.children(object))
        {
            if (!m_work.objects[link.object].is("Deformer", "Cluster") || m_is_used[link.object])
                continue;
            m_is_used[link.object] = true;
            if (!readCluster(link.object, mesh, skin))
                return false;
        }
        return true;
    }

    std::size_t boneOf(std::size_t cluster) const
    {
        for (const fbx_link& link : m_work.objects.children(cluster))
            if (m_work.node_of[link.object] != fbx_none)
                return m_work.node_of[link.object];
        return fbx_none;
    }

    bool readCluster(std::size_t object, const fbx_mesh& mesh, fbx_skin& skin)
    {
        fbx_record& record = *m_work.objects[object].record;
        fbx_cluster cluster;
        cluster.name = m_work.objects[object].name;
        cluster.bone = boneOf(object);
        cluster.indices = takeIntegers(findChild(record, "Indexes"));
        cluster.weights = takeNumbers(findChild(record, "Weights"));
        if (cluster.indices.size() != cluster.weights.size())
            return m_work.malformed(object, "Weights",
                                    m_work.label(object) + " has " + std::to_string(cluster.indices.size()) +
                                        " indices, but " + std::to_string(cluster.weights.size()) + " weights",
                                    m_why);
        for (const std::int32_t index : cluster.indices)
            if (index < 0 || static_cast<std::size_t>(index) >= mesh.pointCount())
                return m_work.malformed(object, "Indexes",
                                        m_work.label(object) + " moves control point " + std::to_string(index) +
                                            " of " + std::to_string(mesh.pointCount()),
                                        m_why);
        static_cast<void>(readMatrix(findChild(record, "Transform"), cluster.mesh_to_bone));
        static_cast<void>(readMatrix(findChild(record, "TransformLink"), cluster.bone_to_world));
        if (cluster.bone == fbx_none)
            m_work.note(m_work.label(object) + " is connected to no bone and left out");
        else
            skin.clusters.push_back(std::move(cluster));
        return true;
    }

    fbx_scene_work& m_work;
    failure& m_why;
    std::vector<bool> m_is_used;
};

bool isMesh(const fbx_scene_work& work, std::size_t object)
{
    const fbx_object& candidate = work.objects[object];
    return work.isNumbered() ? candidate.is("Geometry", "Mesh")
                             : candidate.is("Model") && candidate.record->find("Vertices") != nullptr;
}

// Before version 7000 the node is its mesh, too.
void connectNodes(fbx_scene_work& work, std::size_t object, fbx_mesh& mesh)
{
    const auto connect = [&work, &mesh](std::size_t node) {
        // A node whose first attribute is another one shows that.
        if (node == fbx_none || work.scene.nodes[node].type != fbx_node_type::mesh ||
            work.scene.nodes[node].mesh != fbx_none)
            return;
        work.scene.nodes[node].mesh = work.scene.meshes.size();
        mesh.nodes.push_back(node);
    };
    if (!work.isNumbered())
        return connect(work.node_of[object]);
    for (const fbx_link& link : work.objects.parents(object))
        if (link.property.empty())
            connect(work.node_of[link.object]);
}

std::string_view meshName(const fbx_scene_work& work, std::size_t object)
{
    const fbx_object& candidate = work.objects[object];
    if (!work.isNumbered())
        if (const fbx_record* const name = candidate.record->find("NodeAttributeName"))
            return splitFullName(name->textAt(0)).name;
    return candidate.name;
}

} // namespace

bool readMeshes(fbx_scene_work& work, failure& why)
{
    for (std::size_t i = 1; i < work.objects.objects().size(); ++i)
    {
        if (!isMesh(work, i))
            continue;
        fbx_mesh mesh;
        mesh.name = meshName(work, i);
        if (!mesh_reader(work, i, why).read(mesh))
            return false;
        connectNodes(work, i, mesh);
        work.mesh_of[i] = work.scene.meshes.size();
        work.scene.meshes.push_back(std::move(mesh));
    }
    return true;
}

bool readSkins(fbx_scene_work& work, failure& why)
{
    skin_reader reader(work, why);
    for (std::size_t i = 1; i < work.mesh_of.size(); ++i)
        if (work.mesh_of[i] != fbx_none && !reader.readOf(i))
            return false;
    return true;
}

} // namespace korvane
