#pragma once

// A vector for the tracks of many frames: what resize() adds is not cleared, for it is overwritten at once, and
// clearing takes as long as decoding. Large ones lie in large pages.

#include "EASY_GUI/services/large_memory.h"

#include <new>
#include <vector>

namespace korvane
{

template <typename type>
struct uncleared_allocator : large_allocator<type>
{
    template <typename other_type>
    struct rebind
    {
        using other = uncleared_allocator<other_type>;
    };

    uncleared_allocator() = default;
    template <typename other>
    uncleared_allocator(const uncleared_allocator<other>&)
    {
    }
    // Without arguments only; whoever brings a value gets it stored.
    template <typename made>
    void construct(made* target)
    {
        ::new (static_cast<void*>(target)) made;
    }
};

template <typename type>
using frame_vector = std::vector<type, uncleared_allocator<type>>;

} // namespace korvane
