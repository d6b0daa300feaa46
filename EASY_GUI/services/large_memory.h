#pragma once

// Uninitialised memory for buffers of many megabytes. Where the system offers large pages, whole ones inside the buffer
// use them: a file of 256 MiB and what is decoded from it are hundreds of thousands of small pages otherwise, and
// fetching those takes longer than the decoding.

#include <cstddef>
#include <memory>

namespace korvane
{

struct large_memory_deleter
{
    void operator()(std::byte* memory) const noexcept;
};
using large_memory = std::unique_ptr<std::byte[], large_memory_deleter>;

// Aligned for any type; throws std::bad_alloc.
[[nodiscard]] large_memory allocateLarge(std::size_t size_bytes);

} // namespace korvane
