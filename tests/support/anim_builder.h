#pragma once

// Writes small .anim files field by field for tests, from docs/formats/anim.md; shares no code with readers and writer.

#include "tests/support/model_builder.h"

#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace korvane::test
{

struct test_anim_bone
{
    std::string name;
    std::int32_t parent = -1;
};

struct test_anim_frame
{
    std::vector<std::array<float, 3>> translations;
    std::vector<std::array<std::int16_t, 4>> rotations; // as the file has them
};

struct test_anim
{
    static constexpr std::uint32_t none = 0xffffffff;

    std::uint32_t version = 5;
    std::uint32_t header_word = 1;
    float frame_rate = 20.0f;
    std::string skeleton_name = "humanoid01";
    bool has_sub_name = false; // version 7
    std::string sub_name;
    float end_time = 0.05f;
    // Three bones: the first one moves and turns, the second one turns, the third one moves.
    std::vector<test_anim_bone> bones = {{"root", -1}, {"spine", 0}, {"head", 1}};
    std::vector<std::uint32_t> translation_map = {0, none, 1};
    std::vector<std::uint32_t> rotation_map = {0, 1, none};
    std::vector<std::array<float, 3>> static_translations; // version 7
    std::vector<std::array<std::int16_t, 4>> static_rotations;
    std::uint32_t translation_count = 2;
    std::uint32_t rotation_count = 2;
    std::uint32_t frame_count = 2;
    std::vector<test_anim_frame> frames = {
        {{{1.0f, 2.0f, 3.0f}, {4.0f, 5.0f, 6.0f}}, {{0, 0, 0, 32767}, {32767, 0, 0, 0}}},
        {{{-1.5f, 0.25f, 0.0f}, {0.5f, -0.5f, 8.0f}}, {{0, 32767, 0, 0}, {-16384, 8192, -4096, 2048}}}};

    std::string bytes() const;
};

inline void writeTranslation(bytes_out& out, const std::array<float, 3>& value)
{
    for (const float component : value)
        out.f32(component);
}

inline void writeRotation(bytes_out& out, const std::array<std::int16_t, 4>& value)
{
    for (const std::int16_t component : value)
        out.u16(static_cast<std::uint16_t>(component));
}

inline std::string test_anim::bytes() const
{
    bytes_out out;
    out.u32(version);
    out.u32(header_word);
    out.f32(frame_rate);
    out.u16(static_cast<unsigned>(skeleton_name.size()));
    out.text(skeleton_name);
    if (version == 7)
        out.u32(has_sub_name ? 1 : 0);
    if (version == 7 && has_sub_name)
    {
        out.u16(static_cast<unsigned>(sub_name.size()));
        out.text(sub_name);
    }
    out.f32(end_time);
    out.u32(static_cast<std::uint32_t>(bones.size()));
    for (const test_anim_bone& bone : bones)
    {
        out.u16(static_cast<unsigned>(bone.name.size()));
        out.text(bone.name);
        out.u32(static_cast<std::uint32_t>(bone.parent));
    }
    for (const std::uint32_t entry : translation_map)
        out.u32(entry);
    for (const std::uint32_t entry : rotation_map)
        out.u32(entry);
    if (version == 7)
    {
        out.u32(static_cast<std::uint32_t>(static_translations.size()));
        out.u32(static_cast<std::uint32_t>(static_rotations.size()));
        for (const auto& value : static_translations)
            writeTranslation(out, value);
        for (const auto& value : static_rotations)
            writeRotation(out, value);
    }
    out.u32(translation_count);
    out.u32(rotation_count);
    out.u32(frame_count);
    for (const test_anim_frame& frame : frames)
    {
        for (const auto& value : frame.translations)
            writeTranslation(out, value);
        for (const auto& value : frame.rotations)
            writeRotation(out, value);
    }
    return out.str();
}

// A skeleton: track i is bone i, one frame.
inline test_anim testSkeleton(std::uint32_t version)
{
    test_anim source;
    source.version = version;
    source.end_time = 0.0f;
    source.translation_map = {0, 1, 2};
    source.rotation_map = {0, 1, 2};
    source.translation_count = source.rotation_count = 3;
    source.frame_count = 1;
    source.frames = {{{{1.0f, 2.0f, 3.0f}, {0.0f, 0.5f, 0.0f}, {-0.25f, 0.0f, 1.0f}},
                      {{0, 0, 0, 32767}, {16384, -16384, 16384, 16384}, {0, 0, 32767, 0}}}};
    return source;
}

inline std::string animOf(const std::string& skeleton, std::uint32_t version = 5)
{
    test_anim source;
    source.skeleton_name = skeleton;
    source.version = version;
    return source.bytes();
}

} // namespace korvane::test
