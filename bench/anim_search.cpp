// Finding the animations of a skeleton among 50,000 in 50 archives against a raw loop of positioned reads of their
// headers, in the same run (at most 2 times). The last line is the ratio.

#include "Korvane/animation/anim_search.h"
#include "EASY_GUI/services/positioned_file.h"
#include "bench/entered_packs.h"
#include "tests/support/anim_builder.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace
{

using namespace korvane;
using clock_type = std::chrono::steady_clock;

constexpr std::size_t archive_count = 50;
constexpr std::size_t animations_per_archive = 1000;
constexpr std::size_t header_size = 32; // version to the bone count

struct figures // the best of each, in seconds
{
    double raw = 1e9, search = 1e9, first = 1e9, pieces = 1e9;
} best;

void keep(double& least, const clock_type::time_point& begin)
{
    least = std::min(least, std::chrono::duration<double>(clock_type::now() - begin).count());
}

void require(bool is_right)
{
    if (!is_right)
        std::abort();
}

class anim_corpus : public bench::entered_packs
{
public:
    anim_corpus() : entered_packs("korvane_bench_anims")
    {
        test::test_anim source;
        source.frame_count = 60; // some kilobytes each, as short animations have
        source.frames.assign(source.frame_count, source.frames[0]);
        for (std::size_t i = 0; i < archive_count; ++i)
        {
            test::test_pack pack;
            for (std::size_t k = 0; k < animations_per_archive; ++k)
            {
                source.skeleton_name = k % 10 == 0 ? "humanoid01" : "humanoid02";
                pack.entries.push_back(
                    {"animations\\battle\\unit_" + std::to_string(i) + "\\walk_" + std::to_string(k) + ".anim",
                     source.bytes()});
            }
            add("data_" + std::to_string(i) + ".pack", pack);
        }
    }
};

const anim_corpus* corpus = nullptr;

struct place
{
    const positioned_file* file;
    std::uint64_t offset;
};

void rawReads(const std::vector<place>& places)
{
    const auto begin = clock_type::now();
    std::array<std::byte, header_size> header;
    for (const place& at : places)
    {
        require(at.file->readAt(at.offset, header));
        benchmark::DoNotOptimize(header.data());
    }
    keep(best.raw, begin);
}

void searchAll()
{
    const auto begin = clock_type::now();
    entry_list found;
    failure why;
    require(findAnimations(animationCandidates(*corpus->tree()), "humanoid01", found, why));
    keep(best.search, begin);
    require(found.size() == archive_count * animations_per_archive / 10);
}

void searchInPieces()
{
    const auto begin = clock_type::now();
    std::size_t found = 0;
    const auto take = [&](const entry_list& more, std::size_t, std::size_t) {
        if (found == 0 && !more.empty())
            keep(best.first, begin);
        found += more.size();
    };
    require(listCompatible(*corpus->tree(), "humanoid01", take).unreadable == 0);
    keep(best.pieces, begin);
    require(found == archive_count * animations_per_archive / 10);
}

// In turns, so that whatever else the machine does at times strikes all.
void readAndSearch(benchmark::State& state)
{
    std::vector<place> places;
    for (const auto& entries : corpus->tree()->entries())
        for (const pack_file_node& entry : entries)
            places.push_back({&entry.archive().file, entry.offset()});
    require(places.size() == archive_count * animations_per_archive);
    for (auto _ : state)
    {
        rawReads(places);
        searchAll();
        searchInPieces();
    }
}

BENCHMARK(readAndSearch)->Unit(benchmark::kMillisecond)->Iterations(40);

} // namespace

int main(int count, char** values)
{
    benchmark::Initialize(&count, values);
    const anim_corpus made;
    corpus = &made;
    benchmark::RunSpecifiedBenchmarks();
    std::printf(
        "search / raw reads = %.2f (%.1f ms); in pieces, as for a dialog, %.2f of the search (%.1f ms), the first "
        "of them after %.1f ms\n",
        best.search / best.raw, best.search * 1e3, best.pieces / best.search, best.pieces * 1e3, best.first * 1e3);
    return 0;
}
