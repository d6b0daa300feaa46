#include "Korvane/models/rmv2_reader.h"

#include "EASY_GUI/services/parallel.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/models/rmv2_file.h"
#include "Korvane/models/vertex_decoder.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::uint64_t shader_name_width = 12;
constexpr std::uint64_t group_name_width = 32;
constexpr std::uint64_t texture_directory_width = 256;
constexpr std::uint64_t group_header_tail = 880; // after the shader name
// The most that parts of the headers take: with wide texts.
constexpr std::uint64_t file_header_size = 12 + 2 * 128;
constexpr std::uint64_t lod_header_size = 28;
constexpr std::uint64_t group_header_size = 48 + rmv2_reader::max_shader_name + 2 + group_header_tail;
constexpr std::uint64_t attachment_size = 64 + 48 + 4;
constexpr std::uint64_t texture_size = 4 + 512;
constexpr std::uint64_t material_size = 8;

// True for text stored as 16-bit characters: a zero byte after every character up to the terminating zero unit.
bool looksWide(std::span<const std::byte> field)
{
    std::size_t units = 0;
    for (std::size_t i = 0; i + 1 < field.size(); i += 2)
    {
        if (field[i + 1] != std::byte{0})
            return false;
        if (field[i] == std::byte{0})
            break;
        ++units;
    }
    return units > 0;
}

std::string wideText(std::span<const std::byte> bytes)
{
    std::u16string units;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
    {
        const auto unit = littleEndian<std::uint16_t>(bytes.data() + i);
        if (unit == 0)
            break;
        units += static_cast<char16_t>(unit);
    }
    return utf8FromUtf16(units);
}

glm::vec3 readVec3(byte_reader& in, std::string_view field)
{
    const float x = in.f32(field);
    const float y = in.f32(field);
    return {x, y, in.f32(field)};
}

template <std::size_t count>
void readFloats(byte_reader& in, std::array<float, count>& values, std::string_view field)
{
    for (float& value : values)
        value = in.f32(field);
}

} // namespace

bool rmv2_reader::readHeader(bool& wide_text, failure& why)
{
    need(file_header_size, "file header");
    const auto magic = m_in.bytes(4, "magic");
    m_data.magic.assign(reinterpret_cast<const char*>(magic.data()), magic.size());
    m_data.version = m_in.u32("version");
    const std::uint32_t lod_count = m_in.u32("lod_count");
    if (m_data.version == 5)
        wide_text = true;
    m_wide_text = wide_text;
    m_data.skeleton_id = textOf(m_in.bytes(128, "skeleton_id"));
    if (m_wide_text)
        m_data.second_text = textOf(m_in.bytes(128, "second header text"));

    if (!magic.empty() && m_data.magic != "RMV2")
    {
        why = {failure_kind::unsupported,
               "this is not a rigid_model_v2 file: it does not begin with \"RMV2\"",
               {},
               0,
               "magic"};
        return false;
    }
    if (!m_in.finish(why))
        return false;
    if (m_data.version < 5 || m_data.version > 8)
        m_in.failAt(4, failure_kind::unsupported,
                    "version " + std::to_string(m_data.version) + " is not supported (5 to 8 are)", "version");
    m_data.lod_count = lod_count & 0xffffu;
    if (m_data.lod_count > rmv2_file::max_lods)
        m_in.failAt(8, failure_kind::malformed,
                    std::to_string(m_data.lod_count) + " LODs are more than the " +
                        std::to_string(rmv2_file::max_lods) + " that a model may have",
                    "lod_count");
    return m_in.finish(why);
}

bool rmv2_reader::readLayout(failure& why)
{
    const std::uint64_t table = m_in.position();
    if (!readAll(false, why))
        return false;
    m_data.lods.clear();
    m_charged = 0;
    m_in.seek(table, "LOD headers");
    return readAll(true, why);
}

bool rmv2_reader::readAll(bool is_kept, failure& why)
{
    m_is_kept = is_kept;
    need(std::uint64_t{m_data.lod_count} * lod_header_size, "LOD headers");
    for (std::uint32_t index = 0; index < m_data.lod_count && m_in.ok(); ++index)
        readLodHeader(index);
    if (m_in.ok() && !m_data.lods.empty())
        m_group_start = m_data.lods.front().header.start_offset;
    for (std::uint32_t index = 0; index < m_data.lod_count && m_in.ok(); ++index)
        readLod(index);
    return m_in.finish(why);
}

