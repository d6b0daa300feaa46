#pragma once

// A picture of 8-bit RGBA pixels in memory, rows from the top, each row from the left: what every reader of this folder
// makes and every writer takes. Movable, not copyable; the pixels are not cleared before somebody fills them.

#include "EASY_GUI/services/large_memory.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>

namespace korvane
{

// Red in the lowest byte, then green, blue, alpha: in memory the bytes R, G, B, A.
using rgba_pixel = std::uint32_t;
static_assert(std::endian::native == std::endian::little);

constexpr rgba_pixel rgba(unsigned red, unsigned green, unsigned blue, unsigned alpha)
{
    return red | green << 8 | blue << 16 | alpha << 24;
}

// Readers refuse larger ones: no texture has more, and they would take more than a GiB of memory.
inline constexpr std::uint64_t max_picture_pixels = std::uint64_t{1} << 28;

class picture
{
public:
    picture() = default;
    // Throws std::bad_alloc: check the size against the input first.
    picture(std::uint32_t width, std::uint32_t height)
        : m_memory(allocateLarge(std::size_t{width} * height * sizeof(rgba_pixel)))
        , m_width(width)
        , m_height(height)
    {
        std::uninitialized_default_construct_n(first(), pixelCount());
    }
    picture(picture&& other) noexcept { *this = std::move(other); }
    picture& operator=(picture&& other) noexcept
    {
        m_memory = std::move(other.m_memory);
        m_width = std::exchange(other.m_width, 0u);
        m_height = std::exchange(other.m_height, 0u);
        return *this;
    }

    std::uint32_t width() const { return m_width; }
    std::uint32_t height() const { return m_height; }
    std::size_t pixelCount() const { return std::size_t{m_width} * m_height; }

    std::span<rgba_pixel> pixels() { return {first(), pixelCount()}; }
    std::span<const rgba_pixel> pixels() const { return {first(), pixelCount()}; }
    std::span<rgba_pixel> row(std::uint32_t y) { return pixels().subspan(std::size_t{y} * m_width, m_width); }
    std::span<const rgba_pixel> row(std::uint32_t y) const
    {
        return pixels().subspan(std::size_t{y} * m_width, m_width);
    }

private:
    rgba_pixel* first() const { return reinterpret_cast<rgba_pixel*>(m_memory.get()); }

    large_memory m_memory;
    std::uint32_t m_width = 0;
    std::uint32_t m_height = 0;
};

} // namespace korvane
