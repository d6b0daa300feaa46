// Indexing a million files in a hundred archives against a plain scan for terminators over the same index bytes, in the
// same run (at most 12 times), the memory of the tree (at most 160 bytes an entry beyond the path text), and random
// lookups (at least 3 million a second).

#include "Korvane/archives/pack_file.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace
{

using namespace korvane;

constexpr std::size_t archive_count = 100;
constexpr std::size_t files_per_archive = 10000;
constexpr std::size_t folder_count = 20000;

std::vector<std::string> archive_paths;
std::vector<std::string> indexes; // the index bytes of each archive
std::vector<std::string> paths;
double scan_seconds = 1e9;
double index_seconds = 1e9;
double lookups_per_second = 0;
double bytes_per_entry = 0;

std::string pathOf(std::size_t number)
{
    // Folders in runs, as packers write them; about 90 bytes.
    const std::size_t folder = number / (archive_count * files_per_archive / folder_count);
    char text[160];
    std::snprintf(
        text, sizeof text, "VariantMeshes\\_variantmodels\\man\\culture_%03zu\\unit_%05zu\\textures\\%s_%07zu_lod.%s",
        folder % 200, folder, number % 3 ? "armour_diffuse" : "shield_normal", number, number % 2 ? "dds" : "anim");
    return text;
}

void writeArchives(const std::filesystem::path& folder)
{
    std::filesystem::create_directories(folder);
    const auto u32 = [](std::uint32_t value)
    {
        return std::string(reinterpret_cast<const char*>(&value), 4);
    };
    for (std::size_t i = 0; i < archive_count; ++i)
    {
        std::string index;
        for (std::size_t j = 0; j < files_per_archive; ++j)
        {
            paths.push_back(pathOf(i * files_per_archive + j));
            index += u32(0) + '\0' + paths.back() + '\0';
        }
        const std::string header = "PFH5" + u32(0) + u32(0) + u32(0) + u32(files_per_archive) +
                                   u32(static_cast<std::uint32_t>(index.size())) + u32(0);
        archive_paths.push_back((folder / ("data_" + std::to_string(i) + ".pack")).string());
        std::ofstream(archive_paths.back(), std::ios::binary) << header << index;
        indexes.push_back(std::move(index));
    }
}

double secondsSince(const std::chrono::steady_clock::time_point& begin)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

void scanTerminators(benchmark::State& state)
{
    for (auto _ : state)
    {
        const auto begin = std::chrono::steady_clock::now();
        std::size_t count = 0;
        for (const std::string& index : indexes)
            for (std::size_t at = 0; at < index.size(); ++count)
            {
                at += 5;
                at =
                    static_cast<std::size_t>(
                        static_cast<const char*>(std::memchr(index.data() + at, 0, index.size() - at)) - index.data()) +
                    1;
            }
        benchmark::DoNotOptimize(count);
        scan_seconds = std::min(scan_seconds, secondsSince(begin));
    }
}

std::shared_ptr<path_tree> indexAll()
{
    auto tree = std::make_shared<path_tree>();
    std::vector<pack_file> archives;
    std::size_t count = 0;
    for (const std::string& path : archive_paths)
    {
        failure why;
        if (!archives.emplace_back(*tree).open(path, why))
            std::abort();
        count += archives.back().entryCount();
    }
    tree->reserve(count);
    for (pack_file& archive : archives)
        archive.enter();
    return tree;
}

void indexArchives(benchmark::State& state)
{
    std::size_t text = 0;
    for (const std::string& path : paths)
        text += path.size();
    for (auto _ : state)
    {
        malloc_trim(0);
        const struct mallinfo2 before = mallinfo2();
        const auto begin = std::chrono::steady_clock::now();
        const std::shared_ptr<path_tree> tree = indexAll();
        index_seconds = std::min(index_seconds, secondsSince(begin));
        const struct mallinfo2 after = mallinfo2();
        const std::size_t used = after.uordblks + after.hblkhd - before.uordblks - before.hblkhd;
        bytes_per_entry = static_cast<double>(used - text) / static_cast<double>(paths.size());
    }
}

void lookUp(benchmark::State& state)
{
    const std::shared_ptr<path_tree> tree = indexAll();
    // In random order; the keys lie one behind the other, so that they are in the cache, as a path that somebody just
    // wrote is.
    std::vector<std::string> shuffled = paths;
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
    std::size_t begin = 0;
    for (const std::string& path : shuffled)
        wanted.push_back(std::string_view(keys).substr(std::exchange(begin, begin + path.size()), path.size()));
    for (auto _ : state)
    {
        const auto begin = std::chrono::steady_clock::now();
        for (const std::string_view& path : wanted)
            if (!tree->find(path))
                std::abort();
        lookups_per_second = std::max(lookups_per_second, static_cast<double>(wanted.size()) / secondsSince(begin));
    }
}

BENCHMARK(scanTerminators)->Unit(benchmark::kMillisecond)->Iterations(10);
BENCHMARK(indexArchives)->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(lookUp)->Unit(benchmark::kMillisecond)->Iterations(10);

} // namespace

int main(int count, char** values)
{
    benchmark::Initialize(&count, values);
    const auto folder = std::filesystem::temp_directory_path() / "korvane_bench_packs";
    writeArchives(folder);
    benchmark::RunSpecifiedBenchmarks();
    std::printf("index / scan = %.1f, %.0f bytes an entry beyond its path, %.1f million lookups a second\n",
                index_seconds / scan_seconds, bytes_per_entry, lookups_per_second / 1e6);
    std::filesystem::remove_all(folder);
    return 0;
}
