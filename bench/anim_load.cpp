// Loading an animation of 100 bones and 10,000 frames from the disk against copying its decoded bytes (28 for each bone
// and frame) with memcpy in the same run, both into fresh memory (at most 3 times). The last line is the ratio; the one
// into memory that was touched before is harder, and there for comparison.

#include "Korvane/animation/anim_file.h"
#include "tests/support/anim_builder.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <memory>
#include <string>

namespace
{

using namespace korvane;
using clock_type = std::chrono::steady_clock;

constexpr std::uint32_t bone_count = 100;
constexpr std::uint32_t frame_count = 10000;
constexpr std::size_t decoded_size = std::size_t{bone_count} * frame_count * (sizeof(glm::vec3) + sizeof(glm::quat));

const std::string path = (std::filesystem::temp_directory_path() / "korvane_bench_take.anim").string();

struct figures // the best of each, in seconds
{
    double load = 1e9, copy = 1e9, warm_copy = 1e9;
} best;

void keep(double& least, const clock_type::time_point& begin)
{
    least = std::min(least, std::chrono::duration<double>(clock_type::now() - begin).count());
}

void writeTake()
{
    test::test_anim source;
    source.bones.assign(bone_count, {"bone", -1});
    source.translation_map.resize(bone_count);
    source.rotation_map.resize(bone_count);
    source.translation_count = source.rotation_count = bone_count;
    source.frame_count = frame_count;
    test::test_anim_frame frame;
    for (std::uint32_t bone = 0; bone < bone_count; ++bone)
    {
        const float number = static_cast<float>(bone);
        frame.translations.push_back({number, -number, 0.5f});
        frame.rotations.push_back({static_cast<std::int16_t>(bone * 300), -5000, 12345, 30000});
    }
    source.frames.assign(frame_count, frame);
    std::ofstream(path, std::ios::binary) << source.bytes();
}

void copyOnce(const std::string& source, char* warm)
{
    malloc_trim(0);
    const auto begin = clock_type::now();
    const large_memory target = allocateLarge(source.size());
    std::memcpy(target.get(), source.data(), source.size());
    benchmark::DoNotOptimize(target.get());
    benchmark::ClobberMemory();
    keep(best.copy, begin);

    const auto second = clock_type::now();
    std::memcpy(warm, source.data(), source.size());
    benchmark::ClobberMemory();
    keep(best.warm_copy, second);
}

// In turns, so that whatever else the machine does at times strikes both.
void loadAndCopy(benchmark::State& state)
{
    writeTake();
    const std::string source(decoded_size, 'x');
    const auto warm = std::make_unique<char[]>(decoded_size);
    for (auto _ : state)
    {
        copyOnce(source, warm.get());
        malloc_trim(0);
        const auto begin = clock_type::now();
        anim_file file;
        failure why;
        if (!file.loadAnimation(path, why))
            return state.SkipWithError(describe(why).c_str());
        keep(best.load, begin);
        benchmark::DoNotOptimize(file.data().rotations.data());
    }
}

BENCHMARK(loadAndCopy)->Unit(benchmark::kMillisecond)->Iterations(50);

} // namespace

int main(int count, char** values)
{
    mallopt(M_MMAP_THRESHOLD, 1 << 20); // large blocks come fresh from the system every time
    benchmark::Initialize(&count, values);
    benchmark::RunSpecifiedBenchmarks();
    std::printf("load / copy = %.2f (into touched memory %.2f): %.1f ms\n", best.load / best.copy,
                best.load / best.warm_copy, best.load * 1e3);
    std::filesystem::remove(path);
    return 0;
}
