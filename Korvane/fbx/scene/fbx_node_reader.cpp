#include "Korvane/fbx/scene/fbx_scene_reader.h"

#include <algorithm>
#include <array>
#include <unordered_map>

namespace korvane
{

namespace
{

constexpr std::size_t max_depth = 1024; // of nodes below each other

bool isSkeleton(std::string_view sub_class)
{
    return sub_class == "LimbNode" || sub_class == "Root" || sub_class == "Limb" || sub_class == "Effector";
}

fbx_node_type typeOfClass(std::string_view sub_class)
{
    if (isSkeleton(sub_class))
        return fbx_node_type::skeleton;
    if (sub_class == "Camera")
        return fbx_node_type::camera;
    if (sub_class == "Light")
        return fbx_node_type::light;
    return sub_class == "Null" ? fbx_node_type::null : fbx_node_type::other;
}

struct vector_property
{
    std::string_view name;
    glm::dvec3 fbx_placement::*member;
};

constexpr std::array<vector_property, 12> vector_properties = {{
    {"Lcl Translation", &fbx_placement::translation},
    {"Lcl Rotation", &fbx_placement::rotation},
    {"Lcl Scaling", &fbx_placement::scaling},
    {"RotationOffset", &fbx_placement::rotation_offset},
    {"RotationPivot", &fbx_placement::rotation_pivot},
    {"ScalingOffset", &fbx_placement::scaling_offset},
    {"ScalingPivot", &fbx_placement::scaling_pivot},
    {"PreRotation", &fbx_placement::pre_rotation},
    {"PostRotation", &fbx_placement::post_rotation},
    {"GeometricTranslation", &fbx_placement::geometric_translation},
    {"GeometricRotation", &fbx_placement::geometric_rotation},
    {"GeometricScaling", &fbx_placement::geometric_scaling},
}};

struct model_properties
{
    fbx_placement placement;
    std::int64_t default_attribute = -1;
    glm::dvec3 color{0.8};
    double size = 100;
};

glm::dvec3 vectorAt(const fbx_record& record, std::size_t position, const glm::dvec3& fallback)
{
    return {record.numberAt(position, fallback.x), record.numberAt(position + 1, fallback.y),
            record.numberAt(position + 2, fallback.z)};
}

void readProperties(const fbx_record& owner, model_properties& target)
{
    forEachProperty(owner, [&target](std::string_view name, const fbx_record& record, std::size_t position) {
        fbx_placement& placement = target.placement;
        for (const vector_property& property : vector_properties)
            if (property.name == name)
                placement.*property.member = vectorAt(record, position, placement.*property.member);
        const std::int64_t number = record.integerAt(position, -1);
        if (name == "RotationOrder" && number >= 0 && number <= 6)
            placement.rotation_order = static_cast<fbx_rotation_order>(number);
        else if (name == "InheritType" && number >= 0 && number <= 2)
            placement.inherit_type = static_cast<fbx_inherit>(number);
        else if (name == "RotationActive")
            placement.rotation_active = number > 0;
        else if (name == "RotationSpaceForLimitOnly")
            placement.rotation_space_for_limit_only = number > 0;
        else if (name == "DefaultAttributeIndex")
            target.default_attribute = number;
        else if (name == "Color")
            target.color = vectorAt(record, position, target.color);
        else if (name == "Size")
            target.size = record.numberAt(position, target.size);
    });
}

class node_reader
{
public:
    node_reader(fbx_scene_work& work, failure& why) : m_work(work), m_why(why) {}

    bool read()
    {
        if (const fbx_record* const defaults = m_work.objects.templateOf("Model"))
            readProperties(*defaults, m_defaults);
        if (const fbx_record* const defaults = m_work.objects.templateOf("NodeAttribute"))
            readProperties(*defaults, m_attribute_defaults);
        chooseParents();
        return placeNodes();
    }

private:
    // The first connection to a node or the root counts; the node hangs nowhere else.
    void chooseParents()
    {
        m_parent.assign(m_work.objects.objects().size(), fbx_none);
        for (std::size_t i = 1; i < m_parent.size(); ++i)
        {
            if (!m_work.objects[i].is("Model"))
                continue;
            ++m_model_count;
            for (const fbx_link& link : m_work.objects.parents(i))
                if (m_parent[i] == fbx_none && link.property.empty() &&
                    (link.object == fbx_object_table::root || m_work.objects[link.object].is("Model")))
                    m_parent[i] = link.object;
        }
    }

    bool placeNodes()
    {
        placeChildren(fbx_object_table::root, fbx_none);
        for (std::size_t i = 1; i < m_parent.size(); ++i)
            if (m_work.objects[i].is("Model") && m_parent[i] == fbx_none)
            {
                place(i, fbx_none);
                m_work.note("the node \"" + std::string(m_work.objects[i].name) +
                            "\" is connected to no parent: it is a child of the root");
            }
        for (std::size_t i = 0; i < m_order.size(); ++i)
        {
            if (m_depth[i] > max_depth)
                return m_work.malformed(m_order[i], {},
                                        "nodes are nested more than " + std::to_string(max_depth) + " deep", m_why);
            placeChildren(m_order[i], i);
        }
        return m_order.size() == m_model_count || failAtCircle();
    }

