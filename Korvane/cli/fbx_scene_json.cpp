#include "Korvane/cli/fbx_scene_json.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/cli/fbx_geometry.h"
#include "Korvane/fbx/scene/fbx_evaluator.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <set>
#include <string>

namespace korvane
{

namespace
{

json numberJson(double value)
{
    if (std::isnan(value))
        return "nan";
    if (std::isinf(value))
        return value > 0 ? "inf" : "-inf";
    return value;
}

json vectorJson(const glm::dvec3& value)
{
    return {numberJson(value.x), numberJson(value.y), numberJson(value.z)};
}

json transformJson(const fbx_transform& transform)
{
    const glm::dquat& r = transform.rotation;
    return {{"t", vectorJson(transform.translation)},
            {"r", {numberJson(r.x), numberJson(r.y), numberJson(r.z), numberJson(r.w)}},
            {"s", vectorJson(transform.scaling)}};
}

// The upper three rows, row after row.
json matrixJson(const glm::dmat4& matrix)
{
    json numbers = json::array();
    for (glm::length_t row = 0; row < 3; ++row)
        for (glm::length_t column = 0; column < 4; ++column)
            numbers.push_back(numberJson(matrix[column][row]));
    return numbers;
}

std::string_view typeName(fbx_node_type type)
{
    static constexpr std::array<std::string_view, 6> names = {"mesh", "skeleton", "camera", "light", "null", "other"};
    return names[static_cast<std::size_t>(type)];
}

std::string_view orderName(fbx_rotation_order order)
{
    static constexpr std::array<std::string_view, 7> names = {"XYZ", "XZY", "YZX", "YXZ", "ZXY", "ZYX", "SphericXYZ"};
    return names[static_cast<std::size_t>(order)];
}

// Below the root, which neither turns nor scales, all three are the same.
std::string_view inheritName(const fbx_node& node)
{
    static constexpr std::array<std::string_view, 3> names = {"RrSs", "RSrs", "Rrs"};
    return node.parent == fbx_none ? "RSrs" : names[static_cast<std::size_t>(node.placement.inherit_type)];
}

std::string axisName(const fbx_axis& axis)
{
    return std::string(axis.sign < 0 ? "-" : "+") + "XYZ"[axis.axis];
}

json textJson(std::string_view text)
{
    return displayText(text);
}

class scene_printer
{
public:
    scene_printer(json_stream& out, const fbx_scene& scene) : m_out(out), m_scene(scene), m_rest(scene) {}

    void print(const std::vector<double>& times, bool has_geometry)
    {
        m_out.beginObject();
        m_out.member("unit_meters", numberJson(m_scene.unit_metres));
        m_out.member(
            "axes",
            {{"right", axisName(m_scene.right)}, {"up", axisName(m_scene.up)}, {"front", axisName(m_scene.front)}});
        m_out.member("fps", numberJson(m_scene.frames_per_second));
        m_out.member("node_count", m_scene.nodes.size());
        m_out.member("mesh_count", m_scene.meshes.size());
        m_out.member("top_level", topLevelJson());
        printNodes();
        printMeshes(has_geometry);
        m_out.member("poses", posesJson());
        m_out.key("takes");
        m_out.beginArray();
        for (std::size_t i = 0; i < m_scene.stacks.size(); ++i)
            printTake(i, times);
        m_out.endArray();
        json bones = json::array();
        for (const fbx_node& node : m_scene.nodes)
            if (node.type == fbx_node_type::skeleton)
                bones.push_back(textJson(node.name));
        m_out.member("bones", bones);
        m_out.endObject();
    }

private:
    json path(std::size_t node) const { return textJson(m_scene.path(node)); }

    json topLevelJson() const
    {
        json list = json::array();
        for (const std::size_t root : m_scene.roots)
        {
            const fbx_node& node = m_scene.nodes[root];
            json entry = {{"name", textJson(node.name)}, {"type", typeName(node.type)}};
            if (node.mesh != fbx_none)
                entry["control_points"] = m_scene.meshes[node.mesh].pointCount();
            list.push_back(std::move(entry));
        }
        return list;
    }

    void printNodes()
    {
        m_out.key("nodes");
        m_out.beginArray();
        const std::vector<fbx_world> world = m_rest.world(0);
        for (std::size_t i = 0; i < m_scene.nodes.size(); ++i)
        {
            const fbx_node& node = m_scene.nodes[i];
            json entry = {{"path", path(i)},
                          {"type", typeName(node.type)},
                          {"order", orderName(node.placement.rotation_order)},
                          {"inherit", inheritName(node)},
                          {"local", transformJson(localTransform(node.placement))},
                          {"world", matrixJson(world[i].matrix)}};
            if (const fbx_transform geometric = geometricTransform(node.placement); geometric.matrix() != glm::dmat4(1))
                entry["geometric"] = transformJson(geometric);
            if (node.mesh != fbx_none)
                entry["mesh"] = node.mesh;
            m_out.value(entry);
        }
        m_out.endArray();
    }

