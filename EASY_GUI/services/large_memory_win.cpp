#include "EASY_GUI/services/large_memory.h"

#include <cstdlib>
#include <new>

namespace korvane
{

void large_memory_deleter::operator()(std::byte* memory) const noexcept
{
    std::free(memory);
}

// Large pages need a privilege on Windows that users do not have.
large_memory allocateLarge(std::size_t size_bytes)
{
    void* const memory = std::malloc(size_bytes > 0 ? size_bytes : 1);
    if (!memory)
        throw std::bad_alloc();
    return large_memory(static_cast<std::byte*>(memory));
}

} // namespace korvane
