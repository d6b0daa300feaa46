#pragma once

// Memory that is handed out piece by piece and given back all at once, in a few large blocks (large pages where the
// system has them): for tables of millions of small records that live as long as their owner. Pieces are uninitialised
// and no destructor runs for what lies in them. One thread at a time.

#include "EASY_GUI/services/large_memory.h"

#include <cstddef>
#include <span>
#include <type_traits>
#include <vector>

namespace korvane
{

class arena
{
public:
    arena() = default;
    arena(const arena&) = delete;
    arena& operator=(const arena&) = delete;

    // Throws std::bad_alloc.
    template <typename type>
    [[nodiscard]] std::span<type> allocate(std::size_t count)
    {
        static_assert(std::is_trivially_destructible_v<type>);
        return {reinterpret_cast<type*>(allocateBytes(count, sizeof(type), alignof(type))), count};
    }

    // Where the arena stands; going back to it gives back everything that was handed out since.
    struct mark
    {
        std::size_t block_count = 0;
        std::size_t used = 0;
    };
    mark position() const { return {m_blocks.size(), m_used}; }
    void goBackTo(const mark& position);

private:
    struct block
    {
        large_memory memory;
        std::size_t size;
    };

    std::byte* allocateBytes(std::size_t count, std::size_t size_each, std::size_t alignment);

    std::vector<block> m_blocks;
    std::size_t m_used = 0; // of the last block
};

} // namespace korvane
