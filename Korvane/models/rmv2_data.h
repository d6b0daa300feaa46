#pragma once

// The decoded form of a rigid_model_v2 file: what the reader (rmv2_file.h) makes and everybody else looks at. Layouts
// and field names: docs/formats/rigid_model_v2.md. Texts are the file's own bytes, 8-bit, or UTF-8 where a version 5
// file stores 16-bit characters; korvane::displayText makes either showable.

#include "EASY_GUI/services/large_memory.h"
#include "Korvane/models/fixed_field.h"

#include <glm/vec2.hpp>
#include <glm/vec3.hpp>
#include <glm/vec4.hpp>

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace korvane
{

// One decoded vertex, 88 bytes. Positions are in metres in the file's axes with the format's deliberate negations
// applied (a left-handed space with y up); a value-initialised record is all zero. Components may be NaN or infinite,
// bone indices may name bones that do not exist: the file says what it says.
struct vertex_record
{
    glm::vec3 position;
    glm::vec2 uv; // v as stored in the table of formats: flipped to 1 - v in all formats but 1
    std::array<std::uint32_t, 4> bones;
    std::array<float, 4> weights; // 0..1; their sum is what the file stores
    glm::vec3 normal;
    glm::vec3 bitangent;
    glm::vec3 tangent;
};
static_assert(sizeof(vertex_record) == 88);

// The vertices of one group, in file order. An array that is not cleared before it is filled: decoding writes every
// member of every record.
class vertex_array
{
public:
    vertex_array() = default;
    explicit vertex_array(std::size_t count) : m_memory(allocateLarge(count * sizeof(vertex_record))), m_count(count) {}

    std::span<const vertex_record> records() const { return {first(), m_count}; }
    std::span<vertex_record> records() { return {first(), m_count}; }
    std::size_t size() const { return m_count; }
    const vertex_record& operator[](std::size_t index) const { return first()[index]; }

private:
    vertex_record* first() const { return reinterpret_cast<vertex_record*>(m_memory.get()); }

    large_memory m_memory;
    std::size_t m_count = 0;
};

// A group's vertex store.
struct vertex_store
{
    std::int32_t vertex_size = -1; // bytes per vertex in the file; -1 when there are no vertices to compute it from
    vertex_array vertices;
    std::vector<std::uint16_t> indices;   // three per triangle, second and third swapped (winding flip)
    std::size_t indices_out_of_range = 0; // indices at or above the number of decoded vertices: check before use
};

struct attachment_point
{
    std::string name;
    std::array<float, 12> matrix{}; // 3 rows of 4
    std::uint32_t kept = 0;
};

struct texture_entry
{
    std::uint32_t type = 0; // named by catalogue.h
    std::string path;       // internal path of a DDS file, up to the first zero, as the file image has it
    fixed_field path_field; // the edited value; width 256 (512 in version 5), zero-padded

    std::string currentPath() const { return path_field.isEdited() ? path_field.text() : path; } // a save would write
};

struct lod_header
{
    std::uint32_t group_count = 0;
    std::uint32_t vertices_size = 0; // carried
    std::uint32_t indices_size = 0;  // carried
    std::uint32_t start_offset = 0;  // of the LOD's first group, from the start of the file
    float lod_distance = 100.0f;
    std::uint32_t lod_index = 0;   // versions 7 and 8
    std::uint32_t kept = 0;        // versions 7 and 8
    std::uint64_t file_offset = 0; // of this record; after a version patch, of its copy in the patched file
};

struct group_header
{
    std::uint32_t material_id = 68;
    std::uint32_t group_size = 0;
    std::uint32_t vertex_offset = 0; // from the group's first byte
    std::uint32_t vertex_count = 0;
    std::uint32_t index_offset = 0;
    std::uint32_t index_count = 0;
    glm::vec3 bbox_min{};
    glm::vec3 bbox_max{};
    std::string shader_name;
    std::array<std::uint32_t, 5> shader_params{};
    std::uint16_t vertex_format = 0;
    std::string group_name;
    std::string texture_directory;
    glm::vec3 pivot{};
    std::array<std::array<float, 12>, 3> matrices{};
    std::uint32_t attachment_count = 0;
    std::uint32_t texture_count = 0;
};

struct group_data
{
    group_header header;
    fixed_field shader_name_field;       // width 12, raw
    fixed_field group_name_field;        // width 32, raw
    fixed_field texture_directory_field; // width 256, zero-padded
    std::vector<attachment_point> attachments;
    std::vector<texture_entry> textures;
    std::uint32_t material_flags = 0;
    std::uint32_t alpha_mode = 0;     // as the file image has it; the edited value is alpha_mode_field's
    fixed_field material_flags_field; // width 4, raw
    fixed_field alpha_mode_field;     // width 4, raw
    vertex_store store;
    std::uint64_t file_offset = 0;        // of the group header
    std::uint64_t vertex_data_offset = 0; // of the first vertex, from the start of the file
};

struct lod_data
{
    lod_header header;
    std::vector<group_data> groups;
};

struct RMV2_FILE_DATA
{
    std::string magic;
    std::uint32_t version = 0;
    std::uint32_t lod_count = 0; // the low 16 bits that count
    std::string skeleton_id;
    std::string second_text; // version 5 only
    std::vector<lod_data> lods;
};

} // namespace korvane
