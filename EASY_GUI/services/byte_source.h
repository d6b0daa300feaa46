#pragma once

// Bytes that come piece by piece, so that a file of any size goes through little memory.

#include "EASY_GUI/services/failure.h"

#include <cstddef>
#include <functional>
#include <span>

namespace korvane
{

// Gives the next piece, which is valid until the next call; an empty one at the end. False, with the reason, when there
// is none to be had. Asked by one thread.
using byte_source = std::function<bool(std::span<const std::byte>& piece, failure& why)>;

// Bytes in memory, which outlive it, as one piece.
[[nodiscard]] inline byte_source sourceOf(std::span<const std::byte> bytes)
{
    return [bytes](std::span<const std::byte>& piece, failure&) mutable {
        piece = bytes;
        bytes = {};
        return true;
    };
}

} // namespace korvane
