// A key press in the filter over 50,000 animations: the slowest of typing a few words and deleting them again, letter
// by letter (at most 30 ms). The last line is that figure.

#include "Korvane/archives/pack_file.h"
#include "Korvane/presenters/animation_rows.h"
#include "tests/support/pack_builder.h"
#include "tests/support/temporary_folder.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace
{

using namespace korvane;

constexpr int animation_count = 50000;
const std::string typed = "battle sword_and_shield walk 49";
std::vector<double> best; // seconds, of each key press

void typeAndDelete(benchmark::State& state)
{
    const test::temporary_folder folder;
    test::test_pack pack;
    for (int i = 0; i < animation_count; ++i)
        pack.entries.push_back({"animations\\battle\\humanoid0" + std::to_string(i % 7) +
                                    "\\sword_and_shield\\locomotion\\hu" + std::to_string(i % 7) + "_sws_walk_" +
                                    std::to_string(i) + ".anim",
                                "x"});
    test::writeBytes(folder.file("a.pack"), pack.bytes());
    path_tree tree;
    pack_file archive(tree);
    failure why;
    if (!archive.open(folder.file("a.pack"), why))
        std::abort();
    archive.enter();
    animation_rows rows;
    for (const pack_file_node& entry : tree.entries().front())
    {
        const pack_file_node* const each = &entry;
        rows.add(std::span(&each, 1));
    }
    best.assign(2 * typed.size(), 1e9);
    std::size_t number = 0;
    const auto press = [&rows, &number](const std::string& text) {
        const auto begin = std::chrono::steady_clock::now();
        rows.setFilter(text);
        benchmark::DoNotOptimize(rows.rowCount());
        double& least = best[number++];
        least = std::min(least, std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
    };
    for (auto _ : state)
    {
        number = 0;
        for (std::size_t count = 1; count <= typed.size(); ++count)
            press(typed.substr(0, count));
        if (rows.shownAnimationCount() < 1000 || rows.shownAnimationCount() > 5000)
            std::abort();
        for (std::size_t count = typed.size(); count-- > 0;)
            press(typed.substr(0, count));
        if (rows.shownAnimationCount() != animation_count)
            std::abort();
    }
}

BENCHMARK(typeAndDelete)->Unit(benchmark::kMillisecond)->Iterations(10);

} // namespace

int main(int count, char** values)
{
    benchmark::Initialize(&count, values);
    benchmark::RunSpecifiedBenchmarks();
    std::printf("slowest key press over %d rows = %.1f ms\n", animation_count,
                *std::max_element(best.begin(), best.end()) * 1e3);
    return 0;
}
