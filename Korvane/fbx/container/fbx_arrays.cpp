#include "Korvane/fbx/container/fbx_arrays.h"

#include "EASY_GUI/services/parallel.h"

#include <libdeflate.h>

#include <algorithm>
#include <memory>
#include <mutex>
#include <new>
#include <numeric>
#include <unordered_map>

namespace korvane
{

namespace
{

constexpr std::uint64_t bytes_worth_a_thread = 256 * 1024;
constexpr int fastest_level = 1;

std::uint64_t worthOf(std::size_t count, std::uint64_t total_bytes)
{
    return std::min<std::uint64_t>(count, total_bytes / bytes_worth_a_thread);
}

// The largest first, so that no thread is left alone with one at the end.
template <class size_function>
void sortLargestFirst(std::vector<std::size_t>& order, const size_function& size)
{
    std::stable_sort(order.begin(), order.end(),
                     [&size](std::size_t left, std::size_t right) { return size(left) > size(right); });
}

class unpacker
{
public:
    unpacker() : m_own(libdeflate_alloc_decompressor(), libdeflate_free_decompressor)
    {
        if (!m_own)
            throw std::bad_alloc();
    }

    // What is wrong with the stream; empty: nothing. Writes nothing behind the target.
    std::string run(std::span<const std::byte> packed, std::span<std::byte> target)
    {
        std::byte spare{}; // an address for an empty target
        std::size_t used = 0, made = 0;
        switch (libdeflate_zlib_decompress_ex(m_own.get(), packed.data(), packed.size(),
                                              target.empty() ? &spare : target.data(), target.size(), &used, &made))
        {
        case LIBDEFLATE_SUCCESS:
            break;
        case LIBDEFLATE_INSUFFICIENT_SPACE:
            return "the compressed data holds more than the " + std::to_string(target.size()) + " bytes of the array";
        default:
            return "the compressed data is damaged or cut off";
        }
        if (made != target.size())
            return "the compressed data ends after " + std::to_string(made) + " of " + std::to_string(target.size()) +
                   " bytes";
        if (used != packed.size())
            return std::to_string(packed.size() - used) + " bytes are left behind the end of the compressed data";
        return {};
    }

private:
    std::unique_ptr<libdeflate_decompressor, decltype(&libdeflate_free_decompressor)> m_own;
};

class packer
{
public:
    packer() : m_own(libdeflate_alloc_compressor(fastest_level), libdeflate_free_compressor)
    {
        if (!m_own)
            throw std::bad_alloc();
    }

    // Empty when the stream would not be smaller than its input.
    std::vector<std::byte> run(std::span<const std::byte> input)
    {
        if (m_room < input.size())
        {
            m_buffer = std::make_unique_for_overwrite<std::byte[]>(input.size());
            m_room = input.size();
        }
        const std::size_t size = libdeflate_zlib_compress(m_own.get(), input.data(), input.size(), m_buffer.get(),
                                                          std::max<std::size_t>(input.size(), 1) - 1);
        return {m_buffer.get(), m_buffer.get() + size};
    }

private:
    std::unique_ptr<libdeflate_compressor, decltype(&libdeflate_free_compressor)> m_own;
    std::unique_ptr<std::byte[]> m_buffer;
    std::size_t m_room = 0;
};

// For each array the first one of the same bytes, as far as easily seen: the times of keys stand once in every curve.
std::vector<std::size_t> firstOfTheSame(std::span<const std::span<const std::byte>> arrays)
{
    std::vector<std::size_t> firsts(arrays.size());
    std::unordered_map<std::size_t, std::size_t> latest; // by size
    for (std::size_t i = 0; i < arrays.size(); ++i)
    {
        const auto [found, is_new] = latest.try_emplace(arrays[i].size(), i);
        if (!is_new && !std::ranges::equal(arrays[i], arrays[found->second]))
            found->second = i;
        firsts[i] = found->second;
    }
    return firsts;
}

} // namespace

bool unpackArrays(std::span<const packed_array> arrays, failure& why)
{
    std::uint64_t total = 0;
    for (const packed_array& array : arrays)
        total += array.target.size();
    std::vector<std::size_t> order(arrays.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    sortLargestFirst(order, [&arrays](std::size_t at) { return arrays[at].target.size(); });
    std::mutex mutex;
    std::size_t first_damaged = arrays.size();
    std::string what;
    parallelForWith<unpacker>(arrays.size(), threadsFor(worthOf(arrays.size(), total)), 1,
                              [&](unpacker& tool, std::size_t at) {
                                  std::string fault = tool.run(arrays[order[at]].packed, arrays[order[at]].target);
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
    const std::vector<std::size_t> firsts = firstOfTheSame(arrays);
    std::vector<std::size_t> order;
    std::uint64_t total = 0;
    for (std::size_t i = 0; i < arrays.size(); ++i)
        if (firsts[i] == i)
        {
            order.push_back(i);
            total += arrays[i].size();
        }
    sortLargestFirst(order, [&arrays](std::size_t at) { return arrays[at].size(); });
    std::vector<std::vector<std::byte>> packed(arrays.size());
    parallelForWith<packer>(order.size(), threadsFor(worthOf(order.size(), total)), 1,
                            [&](packer& tool, std::size_t at) { packed[order[at]] = tool.run(arrays[order[at]]); });
    for (std::size_t i = 0; i < arrays.size(); ++i)
        if (firsts[i] != i)
            packed[i] = packed[firsts[i]];
    return packed;
}

} // namespace korvane
