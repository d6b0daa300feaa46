#include "D3D11_RENDER_LIB/rigid_model.h"

#include "Korvane/archives/pack_entry.h"
#include "Korvane/archives/pack_file.h"

#include <algorithm>
#include <utility>

namespace korvane
{

bool rigid_model::getFromInternalPath(const std::string& path, rmv2_file& model, failure& why)
{
    if (!pack_file::sm_poPathTree)
        return fail(why, failure_kind::not_found,
                    "rigid_model::getFromInternalPath(): pack_file::sm_poPathTree == nullptr", path);
    const path_tree::node_pointer node = getNodeFromInternalPath(path);
    if (!node || !node->file())
        return fail(why, failure_kind::not_found,
                    node ? "this is a folder of the archives, not a model" : "no archive holds this model", path);
    memory_file bytes;
    return readEntry(*node->file(), bytes, why) && model.openFromMemory(std::move(bytes), path, why);
}

bool rigid_model::create(ID3D11Device& device, const rigid_model_source& source, int bone)
{
    release();
    if (!source.data)
        return false;
    m_path = source.path;
    m_has_skeleton = !source.data->skeleton_id.empty();
    m_is_attached_to_bone = bone >= 0;
    if (source.data->lods.empty())
        return true;

    const lod_data& lod = source.data->lods[std::min(source.lod, source.data->lods.size() - 1)];
    std::vector<gpu_mesh> meshes;
    meshes.reserve(lod.groups.size());
    for (std::size_t i = 0; i < lod.groups.size(); ++i)
    {
        meshes.push_back(buildGpuMesh(lod.groups[i], bone));
        const gpu_mesh& mesh = meshes.back();
        m_groups.emplace_back().create(device, mesh);
        addToBounds(mesh, m_bounds);
        m_triangle_count += mesh.indices.size() / 3;
        if (mesh.dropped_triangles > 0 && m_log)
            m_log(m_path + ": group " + std::to_string(i) + ": " + std::to_string(mesh.dropped_triangles) +
                  " triangles name vertices that do not exist and are not drawn");
    }
    if (source.textures)
        loadTextures(device, meshes, *source.textures);
    return true;
}

void rigid_model::loadTextures(ID3D11Device& device, const std::vector<gpu_mesh>& meshes, const texture_source& source)
{
    // The end at the first group without its two main textures is deliberate: such a model is not unpacked with its
    // textures, and searching on for every group would only take time.
    for (std::size_t i = 0; i < meshes.size(); ++i)
        if (!m_groups[i].loadTextures(device, meshes[i], source, m_textures, m_log))
        {
            if (m_log)
                m_log(m_path + ": group " + std::to_string(i) +
                      ": diffuse or normal map was not found; no further textures are loaded");
            return;
        }
}

void rigid_model::draw(lib3d& library)
{
    for (const sub_mesh& group : m_groups)
    {
        // Groups without weights cannot be skinned, even in a model with a skeleton.
        library.vs_constants.static_model = m_has_skeleton && group.isSkinned() ? 0 : 1;
        library.vs_constants.is_weapon = m_is_attached_to_bone ? 1 : 0;
        group.draw(library, m_is_wireframe);
    }
}

void rigid_model::release()
{
    d3d_drawable::release();
    m_groups.clear();
    m_textures.clear();
    m_bounds = {};
    m_triangle_count = 0;
}

} // namespace korvane
