// Indexing a million files in a hundred archives against a plain scan for terminators over the same index bytes, in the
// same run (at most 12 times), the memory of the tree (at most 160 bytes an entry beyond the path text), random lookups
// (at least 3 million a second), start-up from the cache against indexing (at most half), reading the first 64 bytes of
// 50,000 files against a raw loop of positioned reads (at most 1.5 times), and looking for a text in all paths (below
// 50 ms, the first rows within a frame).

#include "EASY_GUI/services/positioned_file.h"
#include "Korvane/archives/archive_indexing.h"
#include "Korvane/archives/pack_cache.h"
#include "Korvane/archives/pack_entry.h"
#include "Korvane/archives/path_search.h"
#include "bench/pack_corpus.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <malloc.h>
#include <string_view>
#include <utility>

namespace
{

using namespace korvane;
using bench::secondsSince;
using clock_type = std::chrono::steady_clock;

constexpr std::size_t read_count = 50000;
constexpr std::size_t start_size = 64;
constexpr std::size_t rows_on_screen = 50;

const bench::pack_corpus* corpus = nullptr;

struct figures // the best of each run, in seconds
{
    double scan = 1e9, index = 1e9, cache_write = 1e9, cache_load = 1e9, raw_reads = 1e9, reads = 1e9;
    double order = 1e9, first_rows = 1e9, filter = 1e9, pattern = 1e9;
    double lookups_per_second = 0;
    double bytes_per_entry = 0;
    std::size_t cache_bytes = 0;
} best;

void keep(double& least, const clock_type::time_point& begin)
{
    least = std::min(least, secondsSince(begin));
}

void require(bool is_right)
{
    if (!is_right)
        std::abort();
}

void scanTerminators(benchmark::State& state)
{
    for (auto _ : state)
    {
        const auto begin = clock_type::now();
        std::size_t count = 0;
        for (const std::string& index : corpus->indexes())
            for (std::size_t at = 0; at < index.size(); ++count)
            {
                at += 5;
                const void* const end = std::memchr(index.data() + at, 0, index.size() - at);
                at = static_cast<std::size_t>(static_cast<const char*>(end) - index.data()) + 1;
            }
        benchmark::DoNotOptimize(count);
        keep(best.scan, begin);
    }
}

indexed_archives indexAll()
{
    indexed_archives indexed;
    require(korvane::indexArchives(corpus->archives(), {}, indexed) &&
            indexed.tree->entryCount() == corpus->paths().size());
    return indexed;
}

void indexArchives(benchmark::State& state)
{
    std::size_t text = 0;
    for (const std::string& path : corpus->paths())
        text += path.size();
    for (auto _ : state)
    {
        malloc_trim(0);
        const struct mallinfo2 before = mallinfo2();
        const auto begin = clock_type::now();
        const indexed_archives indexed = indexAll();
        keep(best.index, begin);
        const struct mallinfo2 after = mallinfo2();
        const std::size_t used = after.uordblks + after.hblkhd - before.uordblks - before.hblkhd;
        best.bytes_per_entry = static_cast<double>(used - text) / static_cast<double>(corpus->paths().size());
    }
}

void loadFromCache(benchmark::State& state)
{
    const pack_cache cache((corpus->folder() / "packs.cache").string());
    failure why;
    const indexed_archives indexed = indexAll();
    const auto write_begin = clock_type::now();
    require(cache.write(indexed, why));
    keep(best.cache_write, write_begin);
    best.cache_bytes = std::filesystem::file_size(cache.path());
    for (auto _ : state)
    {
        const auto begin = clock_type::now();
        indexed_archives loaded;
        require(cache.load(corpus->archives(), loaded, why));
        keep(best.cache_load, begin);
        require(loaded.tree->entryCount() == corpus->paths().size() && loaded.tree->find(corpus->paths().back()));
    }
}

void lookUp(benchmark::State& state)
{
    const std::shared_ptr<path_tree> tree = indexAll().tree;
    // In random order; the keys lie one behind the other, so that they are in the cache, as a path that somebody just
    // wrote is.
    std::vector<std::string> shuffled = corpus->paths();
    std::uint64_t random = 1;
    for (std::size_t i = shuffled.size(); i-- > 1;)
    {
        random = random * 6364136223846793005u + 1442695040888963407u;
        std::swap(shuffled[i], shuffled[(random >> 33) % (i + 1)]);
    }
    std::string keys;
    for (const std::string& path : shuffled)
        keys += path;
    std::vector<std::string_view> wanted;
    std::size_t begin_of_key = 0;
    for (const std::string& path : shuffled)
        wanted.push_back(
            std::string_view(keys).substr(std::exchange(begin_of_key, begin_of_key + path.size()), path.size()));
    for (auto _ : state)
    {
        const auto begin = clock_type::now();
        for (const std::string_view& path : wanted)
            require(tree->find(path) != nullptr);
        best.lookups_per_second =
            std::max(best.lookups_per_second, static_cast<double>(wanted.size()) / secondsSince(begin));
    }
}

// Both in the archives' order, every twentieth file.
void readStarts(benchmark::State& state)
{
    const std::shared_ptr<path_tree> tree = indexAll().tree;
    std::vector<const pack_file_node*> files;
    for (const std::span<const pack_file_node>& each : tree->entries())
        for (std::size_t i = 0; i < each.size() && files.size() < read_count; i += 20)
            files.push_back(&each[i]);
    require(files.size() == read_count);
    std::array<std::byte, start_size> bytes;
    for (auto _ : state)
    {
        const auto raw_begin = clock_type::now();
        for (const pack_file_node* file : files)
            require(file->archive().file.readAt(file->offset(), bytes));
        keep(best.raw_reads, raw_begin);
        const auto begin = clock_type::now();
        for (const pack_file_node* file : files)
        {
            std::size_t count = 0;
            failure why;
            require(readEntryStart(*file, bytes, count, why) && count == start_size);
        }
        keep(best.reads, begin);
    }
}

void filterPaths(benchmark::State& state)
{
    const std::shared_ptr<path_tree> tree = indexAll().tree;
    for (auto _ : state)
    {
        const auto order_begin = clock_type::now();
        path_search search(tree);
        keep(best.order, order_begin);
        for (const char* text : {"unit_12345", "sh*d_n*99", "ARMOUR", "no such text"})
        {
            search.find({});
            search.find({text});
            const auto begin = clock_type::now();
            while (search.hitCount() < rows_on_screen && search.advance(1000))
            {
            }
            if (std::string_view(text) == "ARMOUR")
                keep(best.first_rows, begin);
            while (search.advance(500000))
            {
            }
            if (std::string_view(text) == "unit_12345")
                keep(best.filter, begin);
            if (std::string_view(text) == "sh*d_n*99")
                keep(best.pattern, begin);
            benchmark::DoNotOptimize(search.hitCount());
        }
    }
}

BENCHMARK(scanTerminators)->Unit(benchmark::kMillisecond)->Iterations(10);
BENCHMARK(indexArchives)->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(loadFromCache)->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(lookUp)->Unit(benchmark::kMillisecond)->Iterations(10);
BENCHMARK(readStarts)->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(filterPaths)->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace

int main(int count, char** values)
{
    // Large blocks always come fresh from the system, as at a program's start, not from what an earlier run gave back.
    mallopt(M_MMAP_THRESHOLD, 1 << 20);
    benchmark::Initialize(&count, values);
    const bench::pack_corpus made(start_size);
    corpus = &made;
    benchmark::RunSpecifiedBenchmarks();
    std::printf("index / scan = %.1f, %.0f bytes an entry beyond its path\n", best.index / best.scan,
                best.bytes_per_entry);
    std::printf("cache / index = %.2f (%.0f ms; written in %.0f ms, %.0f MiB)\n", best.cache_load / best.index,
                best.cache_load * 1e3, best.cache_write * 1e3, static_cast<double>(best.cache_bytes) / (1 << 20));
    std::printf("%.1f million lookups a second\n", best.lookups_per_second / 1e6);
    std::printf("first 64 bytes of 50,000 files / raw reads = %.2f\n", best.reads / best.raw_reads);
    std::printf("text in a million paths: %.1f ms, a pattern %.1f ms, first rows after %.2f ms, putting them in order "
                "once %.0f ms\n",
                best.filter * 1e3, best.pattern * 1e3, best.first_rows * 1e3, best.order * 1e3);
    return 0;
}
