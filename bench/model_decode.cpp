// Opening a 256 MiB model against copying as many bytes as go in and come out, with memcpy, in the same run: once into
// freshly allocated memory, which opening needs as well, and once into memory that was touched before, which is harder
// (at most 3 for either). The last lines are the ratios and the peak memory beyond the file and the decoded model (at
// most 16 MiB).

#include "Korvane/models/rmv2_file.h"
#include "tests/support/model_builder.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <map>
#include <memory>
#include <string>

namespace
{

using namespace korvane;

constexpr std::size_t group_count = 64;
constexpr std::size_t vertices_per_group = 128 * 1024;
constexpr std::size_t stride = 32;

std::string largeModel(std::uint16_t format)
{
    test::test_group group;
    group.vertex_format = format;
    group.stride = stride;
    group.vertex_count = vertices_per_group;
    group.vertices.resize(vertices_per_group * stride);
    std::uint32_t state = 1;
    for (char& byte : group.vertices)
    {
        state = state * 1664525u + 1013904223u;
        byte = static_cast<char>(static_cast<unsigned char>(state >> 24));
    }
    group.indices.assign(3 * 1024, 1);
    test::test_model model;
    model.lods = {std::vector<test::test_group>(group_count, group)};
    return model.bytes();
}

std::size_t decodedBytes(const rmv2_file& model)
{
    std::size_t size = 0;
    for (const lod_data& lod : model.data().lods)
        for (const group_data& group : lod.groups)
            size += group.store.vertices.size() * sizeof(vertex_record) + group.store.indices.size() * 2;
    return size;
}

// A number of /proc/self/status in bytes: "VmHWM", "VmRSS".
std::size_t statusBytes(const std::string& key)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.rfind(key + ":", 0) == 0)
            return std::stoul(line.substr(key.size() + 1)) * 1024;
    return 0;
}

void resetPeak()
{
    std::ofstream("/proc/self/clear_refs") << "5";
}

struct figures
{
    double copy_seconds = 1e9;
    double warm_copy_seconds = 1e9;
    double open_seconds = 1e9;
    std::size_t extra_memory = 0;
};

const std::string path = (std::filesystem::temp_directory_path() / "korvane_bench_model.rigid_model_v2").string();
std::size_t input_size = 0;              // of the model written last
std::map<std::int64_t, figures> results; // by vertex format

constexpr std::size_t output_size = group_count * (vertices_per_group * sizeof(vertex_record) + 3 * 1024 * 2);

double secondsSince(const std::chrono::steady_clock::time_point& begin)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

void openModel(benchmark::State& state)
{
    {
        const std::string bytes = largeModel(static_cast<std::uint16_t>(state.range(0)));
        input_size = bytes.size();
        std::ofstream(path, std::ios::binary) << bytes;
    }
    figures& result = results[state.range(0)];
    for (auto _ : state)
    {
        malloc_trim(0);
        resetPeak();
        const std::size_t before = statusBytes("VmRSS");
        const auto begin = std::chrono::steady_clock::now();
        rmv2_file model;
        failure why;
        if (!model.open(path, why))
            return state.SkipWithError(describe(why).c_str());
        result.open_seconds = std::min(result.open_seconds, secondsSince(begin));
        const std::size_t used = statusBytes("VmHWM") - before;
        result.extra_memory = std::max(result.extra_memory, used - std::min(used, input_size + decodedBytes(model)));
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(input_size + output_size));
}

void copyBytes(benchmark::State& state)
{
    const std::string source(input_size + output_size, 'x');
    figures& result = results[state.range(0)];
    const auto warm = std::make_unique<char[]>(source.size());
    for (auto _ : state)
    {
        const auto begin = std::chrono::steady_clock::now();
        const large_memory target = allocateLarge(source.size());
        std::memcpy(target.get(), source.data(), source.size());
        benchmark::DoNotOptimize(target.get());
        benchmark::ClobberMemory();
        result.copy_seconds = std::min(result.copy_seconds, secondsSince(begin));

        const auto second = std::chrono::steady_clock::now();
        std::memcpy(warm.get(), source.data(), source.size());
        benchmark::ClobberMemory();
        result.warm_copy_seconds = std::min(result.warm_copy_seconds, secondsSince(second));
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(source.size()));
}

} // namespace

int main(int count, char** values)
{
    benchmark::Initialize(&count, values);
    for (const std::int64_t format : {0, 3, 4})
    {
        benchmark::RegisterBenchmark("open", openModel)->Arg(format)->Unit(benchmark::kMillisecond)->Iterations(5);
        benchmark::RegisterBenchmark("copy", copyBytes)->Arg(format)->Unit(benchmark::kMillisecond)->Iterations(5);
    }
    benchmark::RunSpecifiedBenchmarks();
    for (const auto& [format, result] : results)
        std::printf("format %d: open / copy = %.2f (into touched memory %.2f), memory beyond file and decoded model "
                    "%.1f MiB\n",
                    static_cast<int>(format), result.open_seconds / result.copy_seconds,
                    result.open_seconds / result.warm_copy_seconds,
                    static_cast<double>(result.extra_memory) / (1024.0 * 1024.0));
    std::filesystem::remove(path);
    return 0;
}
