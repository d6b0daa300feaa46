#pragma once

// Turns the raw vertices of one group into vertex records. Layouts of the formats: docs/formats/rigid_model_v2.md,
// "Vertex formats". All arithmetic is binary32, in the order of that table, so that results are bit-equal to a plain
// evaluation of it.

#include "Korvane/models/rmv2_data.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace korvane
{

struct vertex_layout
{
    bool is_decoded = false;           // formats 2 and 8 and above are not
    std::uint32_t skipped_bytes = 0;   // before each vertex, besides the stride
    std::uint32_t smallest_stride = 0; // the bytes that decoding touches
};

[[nodiscard]] vertex_layout vertexLayout(std::uint16_t format);

// raw holds count * (stride + skipped_bytes) bytes, stride >= smallest_stride, records count records. The format is one
// that is decoded.
void decodeVertices(std::uint16_t format, std::span<const std::byte> raw, std::size_t stride, const glm::vec3& pivot,
                    std::span<vertex_record> records);

} // namespace korvane
