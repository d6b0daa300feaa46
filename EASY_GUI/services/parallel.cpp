#include "EASY_GUI/services/parallel.h"

#include <algorithm>
#include <system_error>
#include <utility>
#include <vector>

namespace korvane
{

std::size_t threadsFor(std::uint64_t worthwhile_pieces, std::size_t limit)
{
    const std::uint64_t wanted = std::min<std::uint64_t>(
        {worthwhile_pieces, static_cast<std::uint64_t>(limit), std::thread::hardware_concurrency()});
    return static_cast<std::size_t>(std::max<std::uint64_t>(wanted, 1));
}

void runOnThreads(std::size_t threads, const std::function<void(std::size_t)>& work)
{
    std::mutex guard;
    std::exception_ptr thrown;
    const auto run = [&](std::size_t thread) {
        try
        {
            work(thread);
        }
        catch (...)
        {
            const std::lock_guard lock(guard);
            if (!thrown)
                thrown = std::current_exception();
        }
    };
    std::vector<std::thread> helpers;
    try
    {
        helpers.reserve(threads);
        while (helpers.size() + 1 < threads)
            helpers.emplace_back(run, helpers.size() + 1);
    }
    catch (const std::exception&) // no more threads or memory to be had: those that are there do it
    {
    }
    run(0);
    for (std::thread& helper : helpers)
        helper.join();
    if (thrown)
        std::rethrow_exception(thrown);
}

side_work::side_work(std::function<void()> work) : m_work(std::move(work))
{
    try
    {
        m_thread = std::thread([this] { run(); });
    }
    catch (const std::system_error&)
    {
        run();
    }
}

side_work::~side_work()
{
    if (m_thread.joinable())
        m_thread.join();
}

void side_work::finish()
{
    if (m_thread.joinable())
        m_thread.join();
    if (m_po_thrown)
        std::rethrow_exception(std::exchange(m_po_thrown, nullptr));
}

void side_work::run() noexcept
{
    try
    {
        m_work();
    }
    catch (...)
    {
        m_po_thrown = std::current_exception();
    }
}

} // namespace korvane
