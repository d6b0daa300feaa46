#pragma once

// One animated number of an FBX scene: keys and what is between and beyond them (docs/formats/fbx.md, "Curves"). Times
// are whole ticks as files store them, so that a key is met exactly; slopes are in units of value for each second.
// Plain values: any thread.

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace korvane
{

using fbx_ticks = std::int64_t;

// Bits of fbx_key_attribute::flags.
namespace fbx_key_flags
{
constexpr std::uint32_t constant = 0x2; // how the value goes on to the next key
constexpr std::uint32_t linear = 0x4;
constexpr std::uint32_t cubic = 0x8;
constexpr std::uint32_t constant_next = 0x100; // with constant: the next key's value at once
constexpr std::uint32_t automatic = 0x100;     // otherwise: where a cubic's slopes come from
constexpr std::uint32_t tcb = 0x200;
constexpr std::uint32_t user = 0x400;
constexpr std::uint32_t clamped = 0x1000;
constexpr std::uint32_t time_independent = 0x2000;
constexpr std::uint32_t progressive = 0x4000;
constexpr std::uint32_t right_weighted = 0x1000000;
constexpr std::uint32_t next_left_weighted = 0x2000000;
} // namespace fbx_key_flags

// Files store one for a run of equal keys. What the first three data mean is said by the flags: with user the slope
// behind this key and the slope before the NEXT one; with automatic the same two as a bias in percent; with tcb
// tension, continuity and bias.
struct fbx_key_attribute
{
    std::uint32_t flags = fbx_key_flags::linear;
    std::array<double, 3> data{};
    double right_weight = 1.0 / 3; // of the segment's length, 0 to 1
    double next_left_weight = 1.0 / 3;
};

struct fbx_key
{
    fbx_ticks time = 0;
    double value = 0;
    std::uint32_t attribute = 0; // index into fbx_curve::attributes
};

enum class fbx_extrapolation : std::uint8_t
{
    constant,
    repeat,
    mirror,
    slope,          // goes on with the slope at the end
    repeat_relative // each repetition begins where the one before ended
};

struct fbx_outside
{
    fbx_extrapolation kind = fbx_extrapolation::constant;
    std::int64_t repetitions = -1; // negative: without end
};

struct fbx_curve
{
    std::vector<fbx_key> keys; // times never decrease
    std::vector<fbx_key_attribute> attributes;
    fbx_outside before;
    fbx_outside after;
    double ticks_per_second = 46186158000.0;

    bool hasKeys() const { return !keys.empty(); }
    // The value at that time; 0 without keys.
    [[nodiscard]] double evaluate(fbx_ticks time) const;
};

} // namespace korvane
