#include "Korvane/cli/fbx_scene_json.h"

#include "EASY_GUI/services/text.h"
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
    explicit scene_printer(const fbx_scene& scene) : m_scene(scene), m_rest(scene) {}

    json print(const std::vector<double>& times) const
    {
        json bones = json::array();
        for (const fbx_node& node : m_scene.nodes)
            if (node.type == fbx_node_type::skeleton)
                bones.push_back(textJson(node.name));
        json takes = json::array();
        for (std::size_t i = 0; i < m_scene.stacks.size(); ++i)
            takes.push_back(takeJson(i, times));
        return {
            {"unit_meters", numberJson(m_scene.unit_metres)},
            {"axes",
             {{"right", axisName(m_scene.right)}, {"up", axisName(m_scene.up)}, {"front", axisName(m_scene.front)}}},
            {"fps", numberJson(m_scene.frames_per_second)},
            {"node_count", m_scene.nodes.size()},
            {"mesh_count", m_scene.meshes.size()},
            {"top_level", topLevelJson()},
            {"nodes", nodesJson()},
            {"meshes", meshesJson()},
            {"poses", posesJson()},
            {"takes", std::move(takes)},
            {"bones", std::move(bones)}};
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

    json nodesJson() const
    {
        json list = json::array();
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
            list.push_back(std::move(entry));
        }
        return list;
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

    json meshesJson() const
    {
        json list = json::array();
        for (const fbx_mesh& mesh : m_scene.meshes)
        {
            json uv_sets = json::array();
            for (const fbx_layer_element& uv : mesh.uv_sets)
                uv_sets.push_back(textJson(uv.name));
            json points = json::array();
            for (std::size_t i = 0; i < std::min<std::size_t>(3, mesh.pointCount()); ++i)
                points.push_back(vectorJson(mesh.point(i)));
            json skins = json::array();
            for (const fbx_skin& skin : mesh.skins)
                skins.push_back(skinJson(mesh, skin));
            json entry = {{"name", textJson(mesh.name)},
                          {"node", mesh.nodes.empty() ? json(nullptr) : path(mesh.nodes.front())},
                          {"instances", mesh.nodes.size()},
                          {"control_points", mesh.pointCount()},
                          {"corners", mesh.corners.size()},
                          {"faces", mesh.polygon_ends.size()},
                          {"triangles", mesh.triangleCount()},
                          {"has_normals", !mesh.normals.empty()},
                          {"uv_sets", std::move(uv_sets)},
                          {"first_points", std::move(points)}};
            if (mesh.pointCount() > 0)
                entry["last_point"] = vectorJson(mesh.point(mesh.pointCount() - 1));
            entry["skins"] = std::move(skins);
            list.push_back(std::move(entry));
        }
        return list;
    }

    json posesJson() const
    {
        json list = json::array();
        for (const fbx_pose& pose : m_scene.poses)
            list.push_back({{"name", textJson(pose.name)}, {"bind", pose.is_bind}, {"count", pose.entries.size()}});
        return list;
    }

    json takeJson(std::size_t index, const std::vector<double>& times) const
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
        json take = {{"name", textJson(stack.name)},
                     {"time_begin", numberJson(m_scene.seconds(stack.begin))},
                     {"time_end", numberJson(m_scene.seconds(stack.end))},
                     {"layers", std::move(layers)},
                     {"curve_count", curves.size()}};
        fbx_ticks first = 0;
        fbx_ticks last = 0;
        const bool has_keys = m_scene.keySpan(stack, first, last);
        take["key_begin"] = has_keys ? numberJson(m_scene.seconds(first)) : json(nullptr);
        take["key_end"] = has_keys ? numberJson(m_scene.seconds(last)) : json(nullptr);
        addSamples(index, times, take);
        return take;
    }

    void addSamples(std::size_t index, const std::vector<double>& times, json& take) const
    {
        const fbx_evaluator evaluator(m_scene, index);
        std::vector<std::size_t> animated;
        for (std::size_t node = 0; node < m_scene.nodes.size(); ++node)
            if (evaluator.isAnimated(node))
                animated.push_back(node);
        take["animated_nodes"] = animated.size();
        if (times.empty())
            return;
        std::vector<json> keys(animated.size(), json::array());
        for (const double time : times)
        {
            const fbx_ticks ticks = m_scene.ticks(time);
            const std::vector<fbx_world> world = evaluator.world(ticks);
            for (std::size_t i = 0; i < animated.size(); ++i)
            {
                const fbx_placement placement = evaluator.placement(animated[i], ticks);
                json key = {{"time", time}};
                key.update(transformJson(localTransform(placement)));
                key["lcl_rot"] = vectorJson(placement.rotation);
                key["world"] = matrixJson(world[animated[i]].matrix);
                keys[i].push_back(std::move(key));
            }
        }
        json samples = json::array();
        for (std::size_t i = 0; i < animated.size(); ++i)
            samples.push_back({{"node", path(animated[i])}, {"keys", std::move(keys[i])}});
        take["samples"] = std::move(samples);
    }

    const fbx_scene& m_scene;
    fbx_evaluator m_rest;
};

} // namespace

json sceneJson(const fbx_scene& scene, const std::vector<double>& times)
{
    return scene_printer(scene).print(times);
}

} // namespace korvane
