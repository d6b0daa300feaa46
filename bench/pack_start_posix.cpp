// Reading the archives at a start, from themselves and from their cache: 50,000 and 1,000,000 files in many and in few
// archives, when the disk's pages are in memory and when they have been dropped. On this stands where a cache is
// written (pack_cache::pays).

#include "EASY_GUI/services/file_system.h"
#include "Korvane/archives/archive_indexing.h"
#include "Korvane/archives/pack_cache.h"
#include "bench/pack_corpus.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace
{

using namespace korvane;
using clock_type = std::chrono::steady_clock;

constexpr std::uint32_t bytes_per_file = 1024; // what lies between two indexes on the disk
constexpr int rounds = 5;

void require(bool is_right, const char* what)
{
    if (is_right)
        return;
    std::fprintf(stderr, "bench_pack_start: %s\n", what);
    std::exit(1);
}

// All pages of the system where one may, else those of these files.
bool dropAllPages()
{
    sync();
    std::FILE* const control = std::fopen("/proc/sys/vm/drop_caches", "w");
    if (control == nullptr)
        return false;
    const bool is_written = std::fputs("3\n", control) >= 0;
    return std::fclose(control) == 0 && is_written;
}

void dropPages(const std::vector<std::string>& files)
{
    if (dropAllPages())
        return;
    for (const std::string& path : files)
    {
        const int file = open(path.c_str(), O_RDONLY);
        require(file >= 0 && posix_fadvise(file, 0, 0, POSIX_FADV_DONTNEED) == 0, "pages could not be dropped");
        close(file);
    }
}

struct times // the best of some rounds, in seconds
{
    double index = 1e9, load = 1e9;
};

times measure(const bench::pack_corpus& corpus, const pack_cache& cache, bool is_cold)
{
    std::vector<std::string> files = corpus.archives();
    files.push_back(cache.path());
    times best;
    for (int round = 0; round < rounds; ++round)
    {
        for (const bool uses_cache : {false, true})
        {
            if (is_cold)
                dropPages(files);
            indexed_archives indexed;
            failure why;
            const auto begin = clock_type::now();
            require(uses_cache ? cache.load(corpus.archives(), indexed, why)
                               : indexArchives(corpus.archives(), {}, indexed),
                    "the archives were not read");
            double& least = uses_cache ? best.load : best.index;
            least = std::min(least, bench::secondsSince(begin));
        }
    }
    return best;
}

void measure(std::size_t file_count, std::size_t archive_count)
{
    const bench::pack_corpus corpus(bytes_per_file, archive_count, file_count / archive_count);
    const pack_cache cache((corpus.folder() / "packs.cache").string());
    double written = 0;
    {
        indexed_archives indexed;
        failure why;
        require(indexArchives(corpus.archives(), {}, indexed), "the archives were not read");
        const auto begin = clock_type::now();
        require(cache.write(indexed, why), "the cache was not written");
        written = bench::secondsSince(begin);
    }
    std::size_t index_bytes = 0;
    for (const std::string& index : corpus.indexes())
        index_bytes += index.size();
    std::printf("%zu files in %zu archives (indexes of %.1f MiB), cache of %.1f MiB, written in %.0f ms:\n", file_count,
                archive_count, static_cast<double>(index_bytes) / (1 << 20),
                static_cast<double>(std::filesystem::file_size(cache.path())) / (1 << 20), written * 1e3);
    for (const bool is_cold : {false, true})
    {
        const times found = measure(corpus, cache, is_cold);
        std::printf("  %s: archives %6.1f ms, cache %6.1f ms, cache / archives = %.2f\n", is_cold ? "cold" : "warm",
                    found.index * 1e3, found.load * 1e3, found.load / found.index);
    }
}

} // namespace

int main()
{
    std::printf("%s pages are dropped before a cold start\n", dropAllPages() ? "all" : "only the files'");
    constexpr std::size_t files_and_archives[][2] = {{50000, 120}, {50000, 20},    {50000, 5},    {200000, 120},
                                                     {200000, 5},  {1000000, 120}, {1000000, 20}, {1000000, 5}};
    for (const auto& [files, archives] : files_and_archives)
        measure(files, archives);
    return 0;
}
