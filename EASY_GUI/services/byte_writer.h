#pragma once

// Builds a file in memory, little-endian. Later patched positions (sizes, offsets) are set in place with the put
// functions; a position outside what was written is a programming error.

#include <bit>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>
#include <vector>

namespace korvane
{

class byte_writer
{
public:
    void u8(std::uint8_t value) { append(&value, 1); }
    void u16(std::uint16_t value) { append(&value, sizeof value); }
    void u32(std::uint32_t value) { append(&value, sizeof value); }
    void u64(std::uint64_t value) { append(&value, sizeof value); }
    void f32(float value) { u32(std::bit_cast<std::uint32_t>(value)); }
    void bytes(std::span<const std::byte> value) { append(value.data(), value.size()); }
    void text(std::string_view value) { append(value.data(), value.size()); }
    void zeros(std::size_t count) { m_bytes.resize(m_bytes.size() + count); }
    // A zero-padded text of exactly width bytes; at most width - 1 characters are kept, so it ends in a zero.
    void paddedText(std::string_view value, std::size_t width)
    {
        value = value.substr(0, width - 1);
        text(value);
        zeros(width - value.size());
    }

    void putU32(std::size_t position, std::uint32_t value)
    {
        assert(position + sizeof value <= m_bytes.size());
        std::memcpy(m_bytes.data() + position, &value, sizeof value);
    }

    void reserve(std::size_t size) { m_bytes.reserve(size); } // of the whole file, where it is known about
    std::size_t size() const { return m_bytes.size(); }
    std::span<const std::byte> view() const { return m_bytes; }
    std::vector<std::byte> take() { return std::move(m_bytes); }

private:
    void append(const void* data, std::size_t size)
    {
        static_assert(std::endian::native == std::endian::little);
        const auto* first = static_cast<const std::byte*>(data);
        m_bytes.insert(m_bytes.end(), first, first + size);
    }

    std::vector<std::byte> m_bytes;
};

} // namespace korvane
