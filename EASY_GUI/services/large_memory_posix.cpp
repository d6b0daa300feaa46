#include "EASY_GUI/services/large_memory.h"

#include <cstdlib>
#include <new>
#include <sys/mman.h>

namespace korvane
{

namespace
{
constexpr std::size_t large_page = std::size_t{2} << 20;
}

void large_memory_deleter::operator()(std::byte* memory) const noexcept
{
    std::free(memory);
}

large_memory allocateLarge(std::size_t size_bytes)
{
    const bool is_large = size_bytes >= 2 * large_page;
    const std::size_t whole_pages = size_bytes / large_page * large_page;
    void* const memory = is_large
                             ? std::aligned_alloc(large_page, (size_bytes + large_page - 1) / large_page * large_page)
                             : std::malloc(size_bytes > 0 ? size_bytes : 1);
    if (!memory)
        throw std::bad_alloc();
    // Only the whole pages: the rest of the last one would count as used memory for nothing.
    if (is_large)
        static_cast<void>(::madvise(memory, whole_pages, MADV_HUGEPAGE));
    return large_memory(static_cast<std::byte*>(memory));
}

} // namespace korvane
