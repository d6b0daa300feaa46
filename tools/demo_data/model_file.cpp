#include "tools/demo_data/model_file.h"

#include "EASY_GUI/services/byte_writer.h"

#include <cassert>

namespace korvane::demo
{

namespace
{

// Round to nearest, ties to even; everything the demo models hold is small enough, nothing is NaN.
std::uint16_t halfBits(double value)
{
    const std::uint32_t bits = std::bit_cast<std::uint32_t>(static_cast<float>(value));
    const auto sign = static_cast<std::uint16_t>((bits >> 16) & 0x8000u);
    const std::uint32_t magnitude = bits & 0x7FFFFFFFu;
    if (magnitude >= 0x47800000u) // 65536 and more
        return static_cast<std::uint16_t>(sign | 0x7C00u);
    if (magnitude < 0x38800000u) // below the smallest normal half: a multiple of 2^-24
    {
        const double units = std::bit_cast<float>(magnitude) * 16777216.0;
        auto whole = static_cast<std::uint32_t>(units);
        const double rest = units - whole;
        if (rest > 0.5 || (rest == 0.5 && (whole & 1u) != 0))
            ++whole;
        return static_cast<std::uint16_t>(sign | whole);
    }
    const std::uint32_t rounded = magnitude + 0x0FFFu + ((magnitude >> 13) & 1u);
    return static_cast<std::uint16_t>(sign | ((rounded - 0x38000000u) >> 13));
}

// Stored bytes of components that are read as b / 127 - 1, or as 2 b / 255 - 1.
std::uint8_t by127(double value)
{
    return static_cast<std::uint8_t>((std::clamp(value, -1.0, 1.0) + 1) * 127 + 0.5);
}
std::uint8_t by255(double value)
{
    return static_cast<std::uint8_t>((std::clamp(value, -1.0, 1.0) + 1) * 127.5 + 0.5);
}

struct vertex_layout
{
    std::uint32_t stride;  // as the offsets in the group header say
    std::uint32_t skipped; // further bytes before every vertex
    vec3 mirror;           // what the reader does to positions and directions
};

vertex_layout layoutOf(std::uint16_t format)
{
    switch (format)
    {
    case 1:
        return {16, 4, {1, 1, -1}};
    case 2:
        return {16, 0, {1, 1, 1}};
    case 3:
        return {28, 0, {-1, 1, 1}};
    case 5:
        return {20, 0, {1, 1, 1}};
    default: // 0, 4, 6, 7
        return {32, 0, {-1, 1, 1}};
    }
}

class model_writer
{
public:
    explicit model_writer(const model& source) : m_source(source), m_is_wide(source.version == 5) {}

    std::vector<std::byte> write()
    {
        m_out.text("RMV2");
        m_out.u32(m_source.version);
        m_out.u32(static_cast<std::uint32_t>(m_source.lods.size()));
        m_out.paddedText(m_source.skeleton_id, 128);
        if (m_is_wide)
            m_out.paddedText("", 128);
        const std::size_t table = m_out.size();
        const std::size_t record = m_source.version >= 7 ? 28 : 20;
        m_out.zeros(record * m_source.lods.size());
        for (std::size_t i = 0; i < m_source.lods.size(); ++i)
            writeLod(i, table + record * i);
        return m_out.take();
    }

private:
    void writeLod(std::size_t index, std::size_t header)
    {
        const model_lod& lod = m_source.lods[index];
        m_out.putU32(header, static_cast<std::uint32_t>(lod.groups.size()));
        m_out.putU32(header + 12, static_cast<std::uint32_t>(m_out.size()));
        m_out.putU32(header + 16, std::bit_cast<std::uint32_t>(static_cast<float>(lod.distance)));
        if (m_source.version >= 7)
            m_out.putU32(header + 20, static_cast<std::uint32_t>(index));
        m_vertices_size = m_indices_size = 0;
        for (const model_group& group : lod.groups)
            writeGroup(group);
        m_out.putU32(header + 4, m_vertices_size);
        m_out.putU32(header + 8, m_indices_size);
    }

