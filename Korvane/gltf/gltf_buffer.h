#pragma once

// The binary part of a glTF file, and the lists that say what lies in it: bytes are appended, each piece on a multiple
// of four, and described by a buffer view and an accessor. Numbers are little-endian binary32. One thread at a time.

#include <nlohmann/json.hpp>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace korvane
{

using gltf_json = nlohmann::ordered_json; // keys stay in the order in which they were written

// What a buffer view is used for, by the numbers of the format; whatever is neither says nothing.
enum class gltf_target
{
    none = 0,
    vertices = 34962,
    indices = 34963
};

class gltf_buffer
{
public:
    // Each returns the number of the new accessor. Values are taken as binary32; of_each is how many make an element,
    // and the type's name is theirs: "SCALAR", "VEC2", "VEC3", "VEC4", "MAT4".
    std::size_t addFloats(std::span<const float> values, std::size_t of_each, gltf_target target, bool has_bounds);
    std::size_t addIndices(std::span<const std::uint32_t> indices, std::size_t point_count); // of triangles
    std::size_t addJoints(std::span<const std::uint16_t> joints);                            // four for each point
    // A file within the file: the number of its buffer view.
    std::size_t addFile(std::span<const std::byte> bytes);

    const std::vector<std::byte>& bytes() const { return m_bytes; }
    const gltf_json& views() const { return m_views; }
    const gltf_json& accessors() const { return m_accessors; }

private:
    std::size_t addView(std::span<const std::byte> bytes, gltf_target target);
    std::size_t addAccessor(std::size_t view, int component_type, std::size_t count, const char* type);

    std::vector<std::byte> m_bytes;
    gltf_json m_views = gltf_json::array();
    gltf_json m_accessors = gltf_json::array();
};

} // namespace korvane
