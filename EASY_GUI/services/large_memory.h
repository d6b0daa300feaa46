#pragma once

// Uninitialised memory for buffers of many megabytes. Where the system offers large pages, whole ones inside the buffer
// use them: a file of 256 MiB and what is decoded from it are hundreds of thousands of small pages otherwise, and
// fetching those takes longer than the decoding.

#include <cstddef>
#include <limits>
#include <memory>
#include <new>
#include <vector>

namespace korvane
{

struct large_memory_deleter
{
    void operator()(std::byte* memory) const noexcept;
};
using large_memory = std::unique_ptr<std::byte[], large_memory_deleter>;

// Aligned for any type; throws std::bad_alloc.
[[nodiscard]] large_memory allocateLarge(std::size_t size_bytes);

// Containers of many megabytes.
template <typename type>
struct large_allocator
{
    using value_type = type;

    large_allocator() = default;
    template <typename other>
    large_allocator(const large_allocator<other>&)
    {
    }

    type* allocate(std::size_t count)
    {
        if (count > std::numeric_limits<std::size_t>::max() / sizeof(type))
            throw std::bad_alloc();
        return reinterpret_cast<type*>(allocateLarge(count * sizeof(type)).release());
    }
    void deallocate(type* memory, std::size_t) noexcept
    {
        large_memory_deleter()(reinterpret_cast<std::byte*>(memory));
    }

    friend bool operator==(const large_allocator&, const large_allocator&) { return true; }
};
template <typename type>
using large_vector = std::vector<type, large_allocator<type>>;

} // namespace korvane