void rmv2_reader::readLodHeader(std::uint32_t index)
{
    lod_data lod;
    m_in.enter("LOD header " + std::to_string(index));
    lod.header.file_offset = m_in.position();
    lod.header.group_count = m_in.u32("group_count");
    if (lod.header.group_count > rmv2_file::max_groups)
        m_in.fail(failure_kind::malformed,
                  std::to_string(lod.header.group_count) + " groups are more than the " +
                      std::to_string(rmv2_file::max_groups) + " that a LOD may have",
                  "group_count");
    lod.header.vertices_size = m_in.u32("vertices_size");
    lod.header.indices_size = m_in.u32("indices_size");
    lod.header.start_offset = m_in.u32("start_offset");
    if (lod.header.start_offset > m_in.size())
        m_in.fail(failure_kind::malformed,
                  "the offset " + std::to_string(lod.header.start_offset) + " lies beyond the end of the file at " +
                      std::to_string(m_in.size()),
                  "start_offset");
    lod.header.lod_distance = m_in.f32("lod_distance");
    if (m_data.version >= 7)
    {
        lod.header.lod_index = m_in.u32("lod_index");
        lod.header.kept = m_in.u32("last word");
    }
    m_data.lods.push_back(std::move(lod));
}

void rmv2_reader::readLod(std::uint32_t index)
{
    lod_data& lod = m_data.lods[index];
    m_in.seek(lod.header.start_offset, "start_offset");
    for (std::uint32_t i = 0; i < lod.header.group_count && m_in.ok(); ++i)
    {
        const std::string place = "LOD " + std::to_string(index) + ", group " + std::to_string(i);
        group_data group;
        readGroup(group, place);
        if (m_is_kept)
            lod.groups.push_back(std::move(group));
    }
}

void rmv2_reader::readGroup(group_data& group, const std::string& place)
{
    m_in.enter(place);
    group.file_offset = m_in.position();
    need(group_header_size, "group header");
    readGroupHeader(group);
    need(std::uint64_t{group.header.attachment_count} * attachment_size +
             std::uint64_t{group.header.texture_count} * texture_size + material_size,
         "group header");
    readAttachments(group, place);
    readTextures(group, place);
    m_in.enter(place);
    readMaterialWords(group);
    charge(m_in.position() - group.file_offset, "group header");
    if (m_in.ok())
        locateVertexData(group);
    if (m_in.ok())
        seekNextGroup(group);
}

void rmv2_reader::readGroupHeader(group_data& group)
{
    group_header& header = group.header;
    header.material_id = m_in.u32("material_id");
    header.group_size = m_in.u32("group_size");
    header.vertex_offset = m_in.u32("vertex_offset");
    header.vertex_count = m_in.u32("vertex_count");
    header.index_offset = m_in.u32("index_offset");
    header.index_count = m_in.u32("index_count");
    header.bbox_min = readVec3(m_in, "bbox_min");
    header.bbox_max = readVec3(m_in, "bbox_max");

    // Read up to its first zero, not by its width: everything after it floats with its length.
    const std::uint64_t name_position = m_in.position();
    const auto name = m_in.zeroTerminated(m_wide_text ? 2 : 1, "shader_name");
    if (name.size() > max_shader_name)
        m_in.failAt(name_position, failure_kind::malformed,
                    "a shader name of " + std::to_string(name.size()) + " bytes is longer than the " +
                        std::to_string(max_shader_name) + " that are allowed",
                    "shader_name");
    if (!m_in.ok())
        return;
    header.shader_name = m_wide_text ? wideText(name) : std::string(untilZero(name));
    if (!m_in.fits(1, group_header_tail))
        m_in.skip(group_header_tail, "group header");
    if (!m_in.ok())
        return;
    const std::uint64_t width = shader_name_width * (m_wide_text ? 2 : 1);
    group.shader_name_field = fieldAt(name_position, width, field_mode::raw, m_wide_text);

    for (std::uint32_t& value : header.shader_params)
        value = m_in.u32("shader_params");
    header.vertex_format = m_in.u16("vertex_format");
    group.group_name_field = fieldAt(m_in.position(), group_name_width, field_mode::raw, false);
    header.group_name = textOf(m_in.bytes(group_name_width, "group_name"));
    group.texture_directory_field = fieldAt(m_in.position(), texture_directory_width, field_mode::zero_padded, false);
    header.texture_directory = textOf(m_in.bytes(texture_directory_width, "texture_directory"));
    m_in.skip(2 + 252 + 4, "reserved block");
    header.pivot = readVec3(m_in, "pivot");
    for (auto& matrix : header.matrices)
        readFloats(m_in, matrix, "matrices");
    m_in.skip(4 + 4, "reserved words");
    header.attachment_count = m_in.u32("attachment_count");
    if (header.attachment_count > rmv2_file::max_attachments)
        m_in.fail(failure_kind::malformed,
                  std::to_string(header.attachment_count) + " attachment points are more than the " +
                      std::to_string(rmv2_file::max_attachments) + " that a group may have",
                  "attachment_count");
    header.texture_count = m_in.u32("texture_count");
    if (header.texture_count > rmv2_file::max_textures)
        m_in.fail(failure_kind::malformed,
                  std::to_string(header.texture_count) + " textures are more than the " +
                      std::to_string(rmv2_file::max_textures) + " that a group may have",
                  "texture_count");
    m_in.skip(8 * 4 + 108, "reserved block");
}