    void placeChildren(std::size_t object, std::size_t node)
    {
        for (const fbx_link& link : m_work.objects.children(object))
            if (link.property.empty() && m_work.objects[link.object].is("Model") && m_parent[link.object] == object &&
                m_work.node_of[link.object] == fbx_none)
                place(link.object, node);
    }

    void place(std::size_t object, std::size_t parent)
    {
        fbx_scene& scene = m_work.scene;
        const std::size_t index = scene.nodes.size();
        m_work.node_of[object] = index;
        m_order.push_back(object);
        m_depth.push_back(parent == fbx_none ? 1 : m_depth[parent] + 1);
        fbx_node node = makeNode(object);
        node.parent = parent;
        (parent == fbx_none ? scene.roots : scene.nodes[parent].children).push_back(index);
        scene.nodes.push_back(std::move(node));
    }

    fbx_node makeNode(std::size_t object)
    {
        const fbx_object& model = m_work.objects[object];
        model_properties properties = m_defaults;
        readProperties(*model.record, properties);
        fbx_node node;
        node.name = model.name;
        node.placement = properties.placement;
        for (const fbx_link& link : m_work.objects.children(object))
            if (link.property.empty() && m_work.objects[link.object].is("Material"))
                node.materials.emplace_back(m_work.objects[link.object].name);
        if (m_work.isNumbered())
            readAttribute(object, properties, node);
        else
            readOldType(model, properties, node);
        return node;
    }

    static void readOldType(const fbx_object& model, const model_properties& properties, fbx_node& node)
    {
        node.type = model.record->find("Vertices") != nullptr ? fbx_node_type::mesh : typeOfClass(model.sub_class);
        if (node.type == fbx_node_type::other && (model.sub_class.empty() || model.sub_class == "Mesh"))
            node.type = fbx_node_type::null;
        if (node.type == fbx_node_type::skeleton)
        {
            node.skeleton_kind = model.sub_class;
            node.color = properties.color;
            node.size = properties.size;
        }
    }

    void readAttribute(std::size_t object, const model_properties& properties, fbx_node& node)
    {
        std::vector<std::size_t> attributes;
        for (const fbx_link& link : m_work.objects.children(object))
            if (link.property.empty() &&
                (m_work.objects[link.object].is("NodeAttribute") || m_work.objects[link.object].is("Geometry")))
                attributes.push_back(link.object);
        if (attributes.empty())
        {
            const std::string_view sub_class = m_work.objects[object].sub_class;
            node.type = typeOfClass(sub_class);
            if (node.type == fbx_node_type::other)
                node.type = fbx_node_type::null;
            if (node.type == fbx_node_type::skeleton)
                node.skeleton_kind = sub_class;
            return;
        }
        const auto count = static_cast<std::int64_t>(attributes.size());
        const bool is_chosen = properties.default_attribute >= 0 && properties.default_attribute < count;
        const std::size_t chosen = attributes[static_cast<std::size_t>(is_chosen ? properties.default_attribute : 0)];
        const fbx_object& attribute = m_work.objects[chosen];
        if (attribute.is("Geometry"))
        {
            node.type = attribute.sub_class == "Mesh" ? fbx_node_type::mesh : fbx_node_type::other;
            return;
        }
        node.type = typeOfClass(attribute.sub_class);
        if (node.type == fbx_node_type::skeleton)
        {
            const model_properties& look = attributeLook(chosen);
            node.skeleton_kind = attribute.sub_class;
            node.color = look.color;
            node.size = look.size;
        }
    }

    // Nodes may share an attribute: it is read once.
    const model_properties& attributeLook(std::size_t object)
    {
        const auto [entry, is_new] = m_looks.emplace(object, m_attribute_defaults);
        if (is_new)
            readProperties(*m_work.objects[object].record, entry->second);
        return entry->second;
    }

    bool failAtCircle()
    {
        std::size_t object = 1;
        while (!m_work.objects[object].is("Model") || m_work.node_of[object] != fbx_none)
            ++object;
        for (std::size_t step = 0; step < m_model_count; ++step) // by then it is one of the circle
            object = m_parent[object];
        return m_work.malformed(object, {},
                                "the node \"" + std::string(m_work.objects[object].name) +
                                    "\" is its own ancestor: the parents of the nodes run in a circle",
                                m_why);
    }

    fbx_scene_work& m_work;
    failure& m_why;
    model_properties m_defaults;
    model_properties m_attribute_defaults;
    std::vector<std::size_t> m_parent; // of each object that is a node, an object
    std::size_t m_model_count = 0;
    std::vector<std::size_t> m_order; // objects of the nodes
    std::vector<std::size_t> m_depth; // of the nodes
    std::unordered_map<std::size_t, model_properties> m_looks;
};

} // namespace

bool readNodes(fbx_scene_work& work, failure& why)
{
    return node_reader(work, why).read();
}

} // namespace korvane
