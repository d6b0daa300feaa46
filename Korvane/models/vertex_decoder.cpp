#include "Korvane/models/vertex_decoder.h"

#include "EASY_GUI/services/byte_reader.h"
#include "Korvane/models/half_float.h"

#include <array>
#include <bit>
#include <cassert>

namespace korvane
{

namespace
{

// One value per byte, computed as the formats' table writes it.
struct byte_maps
{
    std::array<float, 256> signed_unit; // b / 127 - 1
    std::array<float, 256> by_126;      // b / 126
    std::array<float, 256> weight;      // b / 255
    std::array<float, 256> doubled;     // 2 b / 255 - 1
};

constexpr byte_maps makeByteMaps()
{
    byte_maps maps{};
    for (std::size_t i = 0; i < 256; ++i)
    {
        const float value = static_cast<float>(i);
        maps.signed_unit[i] = value / 127.0f - 1.0f;
        maps.by_126[i] = value / 126.0f;
        maps.weight[i] = value / 255.0f;
        maps.doubled[i] = 2.0f * value / 255.0f - 1.0f;
    }
    return maps;
}

constexpr byte_maps maps = makeByteMaps();

// The bytes of one vertex, by their names in the table.
struct raw_vertex
{
    const std::byte* bytes;

    std::size_t b(std::size_t k) const { return std::to_integer<std::size_t>(bytes[k]); }
    float h(std::size_t k) const { return halfToFloat(littleEndian<std::uint16_t>(bytes + k)); }
    float f(std::size_t k) const { return std::bit_cast<float>(littleEndian<std::uint32_t>(bytes + k)); }
    float n(std::size_t k) const { return maps.signed_unit[b(k)]; }
    std::uint32_t bone(std::size_t k) const { return static_cast<std::uint32_t>(b(k)); }
    glm::vec3 mirrored(std::size_t k) const { return {-n(k), n(k + 1), n(k + 2)}; }
};

vertex_record decodeStatic(raw_vertex raw, const glm::vec3& p)
{
    vertex_record vertex{};
    vertex.position = {-(raw.h(0) + p.x), raw.h(2) + p.y, raw.h(4) + p.z};
    vertex.uv = {raw.h(8), 1.0f - raw.h(10)};
    vertex.normal = raw.mirrored(16);
    vertex.tangent = raw.mirrored(24);
    // Divided by 126, without an offset, and with the second and third component crossed: the games' tools do so.
    vertex.bitangent = {-maps.by_126[raw.b(20)], maps.by_126[raw.b(22)], maps.by_126[raw.b(21)]};
    return vertex;
}

vertex_record decodeCollision(raw_vertex raw, const glm::vec3& p)
{
    vertex_record vertex{};
    vertex.position = {raw.h(0) + p.x, raw.h(2) + p.y, -(raw.h(4) + p.z)};
    vertex.uv = {raw.h(6), raw.h(8)};
    vertex.normal = raw.mirrored(10);
    return vertex;
}

vertex_record decodeWeighted(raw_vertex raw, const glm::vec3& p)
{
    vertex_record vertex{};
    vertex.position = {-raw.h(0) + p.x, raw.h(2) + p.y, raw.h(4) + p.z};
    vertex.uv = {raw.h(16), 1.0f - raw.h(18)};
    vertex.bones = {raw.bone(8), raw.bone(9), 0, 0};
    const float first_weight = maps.weight[raw.b(10)];
    vertex.weights = {first_weight, 1.0f - first_weight, 0.0f, 0.0f};
    vertex.normal = raw.mirrored(12);
    vertex.bitangent = raw.mirrored(24);
    vertex.tangent = raw.mirrored(20);
    return vertex;
}

vertex_record decodeCinematic(raw_vertex raw, const glm::vec3& p)
{
    vertex_record vertex{};
    vertex.position = {-raw.h(0) + p.x, raw.h(2) + p.y, raw.h(4) + p.z};
    vertex.uv = {raw.h(20), 1.0f - raw.h(22)};
    for (std::size_t i = 0; i < 4; ++i)
    {
        vertex.bones[i] = raw.bone(8 + i);
        vertex.weights[i] = maps.weight[raw.b(12 + i)];
    }
    vertex.normal = {-maps.doubled[raw.b(16)], maps.doubled[raw.b(17)], maps.doubled[raw.b(18)]};
    vertex.bitangent = raw.mirrored(24);
    vertex.tangent = raw.mirrored(28);
    return vertex;
}

vertex_record decodeGrass(raw_vertex raw, const glm::vec3&)
{
    vertex_record vertex{};
    vertex.position = {raw.h(0), raw.h(2), raw.h(4)};
    vertex.uv = {raw.f(8), 1.0f - raw.f(12)};
    vertex.normal = {raw.n(16), raw.n(17), raw.n(18)};
    return vertex;
}

template <vertex_record (*decodeOne)(raw_vertex, const glm::vec3&)>
void decodeAll(const std::byte* first, std::size_t step, const glm::vec3& pivot, std::span<vertex_record> records)
{
    for (vertex_record& record : records)
    {
        record = decodeOne({first}, pivot);
        first += step;
    }
}

} // namespace

vertex_layout vertexLayout(std::uint16_t format)
{
    switch (format)
    {
    case 0:
    case 6:
    case 7:
        return {true, 0, 27};
    case 1:
        return {true, 4, 13};
    case 3:
        return {true, 0, 27};
    case 4:
        return {true, 0, 31};
    case 5:
        return {true, 0, 19};
    default:
        return {};
    }
}

void decodeVertices(std::uint16_t format, std::span<const std::byte> raw, std::size_t stride, const glm::vec3& pivot,
                    std::span<vertex_record> records)
{
    const vertex_layout layout = vertexLayout(format);
    const std::size_t step = stride + layout.skipped_bytes;
    assert(layout.is_decoded && stride >= layout.smallest_stride && raw.size() / step >= records.size());
    if (records.empty())
        return;
    const std::byte* const first = raw.data() + layout.skipped_bytes;
    switch (format)
    {
    case 1:
        return decodeAll<decodeCollision>(first, step, pivot, records);
    case 3:
        return decodeAll<decodeWeighted>(first, step, pivot, records);
    case 4:
        return decodeAll<decodeCinematic>(first, step, pivot, records);
    case 5:
        return decodeAll<decodeGrass>(first, step, pivot, records);
    default:
        return decodeAll<decodeStatic>(first, step, pivot, records);
    }
}

} // namespace korvane
