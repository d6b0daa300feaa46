#pragma once

// Writes rigid_model_v2 files of the versions 5 to 8. Meshes are in the space of the decoded model; the writer applies
// the mirroring that each vertex format undoes when it is read, and stores bounding boxes in the file's own axes.

#include "tools/demo_data/mesh.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace korvane::demo
{

struct model_attachment // in the decoded model's space, in the rest pose
{
    std::string name;
    vec3 position;
    std::uint32_t bone = 0;
    std::array<vec3, 3> axes{vec3{1, 0, 0}, vec3{0, 1, 0}, vec3{0, 0, 1}}; // of what is fixed there
};

struct model_texture
{
    std::uint32_t type = 0;
    std::string path;
};

struct model_group
{
    std::string name;                        // at most 31 characters
    std::string shader_name = "default_lit"; // 11 characters
    std::string texture_directory;
    std::uint32_t material_id = 68;
    std::uint16_t vertex_format = 0;
    std::uint32_t material_flags = 0;
    std::uint32_t alpha_mode = 0;
    vec3 pivot; // in the file's axes
    std::vector<model_attachment> attachments;
    std::vector<model_texture> textures;
    mesh shape; // at most 65535 vertices
};

struct model_lod
{
    double distance = 100;
    std::vector<model_group> groups;
};

struct model
{
    std::uint32_t version = 7;
    std::string skeleton_id;
    std::vector<model_lod> lods;
};

[[nodiscard]] std::vector<std::byte> modelBytes(const model& source);

} // namespace korvane::demo