    void writeGroup(const model_group& group)
    {
        assert(group.shape.vertices.size() <= 65535);
        const std::size_t start = m_out.size();
        const vertex_layout layout = layoutOf(group.vertex_format);
        const auto vertex_count = static_cast<std::uint32_t>(group.shape.vertices.size());
        const auto index_count = static_cast<std::uint32_t>(group.shape.indices.size());
        m_out.u32(group.material_id);
        m_out.zeros(4 + 4);
        m_out.u32(vertex_count);
        m_out.zeros(4);
        m_out.u32(index_count);
        writeBox(group, layout);
        writeHeaderTail(group);
        writeAttachments(group);
        for (const model_texture& texture : group.textures)
        {
            m_out.u32(texture.type);
            writeText(texture.path, 256);
        }
        m_out.u32(group.material_flags);
        m_out.u32(group.alpha_mode);

        const auto vertex_offset = static_cast<std::uint32_t>(m_out.size() - start);
        for (const mesh_vertex& vertex : group.shape.vertices)
            writeVertex(vertex, group, layout);
        for (std::size_t i = 0; i + 2 < group.shape.indices.size(); i += 3)
            for (const std::size_t k : {0u, 2u, 1u}) // the reader swaps the second and the third
                m_out.u16(static_cast<std::uint16_t>(group.shape.indices[i + k]));
        m_out.putU32(start + 4, static_cast<std::uint32_t>(m_out.size() - start));
        m_out.putU32(start + 8, vertex_offset);
        m_out.putU32(start + 16, vertex_offset + vertex_count * layout.stride);
        m_vertices_size += vertex_count * (layout.stride + layout.skipped);
        m_indices_size += index_count * 2;
    }

    void writeBox(const model_group& group, const vertex_layout& layout)
    {
        vec3 low{1e30, 1e30, 1e30}, high{-1e30, -1e30, -1e30};
        for (const mesh_vertex& vertex : group.shape.vertices)
        {
            const vec3 p = vertex.position * layout.mirror;
            low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
            high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
        }
        writeVector(low);
        writeVector(high);
    }

    void writeHeaderTail(const model_group& group)
    {
        // A shorter text would move every later field: readers go by its zero, not by the width of 12.
        assert(group.shader_name.size() == 11);
        if (m_is_wide)
            writeWide(group.shader_name);
        else
            m_out.text(group.shader_name);
        m_out.zeros(m_is_wide ? 2 : 1);
        for (const std::uint32_t value : {32512u, 32u, 0u, 0u, 0u})
            m_out.u32(value);
        m_out.u16(group.vertex_format);
        m_out.paddedText(group.name, 32);
        m_out.paddedText(group.texture_directory, 256);
        m_out.zeros(2 + 252 + 4);
        writeVector(group.pivot);
        for (int matrix = 0; matrix < 3; ++matrix)
            writeMatrix({}, {vec3{1, 0, 0}, vec3{0, 1, 0}, vec3{0, 0, 1}});
        m_out.u32(0xFFFFFFFFu);
        m_out.u32(0);
        m_out.u32(static_cast<std::uint32_t>(group.attachments.size()));
        m_out.u32(static_cast<std::uint32_t>(group.textures.size()));
        for (const std::uint32_t value : {0u, 1u, 0u, 0u, 0u, 0u, 0u, 0u})
            m_out.u32(value);
        m_out.zeros(108);
    }

    void writeAttachments(const model_group& group)
    {
        for (const model_attachment& attachment : group.attachments)
        {
            writeText(attachment.name, 32);
            writeMatrix(attachment.position, attachment.axes);
            m_out.u32(attachment.bone);
        }
    }

    // A zero-padded text field of width characters, which take 16 bits each in version 5.
    void writeText(const std::string& text, std::size_t width)
    {
        if (!m_is_wide)
            return m_out.paddedText(text, width);
        const std::size_t kept = std::min(text.size(), width - 1);
        writeWide(text.substr(0, kept));
        m_out.zeros((width - kept) * 2);
    }
    void writeWide(const std::string& text)
    {
        for (const char each : text)
            m_out.u16(static_cast<unsigned char>(each));
    }

