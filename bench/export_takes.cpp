// Exporting one model with many animations: four groups of 50,000 triangles on 80 bones, takes of 100 frames that move
// every bone. A first file is made from the decoded model on; each further one uses what does not depend on its take
// again. The last lines are what a further file takes against the first (at most a third), without writing to the disk.

#include "Korvane/fbx/export/dae_export.h"
#include "Korvane/fbx/export/export_scene.h"
#include "Korvane/fbx/export/fbx_export.h"
#include "tests/fbx/export_fixtures.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <memory>

namespace
{

using namespace korvane;

constexpr std::uint32_t bone_count = 80, frame_count = 100, columns = 160, rows = 156, group_count = 4;

anim_data madeSkeleton()
{
    std::vector<anim_bone> bones;
    for (std::uint32_t i = 0; i < bone_count; ++i)
        bones.push_back(
            test::bone("bone_" + std::to_string(i), static_cast<std::int32_t>(i) - 1, {0.01f, 0.02f, 0.001f}));
    return test::skeletonOf(std::move(bones));
}

std::shared_ptr<const anim_data> madeAnimation()
{
    auto data = std::make_shared<anim_data>(madeSkeleton());
    data->frame_rate = 20;
    data->frame_count = frame_count;
    data->rotation_count = bone_count;
    for (std::uint32_t i = 0; i < bone_count; ++i)
        data->animated_rotations.push_back(i);
    for (std::uint32_t i = 0; i < frame_count * bone_count; ++i)
    {
        const float angle = 0.3f * std::sin(0.013f * static_cast<float>(i));
        data->rotations.push_back(glm::angleAxis(angle, glm::normalize(glm::vec3(1, std::cos(angle), 0.5f))));
    }
    return data;
}

RMV2_FILE_DATA madeModel()
{
    std::vector<group_data> groups;
    for (std::uint32_t number = 0; number < group_count; ++number)
    {
        std::vector<test::test_vertex> vertices;
        std::vector<std::uint16_t> indices;
        for (std::uint32_t i = 0; i < columns * rows; ++i)
        {
            const float around = 0.0393f * static_cast<float>(i % columns),
                        up = 0.01f * static_cast<float>(i / columns);
            const float radius = 1 + 0.1f * std::sin(7 * around) * std::cos(11 * up) + static_cast<float>(number);
            const std::uint32_t bone = i / columns % (bone_count - 1);
            vertices.push_back(
                {{radius * std::cos(around), up, radius * std::sin(around)}, {{bone, 0.625f}, {bone + 1, 0.375f}}});
            if (i % columns + 1 == columns || i / columns + 1 == rows)
                continue;
            for (const std::uint32_t corner : {i, i + columns, i + 1, i + 1, i + columns, i + columns + 1})
                indices.push_back(static_cast<std::uint16_t>(corner));
        }
        groups.push_back(test::groupOf("group", vertices, std::move(indices)));
    }
    return test::modelOfGroups(std::move(groups));
}

std::size_t sizeOf(fbx_export& exporter, const export_take& take)
{
    return exporter.file(&take).size();
}

std::size_t sizeOf(const dae_export& exporter, const export_take& take)
{
    return exporter.text(&take).size();
}

struct figures
{
    double first_seconds = 1e9, further_seconds = 1e9;
    std::size_t bytes = 0;
};

double secondsSince(const std::chrono::steady_clock::time_point& begin)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

template <class exporter_type>
void exportTwice(benchmark::State& state, figures& result)
{
    const RMV2_FILE_DATA model = madeModel();
    const anim_data skeleton = madeSkeleton();
    const auto animation = madeAnimation();
    for (auto _ : state)
    {
        auto begin = std::chrono::steady_clock::now();
        export_scene scene;
        export_take take;
        failure why;
        if (!addBones(skeleton, scene, why) || !addMeshes(model, 0, scene, why) ||
            !makeTake(animation, skeleton, take_span::half, take, why))
            return state.SkipWithError(describe(why).c_str());
        exporter_type exporter(scene, {});
        result.bytes = sizeOf(exporter, take);
        result.first_seconds = std::min(result.first_seconds, secondsSince(begin));
        begin = std::chrono::steady_clock::now();
        if (!makeTake(animation, skeleton, take_span::full, take, why))
            return state.SkipWithError(describe(why).c_str());
        benchmark::DoNotOptimize(sizeOf(exporter, take));
        result.further_seconds = std::min(result.further_seconds, secondsSince(begin));
    }
}

void show(const char* name, const figures& result)
{
    std::printf("%s of %.1f MB: first %.1f ms, further %.1f ms; further / first = %.2f\n", name,
                static_cast<double>(result.bytes) / 1e6, 1e3 * result.first_seconds, 1e3 * result.further_seconds,
                result.further_seconds / result.first_seconds);
}

} // namespace

int main(int count, char** values)
{
    benchmark::Initialize(&count, values);
    figures fbx, dae;
    benchmark::RegisterBenchmark("fbx", [&fbx](benchmark::State& state) { exportTwice<fbx_export>(state, fbx); })
        ->Unit(benchmark::kMillisecond)
        ->Iterations(10);
    benchmark::RegisterBenchmark("dae", [&dae](benchmark::State& state) { exportTwice<dae_export>(state, dae); })
        ->Unit(benchmark::kMillisecond)
        ->Iterations(5);
    benchmark::RunSpecifiedBenchmarks();
    show("FBX", fbx);
    show("Collada", dae);
    return 0;
}
