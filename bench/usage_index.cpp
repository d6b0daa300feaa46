// Finding what 30,000 models name against raw positioned reads of the same bytes, in the same run (at most 3 times),
// and opening the kept index (below 50 ms). The last lines are the figures.

#include "Korvane/game/usage_index.h"
#include "Korvane/models/model_names.h"
#include "bench/entered_packs.h"
#include "bench/pack_corpus.h"
#include "tests/support/model_builder.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>

namespace
{

using namespace korvane;
using bench::secondsSince;
using clock_type = std::chrono::steady_clock;

constexpr std::size_t archive_count = 30;
constexpr std::size_t models_per_archive = 1000;

struct figures // the best of each, in seconds
{
    double raw = 1e9, index = 1e9, load = 1e9;
    std::size_t reads = 0, bytes = 0, kept = 0;
} best;

void require(bool is_right)
{
    if (!is_right)
        std::abort();
}

// Four levels with three groups each, vertices between them, five textures a group out of 40,000.
std::string modelBytes(std::size_t number)
{
    test::test_model model;
    model.lods.clear();
    for (std::uint32_t lod = 0; lod < 4; ++lod)
    {
        test::test_group group;
        group.vertex_count = 600u >> lod;
        group.vertices.assign(group.stride * group.vertex_count, '\x40');
        model.lods.emplace_back();
        for (std::size_t i = 0; i < 3; ++i)
        {
            group.textures.clear();
            for (const std::uint32_t type : {0u, 1u, 11u, 12u, 3u})
                group.textures.push_back({type, "variantmeshes/wh_variantmodels/hu1/unit_" +
                                                    std::to_string((number * 3 + i) % 8000) + "/tex/part_" +
                                                    std::to_string(type) + ".dds"});
            model.lods.back().push_back(group);
        }
    }
    return model.bytes();
}

class model_corpus : public bench::entered_packs
{
public:
    model_corpus() : entered_packs("korvane_bench_usage")
    {
        for (std::size_t i = 0; i < archive_count; ++i)
        {
            test::test_pack pack;
            for (std::size_t k = 0; k < models_per_archive; ++k)
                pack.entries.push_back({"variantmeshes\\wh_variantmodels\\unit_" + std::to_string(i) + "\\model_" +
                                            std::to_string(k) + ".rigid_model_v2",
                                        modelBytes(i * models_per_archive + k)});
            add("data_" + std::to_string(i) + ".pack", pack);
        }
        game = game_data(tree());
    }

    std::string storePath() const { return (folder() / "usage.cache").string(); }
    game_data game;
};

const model_corpus* corpus = nullptr;

struct part
{
    const pack_file_node* file;
    std::uint64_t position;
    std::size_t size;
};

std::vector<part> partsRead()
{
    std::vector<part> parts;
    model_name_reader reader;
    model_names names;
    failure why;
    for (const std::span<const pack_file_node>& files : corpus->tree()->entries())
        for (const pack_file_node& file : files)
            require(reader.read(
                file.size(),
                [&](std::uint64_t position, std::span<std::byte> target) {
                    parts.push_back({&file, position, target.size()});
                    best.bytes += target.size();
                    return file.archive().file.readAt(file.offset() + position, target);
                },
                names, why));
    best.reads = parts.size();
    return parts;
}

void readRaw(benchmark::State& state)
{
    const std::vector<part> parts = partsRead();
    std::vector<std::byte> buffer(1 << 20);
    for (auto _ : state)
    {
        const auto begin = clock_type::now();
        for (const part& each : parts)
            require(each.file->archive().file.readAt(each.file->offset() + each.position,
                                                     std::span(buffer).first(each.size)));
        best.raw = std::min(best.raw, secondsSince(begin));
    }
}

void index(benchmark::State& state)
{
    for (auto _ : state)
    {
        bool is_whole = false;
        const auto begin = clock_type::now();
        const usage_index made = indexUsage(corpus->game, {}, {}, is_whole);
        best.index = std::min(best.index, secondsSince(begin));
        require(is_whole && made.damaged().empty() && made.fileCount() == archive_count * models_per_archive);
    }
}

void load(benchmark::State& state)
{
    bool is_whole = false;
    failure why;
    const usage_store store(corpus->storePath());
    require(store.write(indexUsage(corpus->game, {}, {}, is_whole), why));
    best.kept = std::filesystem::file_size(store.path());
    for (auto _ : state)
    {
        const auto begin = clock_type::now();
        const usage_index kept = store.load(why);
        best.load = std::min(best.load, secondsSince(begin));
        require(kept.fileCount() == archive_count * models_per_archive);
    }
}

BENCHMARK(readRaw)->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(index)->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(load)->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace

int main(int count, char** values)
{
    benchmark::Initialize(&count, values);
    const model_corpus made;
    corpus = &made;
    benchmark::RunSpecifiedBenchmarks();
    std::printf("30,000 models: %zu reads of %zu KiB, raw %.0f ms; indexed in %.0f ms: %.2f of it\n", best.reads,
                best.bytes / 1024, best.raw * 1e3, best.index * 1e3, best.index / best.raw);
    std::printf("the kept index: %zu KiB, opened in %.1f ms\n", best.kept / 1024, best.load * 1e3);
    return 0;
}
