#include "Korvane/fbx/scene/fbx_model_import.h"

#include "Korvane/fbx/scene/fbx_scene.h"

#include <utility>

namespace korvane
{

namespace
{

std::vector<std::array<float, 4>> controlPoints(const fbx_mesh& mesh)
{
    std::vector<std::array<float, 4>> points(mesh.pointCount());
    for (std::size_t i = 0; i < points.size(); ++i)
    {
        const glm::dvec3 point = mesh.point(i);
        points[i] = {static_cast<float>(point.x), static_cast<float>(point.y), static_cast<float>(point.z), 1.0f};
    }
    return points;
}

} // namespace

bool importFbxModel(std::span<const std::byte> bytes, fbx_model& model, failure& why)
{
    fbx_document document;
    fbx_scene scene;
    if (!readFbx(bytes, document, why) || !readScene(std::move(document), scene, why))
        return false;
    fbx_model result;
    for (const std::size_t root : scene.roots)
    {
        const fbx_node& node = scene.nodes[root];
        if (node.type == fbx_node_type::mesh && node.mesh != fbx_none)
            result.meshes.push_back({node.name, controlPoints(scene.meshes[node.mesh])});
        else if (node.type == fbx_node_type::skeleton)
            result.skeletons.push_back(node.name);
    }
    model = std::move(result);
    return true;
}

std::string fbxImportError(const std::string& path)
{
    return "Error loading FBX fil file: " + path;
}

} // namespace korvane
