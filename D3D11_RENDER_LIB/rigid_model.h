#pragma once

// A whole model as the renderer holds it: one sub_mesh for each group of one level of detail, their textures, and
// whether it hangs on one bone.

#include "D3D11_RENDER_LIB/d3d_drawable.h"
#include "D3D11_RENDER_LIB/sub_mesh.h"
#include "Korvane/models/rmv2_file.h"

#include <memory>
#include <string>
#include <vector>

namespace korvane
{

// Where a model comes from and which part of it is built.
struct rigid_model_source
{
    const RMV2_FILE_DATA* data = nullptr; // read during create() only
    std::string path;                     // UTF-8, for messages: on the disk or internal
    std::size_t lod = 0;                  // beyond the last one: the last one
    const texture_source* textures = nullptr;
};

class rigid_model : public d3d_drawable
{
public:
    explicit rigid_model(lib3d::log_port log = {}) : m_log(std::move(log)) {}

    // Looks a model up in the archives, reads and decodes it. not_found: there are no archives, or none of them holds
    // the path as a file.
    [[nodiscard]] static bool getFromInternalPath(const std::string& path, rmv2_file& model, failure& why);

    // Releases what was there and builds the model. Bone below zero: bones and weights come from the file; else the
    // whole model hangs on that bone. False without data; a level without groups makes an empty model. Textures are
    // loaded group by group until a diffuse or normal map cannot be found; the groups themselves are all built.
    [[nodiscard]] bool create(ID3D11Device& device, const rigid_model_source& source, int bone);

    void draw(lib3d& library) override;
    void release() override;

    void setWireframe(bool is_wireframe) { m_is_wireframe = is_wireframe; }
    const model_bounds& bounds() const { return m_bounds; }
    const std::vector<sub_mesh>& groups() const { return m_groups; }
    std::size_t triangleCount() const { return m_triangle_count; }

private:
    void loadTextures(ID3D11Device& device, const std::vector<gpu_mesh>& meshes, const texture_source& source);

    lib3d::log_port m_log;
    std::string m_path;
    std::vector<sub_mesh> m_groups;
    textures_rmv2 m_textures;
    model_bounds m_bounds;
    std::size_t m_triangle_count = 0;
    bool m_has_skeleton = false;
    bool m_is_attached_to_bone = false;
    bool m_is_wireframe = false;
};

} // namespace korvane