    json skinJson(const fbx_mesh& mesh, const fbx_skin& skin) const
    {
        std::vector<std::size_t> influences(mesh.pointCount(), 0);
        json clusters = json::array();
        for (const fbx_cluster& cluster : skin.clusters)
        {
            double sum = 0;
            for (const double weight : cluster.weights)
                sum += weight;
            for (const std::int32_t index : cluster.indices)
                ++influences[static_cast<std::size_t>(index)];
            clusters.push_back({{"name", textJson(cluster.name)},
                                {"bone", path(cluster.bone)},
                                {"count", cluster.indices.size()},
                                {"weight_sum", numberJson(sum)}});
        }
        const auto most = std::max_element(influences.begin(), influences.end());
        return {{"name", textJson(skin.name)},
                {"max_influences", most == influences.end() ? 0 : *most},
                {"clusters", std::move(clusters)}};
    }

    void printMeshes(bool has_geometry)
    {
        m_out.key("meshes");
        m_out.beginArray();
        for (const fbx_mesh& mesh : m_scene.meshes)
        {
            json uv_sets = json::array();
            for (const fbx_layer_element& uv : mesh.uv_sets)
                uv_sets.push_back(textJson(uv.name));
            json points = json::array();
            for (std::size_t i = 0; i < std::min<std::size_t>(3, mesh.pointCount()); ++i)
                points.push_back(vectorJson(mesh.point(i)));
            m_out.beginObject();
            m_out.member("name", textJson(mesh.name));
            m_out.member("node", mesh.nodes.empty() ? json(nullptr) : path(mesh.nodes.front()));
            m_out.member("instances", mesh.nodes.size());
            m_out.member("control_points", mesh.pointCount());
            m_out.member("corners", mesh.corners.size());
            m_out.member("faces", mesh.polygon_ends.size());
            m_out.member("triangles", mesh.triangleCount());
            m_out.member("has_normals", !mesh.normals.empty());
            m_out.member("uv_sets", uv_sets);
            m_out.member("first_points", points);
            if (mesh.pointCount() > 0)
                m_out.member("last_point", vectorJson(mesh.point(mesh.pointCount() - 1)));
            m_out.key("skins");
            m_out.beginArray();
            for (const fbx_skin& skin : mesh.skins)
                m_out.value(skinJson(mesh, skin));
            m_out.endArray();
            if (has_geometry)
            {
                m_out.key("geometry");
                printGeometry(m_out, m_scene, mesh);
            }
            m_out.endObject();
        }
        m_out.endArray();
    }

    json posesJson() const
    {
        json list = json::array();
        for (const fbx_pose& pose : m_scene.poses)
            list.push_back({{"name", textJson(pose.name)}, {"bind", pose.is_bind}, {"count", pose.entries.size()}});
        return list;
    }

    void printTake(std::size_t index, const std::vector<double>& times)
    {
        const fbx_stack& stack = m_scene.stacks[index];
        json layers = json::array();
        std::set<std::size_t> curves;
        for (const fbx_animation_layer& layer : stack.layers)
        {
            layers.push_back(textJson(layer.name));
            for (const fbx_curve_node& curve_node : layer.curve_nodes)
                for (const std::size_t curve : curve_node.curves)
                    if (curve != fbx_none)
                        curves.insert(curve);
        }
        m_out.beginObject();
        m_out.member("name", textJson(stack.name));
        m_out.member("time_begin", numberJson(m_scene.seconds(stack.begin)));
        m_out.member("time_end", numberJson(m_scene.seconds(stack.end)));
        m_out.member("layers", layers);
        m_out.member("curve_count", curves.size());
        fbx_ticks first = 0;
        fbx_ticks last = 0;
        const bool has_keys = m_scene.keySpan(stack, first, last);
        m_out.member("key_begin", has_keys ? numberJson(m_scene.seconds(first)) : json(nullptr));
        m_out.member("key_end", has_keys ? numberJson(m_scene.seconds(last)) : json(nullptr));
        printSamples(index, times);
        m_out.endObject();
    }

    void printSamples(std::size_t index, const std::vector<double>& times)
    {
        const fbx_evaluator evaluator(m_scene, index);
        std::vector<std::size_t> animated;
        for (std::size_t node = 0; node < m_scene.nodes.size(); ++node)
            if (evaluator.isAnimated(node))
                animated.push_back(node);
        m_out.member("animated_nodes", animated.size());
        if (times.empty())
            return;
        std::vector<std::vector<fbx_world>> worlds;
        worlds.reserve(times.size());
        for (const double time : times)
            worlds.push_back(evaluator.world(m_scene.ticks(time)));
        m_out.key("samples");
        m_out.beginArray();
        for (const std::size_t node : animated)
        {
            m_out.beginObject();
            m_out.member("node", path(node));
            m_out.key("keys");
            m_out.beginArray();
            for (std::size_t i = 0; i < times.size(); ++i)
            {
                const fbx_placement placement = evaluator.placement(node, m_scene.ticks(times[i]));
                json key = {{"time", times[i]}};
                key.update(transformJson(localTransform(placement)));
                key["lcl_rot"] = vectorJson(placement.rotation);
                key["world"] = matrixJson(worlds[i][node].matrix);
                m_out.value(key);
            }
            m_out.endArray();
            m_out.endObject();
        }
        m_out.endArray();
    }

    json_stream& m_out;
    const fbx_scene& m_scene;
    fbx_evaluator m_rest;
};

} // namespace

void printScene(json_stream& out, const fbx_scene& scene, const std::vector<double>& times, bool has_geometry)
{
    scene_printer(out, scene).print(times, has_geometry);
}

} // namespace korvane
