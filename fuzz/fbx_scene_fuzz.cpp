// Reads any bytes as an FBX scene and evaluates it. What loads must hold together: every index within its list, parents
// before their children, every count as promised.

#include "Korvane/fbx/fbx_evaluator.h"
#include "Korvane/fbx/fbx_scene.h"

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <span>
#include <utility>

namespace
{

using namespace korvane;

void require(bool condition)
{
    if (!condition)
        std::abort();
}

bool isIndex(std::size_t index, std::size_t count)
{
    return index == fbx_none || index < count;
}

void checkNodes(const fbx_scene& scene)
{
    std::size_t children = scene.roots.size();
    for (std::size_t i = 0; i < scene.nodes.size(); ++i)
    {
        const fbx_node& node = scene.nodes[i];
        require(node.parent == fbx_none || node.parent < i);
        require(isIndex(node.mesh, scene.meshes.size()));
        for (const std::size_t child : node.children)
            require(scene.nodes.at(child).parent == i);
        children += node.children.size();
        require(!scene.path(i).empty() || node.name.empty());
    }
    require(children == scene.nodes.size());
}

void checkElements(const fbx_mesh& mesh, const std::vector<fbx_layer_element>& elements)
{
    for (const fbx_layer_element& element : elements)
    {
        std::size_t polygon = 0;
        for (std::size_t corner = 0; corner < mesh.corners.size(); ++corner)
        {
            while (mesh.polygon_ends[polygon] <= corner)
                ++polygon;
            const std::size_t entry = mesh.entryOf(element, corner, polygon);
            require(isIndex(entry, element.values.size() / element.width));
        }
    }
}

void checkMeshes(const fbx_scene& scene)
{
    for (const fbx_mesh& mesh : scene.meshes)
    {
        require(mesh.polygon_ends.empty() ? mesh.corners.empty() : mesh.polygon_ends.back() == mesh.corners.size());
        for (const std::uint32_t corner : mesh.corners)
            require(corner < mesh.pointCount());
        checkElements(mesh, mesh.normals);
        checkElements(mesh, mesh.uv_sets);
        require(mesh.triangleCount() <= mesh.corners.size());
        for (const fbx_skin& skin : mesh.skins)
            for (const fbx_cluster& cluster : skin.clusters)
            {
                require(cluster.bone < scene.nodes.size() && cluster.indices.size() == cluster.weights.size());
                for (const std::int32_t index : cluster.indices)
                    require(index >= 0 && static_cast<std::size_t>(index) < mesh.pointCount());
            }
    }
    for (const fbx_pose& pose : scene.poses)
        for (const fbx_pose::entry& entry : pose.entries)
            require(entry.node < scene.nodes.size());
}

void checkStack(const fbx_scene& scene, std::size_t stack)
{
    for (const fbx_animation_layer& layer : scene.stacks[stack].layers)
    {
        require(isIndex(layer.weight_curve, scene.curves.size()));
        for (const fbx_curve_node& curve_node : layer.curve_nodes)
        {
            require(isIndex(curve_node.node, scene.nodes.size()));
            for (const std::size_t curve : curve_node.curves)
                require(isIndex(curve, scene.curves.size()));
        }
    }
    fbx_ticks first = 0;
    fbx_ticks last = 0;
    static_cast<void>(scene.keySpan(scene.stacks[stack], first, last));
    const fbx_evaluator evaluator(scene, stack);
    for (const fbx_ticks time : {first, first / 2 + last / 2, last, std::numeric_limits<fbx_ticks>::min(),
                                 std::numeric_limits<fbx_ticks>::max()})
        require(evaluator.world(time).size() == scene.nodes.size());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fbx_document document;
    fbx_scene scene;
    failure why;
    if (!readFbx(std::as_bytes(std::span(data, size)), document, why) || !readScene(std::move(document), scene, why))
    {
        require(static_cast<bool>(why));
        return 0;
    }
    checkNodes(scene);
    checkMeshes(scene);
    for (const fbx_curve& curve : scene.curves)
        for (std::size_t i = 0; i < curve.keys.size(); ++i)
        {
            require(curve.keys[i].attribute < curve.attributes.size());
            static_cast<void>(curve.evaluate(curve.keys[i].time / 2 + curve.keys[i / 2].time / 2));
        }
    for (std::size_t i = 0; i < scene.stacks.size(); ++i)
        checkStack(scene, i);
    return 0;
}
