#pragma once

// Work that several processors share. The calling thread always takes part, so that everything is done even where the
// system gives no further thread. Everybody has returned when these functions do. Of several exceptions one is thrown
// on; after the first one no further piece is begun.

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <limits>
#include <mutex>
#include <thread>

namespace korvane
{

// More do not make anything here faster: memory and disk are shared, too.
inline constexpr std::size_t most_threads = 8;

// How many threads to take, this one included: one for each worthwhile piece of the work, but no more than processors
// and the limit. At least 1.
[[nodiscard]] std::size_t threadsFor(std::uint64_t worthwhile_pieces, std::size_t limit = most_threads);

// Runs the work on so many threads, or on as many as there are to be had; the calling one is number 0.
void runOnThreads(std::size_t threads, const std::function<void(std::size_t thread)>& work);

// The numbers from 0 to count - 1, handed out in ascending blocks to whoever asks next.
class shared_range
{
public:
    explicit shared_range(std::size_t count, std::size_t block_size = 1) : m_count(count), m_block_size(block_size) {}

    // The next block, [begin, end); false when nothing is left.
    [[nodiscard]] bool take(std::size_t& begin, std::size_t& end)
    {
        begin = m_next.fetch_add(m_block_size);
        if (begin >= m_count)
            return false;
        end = begin + (m_count - begin < m_block_size ? m_count - begin : m_block_size);
        return true;
    }
    // No further block is handed out.
    void close() { m_next = std::numeric_limits<std::size_t>::max() / 2; }

private:
    std::size_t m_count;
    std::size_t m_block_size;
    std::atomic<std::size_t> m_next{0};
};

// Calls work(tool, i) for each i below count, on so many threads. Each thread has a tool of its own, default-made.
template <typename Tool, typename Work>
void parallelForWith(std::size_t count, std::size_t threads, std::size_t block_size, const Work& work)
{
    shared_range range(count, block_size);
    runOnThreads(threads, [&](std::size_t) {
        try
        {
            Tool tool;
            for (std::size_t begin = 0, end = 0; range.take(begin, end);)
                for (std::size_t i = begin; i < end; ++i)
                    work(tool, i);
        }
        catch (...)
        {
            range.close();
            throw;
        }
    });
}

// Calls work(i) for each i below count, on so many threads.
template <typename Work>
void parallelFor(std::size_t count, std::size_t threads, const Work& work, std::size_t block_size = 1)
{
    struct no_tool
    {
    };
    parallelForWith<no_tool>(count, threads, block_size, [&work](no_tool&, std::size_t i) { work(i); });
}

// One piece of work beside the calling thread's own; where there is no thread to be had it is done at once instead.
class side_work
{
public:
    explicit side_work(std::function<void()> work);
    side_work(const side_work&) = delete;
    side_work& operator=(const side_work&) = delete;
    ~side_work(); // waits; what was thrown is lost then

    // Waits until it is done, and throws on what it threw.
    void finish();

private:
    void run() noexcept;

    std::function<void()> m_work;
    std::exception_ptr m_po_thrown;
    std::thread m_thread;
};

} // namespace korvane
