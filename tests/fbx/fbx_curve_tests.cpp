#include "Korvane/fbx/scene/fbx_curve.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace korvane
{
namespace
{

namespace flags = fbx_key_flags;
constexpr double tick_rate = 1000; // keeps the tables readable: a tick is a millisecond

struct test_key
{
    double seconds;
    double value;
    std::uint32_t flags;
    std::array<double, 3> data{};
};

fbx_curve makeCurve(const std::vector<test_key>& keys)
{
    fbx_curve curve;
    curve.ticks_per_second = tick_rate;
    for (const test_key& key : keys)
    {
        fbx_key_attribute attribute;
        attribute.flags = key.flags;
        attribute.data = key.data;
        curve.add(std::llround(key.seconds * tick_rate), key.value, attribute);
    }
    return curve;
}

constexpr std::uint32_t user = flags::cubic | flags::user;
constexpr std::uint32_t automatic = flags::cubic | flags::automatic;
constexpr std::uint32_t tcb = flags::cubic | flags::tcb;

} // namespace

// In the middle of a segment of length d between the values a and b a cubic with the slopes m and n has the value
// (a + b) / 2 + d (m - n) / 8; the rows' values are worked out with that.
TEST(fbx_curve, valuesBetweenKeys)
{
    // 0 at 0 s, 2 at 1 s, 1 at 3 s: secants 2 and -0.5, 1/3 across; q = 1/3. Automatic slope in the middle
    // 1/6 + (2 * 2/3 - 0.5 * 1/3) / 2 = 0.75, at the end -0.5.
    const auto bent = [](std::uint32_t kind, const std::array<double, 3>& data) {
        return std::vector<test_key>{{0, 0, kind}, {1, 2, kind, data}, {3, 1, kind}};
    };
    const struct
    {
        const char* name;
        std::vector<test_key> keys;
        double seconds;
        double expected;
    } rows[] = {
        {"constant holds until the next key", {{0, 1, flags::constant}, {1, 5, flags::constant}}, 0.999, 1},
        {"constant ends at the next key", {{0, 1, flags::constant}, {1, 5, flags::constant}}, 1, 5},
        {"next keeps the key itself", {{0, 1, flags::constant | flags::constant_next}, {1, 5, flags::constant}}, 0, 1},
        {"next is there at once", {{0, 1, flags::constant | flags::constant_next}, {1, 5, flags::constant}}, 0.001, 5},
        {"linear", {{0, 1, flags::linear}, {2, 5, flags::linear}}, 0.5, 2},
        {"user, flat", {{0, 0, user}, {1, 1, user}}, 0.25, 0.15625}, // 3/16 - 2/64
        {"user, slope behind the key", {{0, 0, user, {3, 0}}, {1, 1, user}}, 0.5, 0.875},
        {"user, slope before the next key", {{0, 0, user, {0, 3}}, {1, 1, user}}, 0.5, 0.125},
        {"user, a slope is of seconds", {{0, 0, user, {3, 0}}, {2, 1, user}}, 1, 1.25},
        {"user, then linear", {{0, 0, user, {0, 3}}, {1, 1, flags::linear}, {2, 2, flags::linear}}, 0.5, 0.125},
        {"linear key's data play no part", {{0, 0, flags::linear, {9, 9}}, {1, 1, user}, {2, 2, user}}, 0.5, 0.5},
        {"no tangent is flat", {{0, 0, flags::cubic, {3, 3}}, {1, 1, flags::cubic}}, 0.5, 0.5},
        {"automatic", bent(automatic, {}), 2, 1.5 + 2 * (0.75 + 0.5) / 8},
        {"automatic before the key", bent(automatic, {}), 0.5, 1 + (2 - 0.75) / 8},
        {"automatic, time independent", bent(automatic | flags::time_independent, {}), 2, 1.5 + (1 / 3.0 + 0.5) / 4},
        {"time independent, bias", bent(automatic | flags::time_independent, {50}), 2, 1.5 + (-1 / 12.0 + 0.5) / 4},
        {"bias to the right", bent(automatic, {50, 0}), 2, 1.5 + 2 * (0.125 + 0.5) / 8},
        {"bias to the left", bent(automatic, {-100, 0}), 2, 1.5 + 2 * (2 + 0.5) / 8},
        // From 0.75 three and seven times the 1.25 towards -0.5; beyond five times 40 * 2^2 more in the same direction.
        {"bias beyond the neighbour's slope", bent(automatic, {300, 0}), 2, 1.5 + (-3 + 0.5) / 4},
        {"bias of a velocity", bent(automatic, {700, 0}), 2, 1.5 + (-8 - 160 + 0.5) / 4},
        {"bias of a velocity to the left", bent(automatic, {-700, 0}), 2, 1.5 + (0.75 + 1.25 * 7 + 160 + 0.5) / 4},
        {"velocity at the first key",
         {{0, 0, automatic, {700}}, {1, 2, automatic}, {3, 1, automatic}},
         0.5,
         1 + (2 + 160 - 0.75) / 8},
        {"velocity at the last key", bent(automatic, {0, 700}), 2, 1.5 + (0.75 + 0.5 + 160) / 4},
        {"left bias stands in the key before",
         {{0, 0, automatic, {0, -50}}, {1, 2, automatic}, {3, 1, automatic}},
         0.5,
         1 + (2 - 0.125) / 8},
        {"not clamped", {{0, 0, automatic}, {1, 2, automatic}, {2, 2, automatic}}, 0.5, 1 + (2 - 1.0) / 8},
        {"clamped at equal values",
         {{0, 0, automatic | flags::clamped}, {1, 2, automatic | flags::clamped}, {2, 2, automatic | flags::clamped}},
         0.5,
         1 + (2 - 0.0) / 8},
        // Secants 1 and 9 give 5, which is limited to three times the smaller; the ends are flat.
        {"progressive limits the slope",
         {{0, 0, automatic | flags::progressive},
          {1, 1, automatic | flags::progressive},
          {2, 10, automatic | flags::progressive}},
         0.5,
         0.5 + (0 - 3.0) / 8},
        {"progressive is flat at a turn", bent(automatic | flags::progressive, {}), 2, 1.5},
        {"tcb without numbers", bent(tcb, {}), 2, 1.5 + 2 * (0.75 + 0.5) / 8},
        {"tension", bent(tcb, {0.5, 0, 0}), 2, 1.5 + 2 * (0.375 + 0.5) / 8},
        {"continuity behind the key", bent(tcb, {0, 1, 0}), 2, 1.5 + 2 * (2 + 0.5) / 8},
        {"continuity before the key", bent(tcb, {0, 1, 0}), 0.5, 1 + (2 + 0.5) / 8},
        {"bias", bent(tcb, {0, 0, 1}), 2, 1.5 + 2 * (2 + 0.5) / 8},
        {"key at the same time", {{0, 1, flags::linear}, {1, 2, flags::linear}, {1, 7, flags::linear}}, 1, 7},
    };
    for (const auto& row : rows)
        EXPECT_NEAR(makeCurve(row.keys).evaluate(std::llround(row.seconds * tick_rate)), row.expected, 1e-12)
            << row.name;
}

// Flat ends: at the parameter s the value is 3 s^2 (1 - s) + s^3, the time 3 s (1 - s)^2 w + 3 s^2 (1 - s) (1 - v) +
// s^3.
TEST(fbx_curve, weightsBendTime)
{
    const struct
    {
        const char* name;
        std::uint32_t flags;
        double right;
        double left;
        double place;
        double expected;
    } rows[] = {
        {"both, s = 1/4", flags::right_weighted | flags::next_left_weighted, 0.5, 0.5, 0.296875, 0.15625},
        {"right, s = 1/2", flags::right_weighted, 1, 0.9, 0.375 + 0.25 + 0.125, 0.5},
        {"left, s = 1/2", flags::next_left_weighted, 0.9, 1, 0.125 + 0.125, 0.5},
        {"not in force", 0, 1, 1, 0.5, 0.5},
        {"beyond the segment counts as all of it", flags::right_weighted, 6, 0.9, 0.75, 0.5},
    };
    for (const auto& row : rows)
    {
        fbx_curve curve = makeCurve({{0, 0, user | row.flags}, {1000, 1, user}});
        curve.attributes[0].right_weight = row.right;
        curve.attributes[0].next_left_weight = row.left;
        EXPECT_NEAR(curve.evaluate(std::llround(row.place * 1e6)), row.expected, 1e-9) << row.name;
    }
}

// Keys: 1 at 1 s, 3 at 2 s.
TEST(fbx_curve, beyondTheKeys)
{
    using kind = fbx_extrapolation;
    const struct
    {
        const char* name;
        fbx_outside rule;
        double seconds;
        double expected;
    } rows[] = {
        {"held", {kind::constant, -1}, 9, 3},
        {"held before", {kind::constant, -1}, -9, 1},
        {"repeat", {kind::repeat, -1}, 3.25, 1.5},
        {"repeat before", {kind::repeat, -1}, 0.75, 2.5},
        {"repeat once", {kind::repeat, 1}, 7.5, 3},
        {"repeat never", {kind::repeat, 0}, 2.25, 3},
        {"mirror", {kind::mirror, -1}, 2.25, 2.5},
        {"mirror, second round", {kind::mirror, -1}, 3.25, 1.5},
        {"mirror before", {kind::mirror, -1}, 0.75, 1.5},
        {"mirror once", {kind::mirror, 1}, 9, 1},
        {"slope", {kind::slope, -1}, 4, 7},
        {"slope before", {kind::slope, -1}, 0, -1},
        {"relative", {kind::repeat_relative, -1}, 3.25, 5.5},
        {"relative before", {kind::repeat_relative, -1}, 0.75, 0.5},
        {"relative twice", {kind::repeat_relative, 2}, 100, 7},
    };
    for (const auto& row : rows)
    {
        fbx_curve curve = makeCurve({{1, 1, flags::linear}, {2, 3, flags::linear}});
        curve.before = curve.after = row.rule;
        EXPECT_NEAR(curve.evaluate(std::llround(row.seconds * tick_rate)), row.expected, 1e-12) << row.name;
    }
}

TEST(fbx_curve, extremeTimesAndNumbersEnd)
{
    using limits = std::numeric_limits<fbx_ticks>;
    for (const std::uint32_t kind : {flags::constant, flags::linear, user, automatic, tcb, 0xffffffffu, 0u})
        for (int rule = 0; rule < 5; ++rule)
        {
            fbx_curve curve = makeCurve({{0, std::nan(""), kind}, {1, 1e308, kind}, {2, -1e308, kind}});
            curve.times.front() = limits::min();
            curve.times.back() = limits::max();
            curve.before = curve.after = {static_cast<fbx_extrapolation>(rule), -1};
            for (const fbx_ticks time : {limits::min(), fbx_ticks(-1), fbx_ticks(0), limits::max()})
                static_cast<void>(curve.evaluate(time));
            curve.times.front() = 0;
            curve.times.back() = 1001;
            static_cast<void>(curve.evaluate(limits::min()) + curve.evaluate(limits::max()));
        }
    EXPECT_EQ(fbx_curve().evaluate(5), 0);
}

} // namespace korvane