void rmv2_reader::readAttachments(group_data& group, const std::string& place)
{
    for (std::uint32_t i = 0; i < group.header.attachment_count && m_in.ok(); ++i)
    {
        m_in.enter(place + ", attachment point " + std::to_string(i));
        attachment_point point;
        point.name = textOf(m_in.bytes(m_wide_text ? 64 : 32, "name"));
        readFloats(m_in, point.matrix, "matrix");
        point.kept = m_in.u32("last word");
        if (m_is_kept)
            group.attachments.push_back(std::move(point));
    }
}

void rmv2_reader::readTextures(group_data& group, const std::string& place)
{
    for (std::uint32_t i = 0; i < group.header.texture_count && m_in.ok(); ++i)
    {
        m_in.enter(place + ", texture " + std::to_string(i));
        texture_entry texture;
        texture.type = m_in.u32("type");
        const std::uint64_t position = m_in.position();
        const auto path = m_in.bytes(m_wide_text ? 512 : 256, "path");
        texture.path_field = fieldAt(position, path.size(), field_mode::zero_padded, m_wide_text && looksWide(path));
        texture.path = textOf(path);
        if (m_is_kept)
            group.textures.push_back(std::move(texture));
    }
}

void rmv2_reader::readMaterialWords(group_data& group)
{
    const std::uint64_t position = m_in.position();
    group.material_flags = m_in.u32("material_flags");
    group.alpha_mode = m_in.u32("alpha_mode");
    if (!m_in.ok())
        return;
    group.material_flags_field = fieldAt(position, 4, field_mode::raw, false);
    group.alpha_mode_field = fieldAt(position + 4, 4, field_mode::raw, false);
}

void rmv2_reader::locateVertexData(group_data& group)
{
    const group_header& header = group.header;
    checkFits(m_group_start + header.vertex_offset, group.file_offset + 8, "vertex_offset");
    if (header.index_count > 0)
        checkFits(m_group_start + header.index_offset, group.file_offset + 16, "index_offset");
    checkFits(group.file_offset + header.group_size, group.file_offset + 4, "group_size");
    m_in.seek(m_group_start + header.vertex_offset, "vertex_offset");
    group.vertex_data_offset = m_in.position();
    if (header.vertex_count > m_in.left())
        m_in.failAt(group.file_offset + 12, failure_kind::malformed,
                    std::to_string(header.vertex_count) + " vertices are more than the rest of the file can hold",
                    "vertex_count");

    const vertex_layout layout = vertexLayout(header.vertex_format);
    if (header.vertex_count > 0)
    {
        if (header.index_offset < header.vertex_offset)
            m_in.failAt(group.file_offset + 16, failure_kind::malformed,
                        "the indices at " + std::to_string(header.index_offset) + " would lie before the vertices at " +
                            std::to_string(header.vertex_offset),
                        "index_offset");
        const std::uint32_t stride = (header.index_offset - header.vertex_offset) / header.vertex_count;
        group.store.vertex_size = static_cast<std::int32_t>(std::min<std::uint32_t>(stride, 0x7fffffff));
        if (layout.is_decoded)
        {
            if (stride < layout.smallest_stride)
                m_in.failAt(group.file_offset + 12, failure_kind::malformed,
                            "a vertex of " + std::to_string(stride) + " bytes is too short for vertex format " +
                                std::to_string(header.vertex_format) + ", which needs " +
                                std::to_string(layout.smallest_stride),
                            "vertex size");
            const std::uint64_t size = (std::uint64_t{stride} + layout.skipped_bytes) * header.vertex_count;
            m_in.skip(size, "vertex data");
            charge(size, "vertex data");
        }
    }
    // Indices follow wherever reading has arrived: for undecoded formats at the vertex data itself.
    const std::uint64_t index_bytes = std::uint64_t{header.index_count} * 2;
    m_in.skip(index_bytes, "index data");
    charge(index_bytes, "index data");
}

