#include "EASY_GUI/services/arena.h"

#include <algorithm>
#include <limits>
#include <new>

namespace korvane
{

namespace
{
constexpr std::size_t first_block = std::size_t{64} << 10;
constexpr std::size_t largest_block = std::size_t{16} << 20; // larger pieces get a block of their own size
} // namespace

std::byte* arena::allocateBytes(std::size_t count, std::size_t size_each, std::size_t alignment)
{
    if (count > std::numeric_limits<std::size_t>::max() / size_each)
        throw std::bad_alloc();
    const std::size_t size = count * size_each;
    const std::size_t begin = (m_used + alignment - 1) / alignment * alignment;
    if (m_blocks.empty() || begin > m_blocks.back().size || size > m_blocks.back().size - begin)
    {
        // Blocks grow with what is needed, so that a small tree stays small.
        const std::size_t next = m_blocks.empty() ? first_block : std::min(m_blocks.back().size * 4, largest_block);
        const std::size_t block_size = std::max(size, next);
        m_blocks.push_back({allocateLarge(block_size), block_size});
        m_used = size;
        return m_blocks.back().memory.get();
    }
    m_used = begin + size;
    return m_blocks.back().memory.get() + begin;
}

void arena::goBackTo(const mark& position)
{
    m_blocks.erase(m_blocks.begin() + static_cast<std::ptrdiff_t>(position.block_count), m_blocks.end());
    m_used = position.used;
}

} // namespace korvane
