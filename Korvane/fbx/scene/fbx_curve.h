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
// behind this key and the slope before the NEXT one; with automatic the same two as a bias in percent, of any size;
// with tcb tension, continuity and bias.
struct fbx_key_attribute
{
    std::uint32_t flags = fbx_key_flags::linear;
    std::array<double, 3> data{};
    double right_weight = 1.0 / 3; // of the segment's length, 0 to 1
    double next_left_weight = 1.0 / 3;

    friend bool operator==(const fbx_key_attribute&, const fbx_key_attribute&) = default;
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
    // As files store them: a list of times, which never decrease, one of values, and attributes that serve runs of
    // keys.
    std::vector<fbx_ticks> times;
    std::vector<double> values;
    std::vector<fbx_key_attribute> attributes;
    std::vector<std::uint32_t> attribute_ends; // for each attribute the key behind the last that it serves
    fbx_outside before;
    fbx_outside after;
    double ticks_per_second = 46186158000.0;

    bool hasKeys() const { return !times.empty(); }
    // The next key, with the attribute that it has to itself unless the key before has an equal one.
    void add(fbx_ticks time, double value, const fbx_key_attribute& attribute);
    const fbx_key_attribute& attributeOf(std::size_t key) const;
    // The value at that time; 0 without keys.
    [[nodiscard]] double evaluate(fbx_ticks time) const;
};

} // namespace korvane