void rmv2_reader::checkFits(std::uint64_t end, std::uint64_t field_position, std::string_view field)
{
    if (end > m_in.size())
        m_in.failAt(field_position, failure_kind::malformed,
                    "it leads to byte " + std::to_string(end) + ", beyond the end of the file at " +
                        std::to_string(m_in.size()),
                    field);
}

void rmv2_reader::seekNextGroup(const group_data& group)
{
    const std::uint64_t claimed_end = group.file_offset + group.header.group_size;
    m_group_start = m_group_start + group.header.group_size;
    // What is read and what the group says of itself differ for formats with skipped bytes and undecoded vertices: then
    // the group's own size leads to the next header, as long as it makes sense.
    const bool is_plausible = group.header.group_size >= group_header_tail;
    if (is_plausible && claimed_end != m_in.position())
        m_in.seek(claimed_end, "group_size");
}

void rmv2_reader::need(std::uint64_t size, std::string_view field)
{
    if (m_fetch && m_in.ok() && !m_fetch(m_in.position(), std::min(size, m_in.left())))
        m_in.fail(failure_kind::unreadable, "these bytes could not be read", field);
}

void rmv2_reader::charge(std::uint64_t bytes, std::string_view field)
{
    m_charged += bytes;
    if (m_charged > 2 * m_in.size())
        m_in.fail(failure_kind::malformed, "the groups overlap: together they claim more bytes than the file has",
                  field);
}

std::string rmv2_reader::textOf(std::span<const std::byte> field) const
{
    if (m_wide_text && looksWide(field))
        return wideText(field);
    return std::string(untilZero(field));
}

fixed_field rmv2_reader::fieldAt(std::uint64_t position, std::uint64_t width, field_mode mode, bool wide) const
{
    const std::uint64_t size =
        std::min<std::uint64_t>(width, m_image.size() - std::min<std::uint64_t>(position, m_image.size()));
    if (size == 0)
        return {};
    return fixed_field(position, m_image.subspan(static_cast<std::size_t>(position), static_cast<std::size_t>(size)),
                       mode, wide);
}

void rmv2_reader::decode()
{
    std::vector<group_data*> groups;
    std::uint64_t decoded_bytes = 0;
    for (lod_data& lod : m_data.lods)
        for (group_data& group : lod.groups)
        {
            groups.push_back(&group);
            // All memory is fetched here: what remains to be done by several threads cannot fail.
            if (vertexLayout(group.header.vertex_format).is_decoded)
                group.store.vertices = vertex_array(group.header.vertex_count);
            group.store.indices.resize(group.header.index_count);
            decoded_bytes += group.store.vertices.size() * sizeof(vertex_record);
        }
    // A large model keeps several cores busy; each group is decoded by one of them.
    constexpr std::uint64_t worth_a_thread = 8u << 20;
    const std::size_t threads = threadsFor(std::min<std::uint64_t>(groups.size(), 1 + decoded_bytes / worth_a_thread));
    parallelFor(groups.size(), threads, [&](std::size_t i) { decodeGroup(*groups[i]); });
}

void rmv2_reader::decodeGroup(group_data& group) const
{
    const group_header& header = group.header;
    std::size_t position = static_cast<std::size_t>(group.vertex_data_offset);
    const std::size_t vertex_count = group.store.vertices.size();
    if (vertex_count > 0)
    {
        const auto stride = static_cast<std::size_t>(group.store.vertex_size);
        const std::size_t size = (stride + vertexLayout(header.vertex_format).skipped_bytes) * vertex_count;
        decodeVertices(header.vertex_format, m_image.subspan(position, size), stride, header.pivot,
                       group.store.vertices.records());
        position += size;
    }
    std::vector<std::uint16_t>& indices = group.store.indices;
    if (!indices.empty())
        std::memcpy(indices.data(), m_image.data() + position, indices.size() * 2);
    for (std::size_t i = 0; i + 2 < indices.size(); i += 3)
        std::swap(indices[i + 1], indices[i + 2]);
    group.store.indices_out_of_range = static_cast<std::size_t>(std::count_if(
        indices.begin(), indices.end(), [vertex_count](std::uint16_t index) { return index >= vertex_count; }));
}

} // namespace korvane