    void writeVector(vec3 value)
    {
        for (const double component : {value.x, value.y, value.z})
            m_out.f32(static_cast<float>(component));
    }

    // In the file's axes, which are mirrored in x.
    void writeMatrix(vec3 offset, const std::array<vec3, 3>& axes)
    {
        const auto& [x, y, z] = axes;
        const double rows[3][4] = {
            {x.x, -y.x, -z.x, -offset.x}, {-x.y, y.y, z.y, offset.y}, {-x.z, y.z, z.z, offset.z}};
        for (const auto& row : rows)
            for (const double value : row)
                m_out.f32(static_cast<float>(value + 0)); // no negative zero
    }

    void half(double value) { m_out.u16(halfBits(value)); }
    void direction(vec3 value)
    {
        for (const double component : {value.x, value.y, value.z})
            m_out.u8(by127(component));
        m_out.u8(127);
    }
    void fourBytes(const std::array<std::uint8_t, 4>& values)
    {
        for (const std::uint8_t value : values)
            m_out.u8(value);
    }

    void writeVertex(const mesh_vertex& vertex, const model_group& group, const vertex_layout& layout)
    {
        const vec3 normal = vertex.normal * layout.mirror;
        const vec3 tangent = vertex.tangent * layout.mirror;
        const vec3 bitangent = vertex.bitangent * layout.mirror;
        vec3 position = vertex.position * layout.mirror - group.pivot;
        if (group.vertex_format == 3 || group.vertex_format == 4) // the pivot is added after the mirroring
            position.x = vertex.position.x * layout.mirror.x + group.pivot.x;
        m_out.zeros(layout.skipped);
        half(position.x);
        half(position.y);
        half(position.z);
        switch (group.vertex_format)
        {
        case 1:
            half(vertex.uv.x);
            half(vertex.uv.y);
            // Here the normal keeps the file's x to be negated on reading, although the position's x is not.
            direction(vertex.normal * vec3{-1, 1, 1});
            m_out.zeros(2);
            break;
        case 2:
            m_out.zeros(2);
            half(vertex.uv.x);
            half(vertex.uv.y);
            direction(normal);
            break;
        case 3:
            half(1);
            writeTwoBones(vertex);
            direction(normal);
            half(vertex.uv.x);
            half(vertex.uv.y);
            direction(tangent);
            direction(bitangent);
            break;
        case 4:
            half(1);
            fourBytes(vertex.bones);
            fourBytes(vertex.weights);
            m_out.u8(by255(normal.x));
            m_out.u8(by255(normal.y));
            m_out.u8(by255(normal.z));
            m_out.u8(127);
            half(vertex.uv.x);
            half(vertex.uv.y);
            direction(bitangent);
            direction(tangent);
            break;
        case 5:
            m_out.zeros(2);
            m_out.f32(static_cast<float>(vertex.uv.x));
            m_out.f32(static_cast<float>(vertex.uv.y));
            direction(normal);
            break;
        default: // 0, 6, 7
            half(1);
            half(vertex.uv.x);
            half(vertex.uv.y);
            half(vertex.uv.x);
            half(vertex.uv.y);
            direction(normal);
            direction(bitangent);
            direction(tangent);
            fourBytes({255, 255, 255, 255});
            break;
        }
    }

    // Two influences in one weight byte: the two strongest, made to sum to 255.
    void writeTwoBones(const mesh_vertex& vertex)
    {
        const int sum = vertex.weights[0] + vertex.weights[1];
        const int first = (vertex.weights[0] * 255 + sum / 2) / sum;
        m_out.u8(vertex.bones[0]);
        m_out.u8(first < 255 ? vertex.bones[1] : std::uint8_t{0});
        m_out.u8(static_cast<std::uint8_t>(first));
        m_out.u8(static_cast<std::uint8_t>(255 - first));
    }

    const model& m_source;
    bool m_is_wide;
    byte_writer m_out;
    std::uint32_t m_vertices_size = 0;
    std::uint32_t m_indices_size = 0;
};

} // namespace

std::vector<std::byte> modelBytes(const model& source)
{
    return model_writer(source).write();
}

} // namespace korvane::demo
