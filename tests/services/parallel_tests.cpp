#include "EASY_GUI/services/parallel.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

namespace korvane
{

TEST(parallel, eachNumberIsWorkedOnOnce)
{
    for (const std::size_t count : {0u, 1u, 7u, 1000u})
        for (const std::size_t threads : {1u, 2u, 5u})
            for (const std::size_t block_size : {1u, 3u, 128u})
            {
                std::vector<int> times(count, 0);
                parallelFor(
                    count, threads, [&times](std::size_t i) { ++times[i]; }, block_size);
                EXPECT_EQ(times, std::vector<int>(count, 1)) << count << ' ' << threads << ' ' << block_size;
            }
}

TEST(parallel, theThreadsAreNumberedAndAllReturn)
{
    std::vector<int> begun(4, 0);
    runOnThreads(begun.size(), [&begun](std::size_t thread) { ++begun[thread]; });
    EXPECT_EQ(begun, std::vector<int>(4, 1));
    EXPECT_EQ(threadsFor(0), 1u);
    EXPECT_LE(threadsFor(1'000'000), most_threads);
    EXPECT_EQ(threadsFor(1'000'000, 1), 1u);
}

TEST(parallel, anExceptionEndsTheWorkAndIsThrownOn)
{
    std::atomic<int> done{0};
    const auto work = [&done](std::size_t i) {
        if (i == 3)
            throw std::runtime_error("three");
        ++done;
    };
    EXPECT_THROW(parallelFor(1'000'000, 3, work), std::runtime_error);
    EXPECT_LT(done, 1'000'000 - 1);
}

TEST(parallel, sideWorkIsFinishedAndThrowsWhereItIsAskedFor)
{
    int made = 0;
    side_work good([&made] { made = 7; });
    good.finish();
    EXPECT_EQ(made, 7);
    side_work bad([] { throw std::runtime_error("beside"); });
    EXPECT_THROW(bad.finish(), std::runtime_error);
    EXPECT_NO_THROW(bad.finish());
}

} // namespace korvane
