// Reads any bytes as an FBX scene, evaluates it, and converts its first take for a template of its own bones' names.
// What loads must hold together: every index within its list, parents before their children, every count as promised.
// What is converted must be finite, and an .anim file that can be read.

#include "Korvane/animation/anim_reader.h"
#include "Korvane/fbx/convert/fbx_to_anim.h"
#include "Korvane/fbx/scene/fbx_evaluator.h"
#include "Korvane/fbx/scene/fbx_scene.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <span>
#include <string>
#include <utility>
#include <vector>

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

// A chain, a ring, one that is none, one behind its child.
constexpr std::int32_t template_parents[] = {-1, 0, 3, 2, 99, 6, 0};

// Bones of the scene in turn with one that it does not have; every third one without a translation track.
anim_data templateOf(const fbx_scene& scene)
{
    anim_data made;
    made.version = 5;
    std::vector<std::string> names;
    for (const fbx_node& node : scene.nodes)
        if (node.type == fbx_node_type::skeleton && names.size() < 4)
            names.push_back(node.name.substr(0, anim_file::max_name));
    for (std::uint32_t i = 0; i < std::size(template_parents); ++i)
    {
        const bool is_scene_s = i % 2 == 0 && i / 2 < names.size();
        made.bones.push_back({is_scene_s ? names[i / 2] : "no such bone", i, template_parents[i], {}, {}});
        made.translation_map.push_back(i % 3 == 0 ? 10000 : i);
        made.rotation_map.push_back(i);
        if (i % 3 != 0)
            made.animated_translations.push_back(i);
        made.animated_rotations.push_back(i);
    }
    made.static_translations = {{1, 2, 3}};
    return made;
}

void checkConversion(const fbx_scene& scene, std::span<const std::byte> bytes)
{
    const anim_data template_data = templateOf(scene);
    anim_conversion request;
    request.fbx = bytes;
    request.template_data = &template_data;
    request.frame_count = 3;
    work_port work;
    work.log = [](const std::string& line) { require(!line.empty()); };
    anim_conversion_result result;
    failure why;
    if (!convertToAnim(request, work, result, why))
        return require(static_cast<bool>(why));
    for (const anim_output::frame& frame : result.anim.frames)
        for (const auto& [bone, value] : frame.rotations)
            require(std::abs(value.x * value.x + value.y * value.y + value.z * value.z + value.w * value.w - 1) <
                    1e-5f);
    std::vector<std::byte> file;
    anim_data read;
    require(makeAnim(result.anim, 5, file, why) && readAnim({file}, anim_depth::animation, read, why));
    require(read.frame_count == 3 && read.bones.size() == std::size(template_parents));
    for (const glm::vec3& value : read.translations)
        require(std::isfinite(value.x) && std::isfinite(value.y) && std::isfinite(value.z));
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
    {
        require(curve.values.size() == curve.times.size() && curve.attribute_ends.size() == curve.attributes.size());
        require(!curve.hasKeys() || curve.attribute_ends.back() == curve.times.size());
        for (std::size_t i = 0; i < curve.times.size(); ++i)
            static_cast<void>(curve.evaluate(curve.times[i] / 2 + curve.times[i / 2] / 2));
    }
    for (std::size_t i = 0; i < scene.stacks.size(); ++i)
        checkStack(scene, i);
    checkConversion(scene, std::as_bytes(std::span(data, size)));
    return 0;
}
