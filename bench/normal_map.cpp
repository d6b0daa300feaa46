// Converting a normal map of 4096 x 4096 pixels against copying its pixels with memcpy into memory that was touched
// before, in the same run. The last lines are the ratios: at most 3 to ORANGE, at most 12 to BLUE, for opaque pixels
// and for random ones; and what the whole way from the bytes of a Targa file to those of another one costs.

#include "Korvane/textures/normal_map.h"
#include "Korvane/textures/targa.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>

namespace
{

using namespace korvane;

constexpr std::uint32_t size = 4096;

picture randomPicture()
{
    picture image(size, size);
    std::uint32_t state = 1;
    for (rgba_pixel& pixel : image.pixels())
    {
        state = state * 1664525u + 1013904223u;
        pixel = state ^ state >> 15;
    }
    return image;
}

double best[5] = {1e9, 1e9, 1e9, 1e9, 1e9};

template <class operation>
void measure(benchmark::State& state, double& seconds, const operation& work)
{
    for (auto _ : state)
    {
        const auto begin = std::chrono::steady_clock::now();
        work();
        benchmark::ClobberMemory();
        seconds = std::min(seconds, std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
    }
    state.SetBytesProcessed(state.iterations() * std::int64_t{size} * size * 4);
}

} // namespace

int main(int count, char** values)
{
    picture image = randomPicture();
    picture copy = randomPicture();
    memory_file file;
    failure why;
    if (!writeTarga(image, file, why))
        return 1;
    const auto add = [](const char* name, double& seconds, auto work) {
        benchmark::RegisterBenchmark(name, [&seconds, work](benchmark::State& state) { measure(state, seconds, work); })
            ->Unit(benchmark::kMillisecond)
            ->Iterations(10);
    };
    add("copy", best[0],
        [&] { std::memcpy(copy.pixels().data(), image.pixels().data(), image.pixels().size_bytes()); });
    add("to blue", best[1], [&] { toBlue(copy.pixels()); });
    add("to orange", best[2], [&] { toOrange(image.pixels()); });
    const auto wholeWay = [&](normal_form form) {
        return [&file, form] {
            picture read;
            memory_file written;
            failure reason;
            if (readTarga(file.bytes(), read, reason))
                convertNormals(read.pixels(), form);
            benchmark::DoNotOptimize(writeTarga(read, written, reason));
        };
    };
    add("file to orange", best[3], wholeWay(normal_form::orange));
    add("file to blue", best[4], wholeWay(normal_form::blue));
    benchmark::Initialize(&count, values);
    benchmark::RunSpecifiedBenchmarks();
    std::printf("to orange / copy = %.2f, to blue / copy = %.2f; from file to file: %.2f and %.2f\n", best[2] / best[0],
                best[1] / best[0], best[3] / best[0], best[4] / best[0]);
    return 0;
}
