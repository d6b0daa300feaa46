#include "Korvane/viewer/key_table.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

namespace korvane
{

namespace
{

TEST(view_state, keysScaleOrStepTheirValue)
{
    const struct
    {
        const char* name;
        unsigned key;
        float (*value)(const view_state&);
        float factor; // new = old * factor + step
        float step;
    } rows[] = {
        {"Page Up", 33, [](const view_state& v) { return v.lights[0].base.ambientFactor; }, 1.04f, 0},
        {"Right", 39, [](const view_state& v) { return v.lights[0].base.roughnessFactor; }, 1.005f, 0},
        {"A", 'A', [](const view_state& v) { return v.eye.yaw; }, 1, 0.06f},
        {"Q", 'Q', [](const view_state& v) { return v.eye.distance; }, 1, 0.1f},
        {"Numpad 8", 104, [](const view_state& v) { return v.lights[1].point.position.y; }, 1, -0.05f},
        {"Numpad 1", 97, [](const view_state& v) { return v.lights[1].point.position.z; }, 1, 0.05f},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.name);
        view_state view;
        float expected = row.value(view);
        for (int press = 0; press < 3; ++press)
        {
            EXPECT_TRUE(view.onKey(row.key));
            expected = expected * row.factor + row.step;
            EXPECT_NEAR(row.value(view), expected, 1e-5f);
        }
    }
}

// What keys change by steps.
std::vector<float> steppedValues(const view_state& view)
{
    const gpu_light& light = view.lights[0].base;
    const glm::vec3& point = view.lights[1].point.position;
    return {light.ambientFactor,
            light.radiannce,
            light.roughnessFactor,
            light.specularFactor,
            view.eye.yaw,
            view.eye.distance,
            point.x,
            point.y,
            point.z};
}

TEST(view_state, oppositeKeysUndoEachOther)
{
    const std::pair<unsigned, unsigned> up_and_down[] = {{33, 34},   {36, 35},   {39, 37},  {38, 40}, {'D', 'A'},
                                                         {'Q', 'E'}, {102, 100}, {98, 104}, {97, 103}};
    for (const auto& [up, down] : up_and_down)
    {
        SCOPED_TRACE(up);
        view_state view;
        const std::vector<float> before = steppedValues(view);
        ASSERT_TRUE(view.onKey(up));
        const std::vector<float> between = steppedValues(view);
        ASSERT_TRUE(view.onKey(down));
        const std::vector<float> after = steppedValues(view);
        int changed = 0, grown = 0;
        for (std::size_t i = 0; i < before.size(); ++i)
        {
            changed += between[i] != before[i] ? 1 : 0;
            grown += between[i] > before[i] ? 1 : 0;
            EXPECT_NEAR(after[i], before[i], 0.01f);
        }
        EXPECT_EQ(changed, 1);
        EXPECT_EQ(grown, up == 'D' ? 0 : 1);
    }
}

TEST(view_state, drawModeSetsTheFrameLimit)
{
    view_state view;
    EXPECT_TRUE(view.onKey('C'));
    EXPECT_TRUE(view.is_wireframe);
    EXPECT_EQ(view.frame_limit, 1u);
    EXPECT_TRUE(view.onKey('C'));
    EXPECT_FALSE(view.is_wireframe);
    EXPECT_EQ(view.frame_limit, 0xFFFF000u);
}

TEST(view_state, resetRestoresLightAndOffsetButNeitherAngleNorDistance)
{
    view_state view;
    for (const unsigned key : {33u, 36u, 38u, 39u, unsigned{'A'}, unsigned{'Q'}})
        view.onKey(key);
    view.onShift(30, 40, 720);
    view.lights[0].base.diffuseFactor = 2;
    const float yaw = view.eye.yaw;
    const float distance = view.eye.distance;
    view.onKey('R');
    const gpu_light& light = view.lights[0].base;
    for (const float factor :
         {light.radiannce, light.ambientFactor, light.diffuseFactor, light.specularFactor, light.roughnessFactor})
        EXPECT_EQ(factor, 1.0f);
    EXPECT_EQ(view.eye.offset, glm::vec3(0));
    EXPECT_EQ(view.eye.yaw, yaw);
    EXPECT_EQ(view.eye.distance, distance);
}

TEST(view_state, keysOutsideTheRangeDoNothing)
{
    for (const unsigned key : {0u, 9u, 26u, 105u, 112u, 255u})
    {
        view_state view;
        EXPECT_FALSE(view.onKey(key)) << key;
    }
}

TEST(view_state, pointLightsReachTheShaderOnlyWhenTheyAreOn)
{
    view_state view;
    view.lights[1].point.position = glm::vec3(9);
    view.lights[0].point.is_active = true;
    view.setLightDefaults();
    mvp_buffer vs;
    light_buffer ps;
    view.fill(1.5f, vs, ps);
    EXPECT_EQ(ps.light[0].point_range, 0.0f);
    EXPECT_EQ(ps.light[1].point_range, 100.0f);
    EXPECT_EQ(ps.light[1].point_position, (gpu_float3{1, 1, -1}));
    EXPECT_EQ(ps.light[1].point_attenuation, (gpu_float3{0, 0.2f, 0}));
    EXPECT_EQ(ps.light[1].point_color, (gpu_float4{1, 1, 1, 1}));

    view.onKey('3');
    view.onKey('P');
    view.onKey('T');
    view.fill(1.5f, vs, ps);
    EXPECT_EQ(ps.debug_flags[0], 3);
    EXPECT_EQ(ps.debug_flags[1], 1);
    EXPECT_EQ(ps.show_reflections, 0);
}

TEST(key_table, everyKeyIsInTheDocumentation)
{
    std::ifstream file(KORVANE_SHADER_FOLDER "/../docs/viewer.md");
    const std::string text(std::istreambuf_iterator<char>(file), {});
    for (const view_key& key : viewKeys())
    {
        const std::string row = key.name ? "| " + std::string(key.name) + " | " + key.help + " |" : "";
        EXPECT_NE(text.find(row), std::string::npos) << row;
    }
}

} // namespace

} // namespace korvane
