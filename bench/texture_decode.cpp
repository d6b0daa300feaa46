// Decoding DDS pictures of 4096 x 4096 pixels, megapixels a second on all cores: BC7 at least 100, for blocks of every
// mode in turn (random bytes would nearly always be of the first modes).

#include "Korvane/textures/dds_decoder.h"

#include <benchmark/benchmark.h>

#include <vector>

namespace
{

using namespace korvane;

constexpr std::uint32_t size = 4096;

void decode(benchmark::State& state, dds_format format, std::uint32_t block_bytes)
{
    std::vector<std::byte> bytes(std::size_t{size} * size / 16 * block_bytes);
    std::uint32_t random = 1;
    for (std::size_t i = 0; i < bytes.size(); ++i)
    {
        random = random * 1664525u + 1013904223u;
        bytes[i] = static_cast<std::byte>(random >> 24);
        if (format == dds_format::bc7 && i % block_bytes == 0)
            bytes[i] = static_cast<std::byte>(1u << (i / block_bytes % 8));
    }
    dds_image image{format, size, size, 1, 1, false, {}};
    image.subresources.push_back({bytes, size, size, size / 4 * block_bytes, size / 4});
    picture target;
    failure why;
    for (auto _ : state)
        if (!decodeDds(image, target, why))
            state.SkipWithError(why.what.c_str());
    state.counters["megapixels"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * size * size / 1e6, benchmark::Counter::kIsRate);
}

} // namespace

int main(int count, char** values)
{
    const auto add = [](const char* name, dds_format format, std::uint32_t block_bytes) {
        benchmark::RegisterBenchmark(
            name, [format, block_bytes](benchmark::State& state) { decode(state, format, block_bytes); })
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime();
    };
    add("BC1", dds_format::bc1, 8);
    add("BC3", dds_format::bc3, 16);
    add("BC5", dds_format::bc5, 16);
    add("BC6H", dds_format::bc6h_unsigned, 16);
    add("BC7", dds_format::bc7, 16);
    benchmark::Initialize(&count, values);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
