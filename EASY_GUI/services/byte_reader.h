#pragma once

// Reads little-endian values from a span, bounds-checked, with a sticky error: past the end every read gives zero,
// the first error is kept, nothing is read partially. A reader borrows its bytes and is cheap to copy; a block of a
// file gets a reader of its own (sub), which still reports positions in the whole file.

#include "EASY_GUI/services/failure.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

namespace korvane
{

// A value of an unsigned integer type from little-endian bytes; the caller has checked that they are there.
template <class integer>
[[nodiscard]] inline integer littleEndian(const std::byte* bytes)
{
    static_assert(std::is_unsigned_v<integer> && std::endian::native == std::endian::little);
    integer value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

class byte_reader
{
public:
    explicit byte_reader(std::span<const std::byte> bytes, std::uint64_t base_offset = 0)
        : m_bytes(bytes)
        , m_base(base_offset)
    {
    }

    // Prefix of every field name in a failure: "LOD 0, group 2". Set before the fields of that record are read.
    void enter(std::string context) { m_context = std::move(context); }

    std::uint8_t u8(std::string_view field) { return read<std::uint8_t>(field); }
    std::uint16_t u16(std::string_view field) { return read<std::uint16_t>(field); }
    std::uint32_t u32(std::string_view field) { return read<std::uint32_t>(field); }
    std::uint64_t u64(std::string_view field) { return read<std::uint64_t>(field); }
    float f32(std::string_view field) { return std::bit_cast<float>(read<std::uint32_t>(field)); }

    // The next size bytes; an empty span when they are not there.
    std::span<const std::byte> bytes(std::uint64_t size, std::string_view field);
    // Bytes up to the first zero unit of 1 or 2 bytes, which is consumed too but not part of the result.
    std::span<const std::byte> zeroTerminated(std::size_t unit_bytes, std::string_view field);
    // A reader over the next size bytes, which this reader steps over.
    byte_reader sub(std::uint64_t size, std::string_view field);

    // Moves to a position from the start of this reader's bytes; one past the end is an error.
    void seek(std::uint64_t position, std::string_view field);
    void skip(std::uint64_t size, std::string_view field) { static_cast<void>(bytes(size, field)); }

    std::uint64_t position() const { return m_position; }
    std::uint64_t size() const { return m_bytes.size(); }
    std::uint64_t left() const { return m_bytes.size() - m_position; }
    // True when count records of record_bytes each (not 0) are left: ask before anything is allocated.
    bool fits(std::uint64_t count, std::uint64_t record_bytes) const { return count <= left() / record_bytes; }

    bool ok() const { return !m_failure; }
    // Records an error at a position the caller names, by default where the last field began; always returns false.
    bool fail(failure_kind kind, std::string what, std::string_view field);
    bool failAt(std::uint64_t position, failure_kind kind, std::string what, std::string_view field);
    // True when nothing failed; otherwise copies the first error to why and returns false.
    [[nodiscard]] bool finish(failure& why) const;

private:
    template <class integer>
    integer read(std::string_view field)
    {
        if (!m_failure && sizeof(integer) <= left()) [[likely]]
        {
            const integer value = littleEndian<integer>(m_bytes.data() + m_position);
            m_field_position = m_position;
            m_position += sizeof(integer);
            return value;
        }
        missing(sizeof(integer), field);
        return 0;
    }
    void missing(std::uint64_t wanted, std::string_view field);

    std::span<const std::byte> m_bytes;
    std::uint64_t m_base = 0;
    std::uint64_t m_position = 0;
    std::uint64_t m_field_position = 0;
    std::string m_context;
    failure m_failure;
};

} // namespace korvane
