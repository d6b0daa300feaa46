#pragma once

// Writes small rigid_model_v2 files field by field for tests, straight from docs/formats/rigid_model_v2.md. It shares
// no code with the reader. Every field has a sane default; tests change what they are about.

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace korvane::test
{

class bytes_out
{
public:
    void u8(unsigned value) { m_text += static_cast<char>(static_cast<unsigned char>(value)); }
    void u16(unsigned value)
    {
        u8(value & 0xff);
        u8((value >> 8) & 0xff);
    }
    void u32(std::uint32_t value)
    {
        u16(value & 0xffff);
        u16(value >> 16);
    }
    void f32(float value) { u32(std::bit_cast<std::uint32_t>(value)); }
    void zeros(std::size_t count) { m_text.append(count, '\0'); }
    void text(const std::string& value) { m_text += value; }
    void padded(const std::string& value, std::size_t width)
    {
        m_text += value;
        m_text.append(width - value.size(), '\0');
    }
    void putU32(std::size_t at, std::uint32_t value)
    {
        for (std::size_t i = 0; i < 4; ++i)
            m_text[at + i] = static_cast<char>(static_cast<unsigned char>(value >> (8 * i)));
    }
    std::size_t size() const { return m_text.size(); }
    const std::string& str() const { return m_text; }

private:
    std::string m_text;
};

// "abc" as 16-bit characters: "a\0b\0c\0".
inline std::string wide(const std::string& text)
{
    std::string result;
    for (const char character : text)
        (result += character) += '\0';
    return result;
}

struct test_group
{
    std::uint32_t material_id = 68;
    std::string shader_name = "rigid_shade"; // 11 characters, as games write it
    std::uint16_t vertex_format = 0;
    std::string group_name = "body";
    std::string texture_directory = "variantmeshes/tex";
    std::array<float, 3> bbox_min{-1, -2, -3};
    std::array<float, 3> bbox_max{1, 2, 3};
    std::array<float, 3> pivot{0, 0, 0};
    std::vector<std::pair<std::string, float>> attachments; // name, value of the matrix' first element
    std::vector<std::pair<std::uint32_t, std::string>> textures = {{0, "tex/body_diffuse.dds"}};
    std::uint32_t material_flags = 3;
    std::uint32_t alpha_mode = 0;
    std::size_t stride = 32;
    std::string vertices = std::string(3 * 32, '\x40'); // raw bytes, a multiple of the stride
    std::uint32_t vertex_count = 3;
    std::vector<std::uint16_t> indices = {0, 1, 2};
    std::size_t bytes_before_vertices = 0; // a gap that vertex_offset steps over
};

struct test_model
{
    std::uint32_t version = 7;
    std::string magic = "RMV2";
    std::string skeleton_id = "humanoid01";
    std::vector<std::vector<test_group>> lods = {{test_group{}}};
    bool is_wide = false; // 16-bit attachment names and texture paths (version 5)

    std::size_t lodHeaderSize() const { return version >= 7 ? 28 : 20; }
    std::size_t headerSize() const { return version == 5 ? 268 : 140; }
    std::string bytes() const;
};

inline void writeGroup(bytes_out& out, const test_group& group, const test_model& model)
{
    const std::size_t start = out.size();
    const bool is_v5 = model.version == 5;
    const auto name = [&](const std::string& text) { return model.is_wide ? wide(text) : text; };
    out.u32(group.material_id);
    out.zeros(5 * 4); // sizes and offsets, set below
    for (const float value : group.bbox_min)
        out.f32(value);
    for (const float value : group.bbox_max)
        out.f32(value);
    out.text(is_v5 ? wide(group.shader_name + '\0') : group.shader_name + '\0');
    for (const std::uint32_t value : {32512u, 32u, 0u, 0u, 0u})
        out.u32(value);
    out.u16(group.vertex_format);
    out.padded(group.group_name, 32);
    out.padded(group.texture_directory, 256);
    out.zeros(2 + 252 + 4);
    for (const float value : group.pivot)
        out.f32(value);
    for (int matrix = 0; matrix < 3; ++matrix)
        for (int element = 0; element < 12; ++element)
            out.f32(element % 5 == 0 ? 1.0f : 0.0f);
    out.u32(0xffffffff);
    out.u32(0);
    out.u32(static_cast<std::uint32_t>(group.attachments.size()));
    out.u32(static_cast<std::uint32_t>(group.textures.size()));
    for (const std::uint32_t value : {0u, 1u, 0u, 0u, 0u, 0u, 0u, 0u})
        out.u32(value);
    out.zeros(108);
    for (const auto& [attachment, first] : group.attachments)
    {
        out.padded(name(attachment), is_v5 ? 64 : 32);
        out.f32(first);
        out.zeros(11 * 4);
        out.u32(7);
    }
    for (const auto& [type, path] : group.textures)
    {
        out.u32(type);
        out.padded(name(path), is_v5 ? 512 : 256);
    }
    out.u32(group.material_flags);
    out.u32(group.alpha_mode);
    out.zeros(group.bytes_before_vertices);
    const std::size_t vertex_offset = out.size() - start;
    out.text(group.vertices);
    for (const std::uint16_t index : group.indices)
        out.u16(index);
    const std::uint32_t words[] = {static_cast<std::uint32_t>(out.size() - start),
                                   static_cast<std::uint32_t>(vertex_offset), group.vertex_count,
                                   static_cast<std::uint32_t>(vertex_offset + group.stride * group.vertex_count),
                                   static_cast<std::uint32_t>(group.indices.size())};
    for (std::size_t i = 0; i < 5; ++i)
        out.putU32(start + 4 + i * 4, words[i]);
}

inline std::string test_model::bytes() const
{
    bytes_out out;
    out.text(magic);
    out.u32(version);
    out.u32(static_cast<std::uint32_t>(lods.size()));
    out.padded(skeleton_id, 128);
    if (version == 5)
        out.padded("second", 128);
    const std::size_t table = out.size();
    for (std::size_t i = 0; i < lods.size(); ++i)
    {
        out.u32(static_cast<std::uint32_t>(lods[i].size()));
        out.zeros(12);
        out.f32(100.0f * static_cast<float>(i + 1));
        if (version >= 7)
        {
            out.u32(static_cast<std::uint32_t>(i));
            out.u32(0);
        }
    }
    for (std::size_t i = 0; i < lods.size(); ++i)
    {
        out.putU32(table + i * lodHeaderSize() + 12, static_cast<std::uint32_t>(out.size()));
        for (const test_group& group : lods[i])
            writeGroup(out, group, *this);
    }
    return out.str();
}

} // namespace korvane::test
