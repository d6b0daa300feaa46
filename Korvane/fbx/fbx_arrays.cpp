#include "Korvane/fbx/fbx_arrays.h"

#include <zlib.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <limits>
#include <mutex>
#include <new>
#include <numeric>
#include <system_error>
#include <thread>

namespace korvane
{

namespace
{

constexpr std::uint64_t bytes_worth_a_thread = 256 * 1024;
constexpr std::size_t thread_limit = 8;

// Calls work(0) to work(count - 1), in no particular order. Of several exceptions one is thrown on.
void forEach(std::size_t count, std::uint64_t total_bytes, const std::function<void(std::size_t)>& work)
{
    std::atomic<std::size_t> next{0};
    std::mutex mutex;
    std::exception_ptr thrown;
    const auto run = [&]
    {
        try
        {
            for (std::size_t at = next++; at < count; at = next++)
                work(at);
        }
        catch (...)
        {
            const std::lock_guard lock(mutex);
            thrown = std::current_exception();
            next = count;
        }
    };
    std::vector<std::jthread> threads;
    const std::size_t wanted = std::min<std::size_t>(
        {std::thread::hardware_concurrency(), thread_limit, count,
         static_cast<std::size_t>(std::min<std::uint64_t>(total_bytes / bytes_worth_a_thread, thread_limit))});
    try
    {
        while (threads.size() + 1 < wanted)
            threads.emplace_back(run);
    }
    catch (const std::system_error&) // no more threads to be had: fewer do it, too
    {
    }
    run();
    threads.clear();
    if (thrown)
        std::rethrow_exception(thrown);
}

// The order in which to work: the largest first, so that no thread is left alone with one at the end.
template <class size_function>
std::vector<std::size_t> largestFirst(std::size_t count, const size_function& size)
{
    std::vector<std::size_t> order(count);
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [&size](std::size_t left, std::size_t right)
                     {
                         return size(left) > size(right);
                     });
    return order;
}

// zlib counts in 32 bits on one of our platforms.
uInt nextPiece(std::size_t left)
{
    return static_cast<uInt>(std::min<std::size_t>(left, std::numeric_limits<std::int32_t>::max()));
}

Bytef* zlibBytes(const std::byte* bytes)
{
    return const_cast<Bytef*>(reinterpret_cast<const Bytef*>(bytes));
}

class inflater
{
public:
    inflater()
    {
        if (inflateInit(&m_stream) != Z_OK)
            throw std::bad_alloc();
    }
    ~inflater() { inflateEnd(&m_stream); }
    inflater(const inflater&) = delete;
    inflater& operator=(const inflater&) = delete;

    // What is wrong with the stream; empty: nothing.
    std::string run(std::span<const std::byte> packed, std::span<std::byte> target)
    {
        std::byte spare{}; // an address for an empty target, and the place for a byte too many
        m_stream.next_in = zlibBytes(packed.data());
        m_stream.next_out = target.empty() ? zlibBytes(&spare) : zlibBytes(target.data());
        std::size_t in_left = packed.size(), out_left = target.size();
        int status = Z_OK;
        while (status == Z_OK)
        {
            const uInt in = nextPiece(in_left), out = nextPiece(out_left);
            m_stream.avail_in = in;
            m_stream.avail_out = out;
            status = inflate(&m_stream, Z_NO_FLUSH);
            in_left -= in - m_stream.avail_in;
            out_left -= out - m_stream.avail_out;
        }
        if (status == Z_STREAM_END && in_left == 0 && out_left == 0)
            return {};
        if (status == Z_MEM_ERROR)
            throw std::bad_alloc();
        return fault(status, in_left, target.size() - out_left, target.size());
    }

private:
    std::string fault(int status, std::size_t in_left, std::size_t made, std::size_t wanted) const
    {
        if (status == Z_STREAM_END && in_left > 0)
            return std::to_string(in_left) + " bytes are left behind the end of the compressed data";
        if (status == Z_STREAM_END)
            return "the compressed data ends after " + std::to_string(made) + " of " + std::to_string(wanted) +
                   " bytes";
        if (status == Z_BUF_ERROR && in_left == 0)
            return "the compressed data is cut off";
        if (status == Z_BUF_ERROR)
            return "the compressed data holds more than the " + std::to_string(wanted) + " bytes of the array";
        return "the compressed data is damaged" +
               (m_stream.msg ? " (" + std::string(m_stream.msg) + ")" : std::string());
    }

    z_stream m_stream{};
};

} // namespace

bool unpackArrays(std::span<const packed_array> arrays, failure& why)
{
    std::uint64_t total = 0;
    for (const packed_array& array : arrays)
        total += array.target.size();
    const std::vector<std::size_t> order = largestFirst(arrays.size(),
                                                        [&arrays](std::size_t at)
                                                        {
                                                            return arrays[at].target.size();
                                                        });
    std::mutex mutex;
    std::size_t first_damaged = arrays.size();
    std::string what;
    forEach(arrays.size(), total,
            [&](std::size_t at)
            {
                std::string fault = inflater().run(arrays[order[at]].packed, arrays[order[at]].target);
                if (fault.empty())
                    return;
                const std::lock_guard lock(mutex);
                if (order[at] < first_damaged)
                {
                    first_damaged = order[at];
                    what = std::move(fault);
                }
            });
    if (first_damaged == arrays.size())
        return true;
    if (!why)
    {
        why.kind = failure_kind::malformed;
        why.what = std::move(what);
        why.offset = arrays[first_damaged].offset;
        why.field = arrays[first_damaged].field;
    }
    return false;
}

std::vector<std::vector<std::byte>> packArrays(std::span<const std::span<const std::byte>> arrays)
{
    std::uint64_t total = 0;
    for (const auto& array : arrays)
        total += array.size();
    const std::vector<std::size_t> order = largestFirst(arrays.size(),
                                                        [&arrays](std::size_t at)
                                                        {
                                                            return arrays[at].size();
                                                        });
    std::vector<std::vector<std::byte>> packed(arrays.size());
    forEach(arrays.size(), total,
            [&](std::size_t at)
            {
                const std::span<const std::byte> input = arrays[order[at]];
                uLongf size = compressBound(static_cast<uLong>(input.size()));
                std::vector<std::byte> output(size);
                if (compress2(zlibBytes(output.data()), &size, zlibBytes(input.data()),
                              static_cast<uLong>(input.size()), Z_BEST_SPEED) != Z_OK)
                    throw std::bad_alloc(); // the only thing that can fail
                output.resize(size);
                output.shrink_to_fit();
                packed[order[at]] = std::move(output);
            });
    return packed;
}

} // namespace korvane
