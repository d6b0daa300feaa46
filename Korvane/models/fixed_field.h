#pragma once

// The unit of in-place editing: one fixed-width field of a loaded file image. It starts with the file's own bytes, so
// that writing an untouched field back changes nothing.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

enum class field_mode
{
    raw,        // exactly width bytes are copied from the source; missing ones become zero
    zero_padded // cleared, then at most width - 1 bytes are copied: the value always ends in a zero
};

class fixed_field
{
public:
    fixed_field() = default; // width 0: setting a value does nothing
    // The bytes are the field's present content, in the file image, which outlives the field; their number is its
    // width. wide: the text is stored as 16-bit little-endian characters (version 5 texture paths).
    fixed_field(std::uint64_t file_offset, std::span<const std::byte> bytes, field_mode mode, bool wide = false)
        : m_file_offset(file_offset)
        , m_stored(bytes)
        , m_mode(mode)
        , m_wide(wide)
    {
    }

    // 8-bit text, or UTF-8 for a wide field. What is longer than textCapacity() is cut.
    void setText(std::string_view text);
    void setU32(std::uint32_t value);
    // Exactly width() bytes, as bytes() gave them: an edit that is taken back restores what stood behind the text, too.
    void setBytes(std::span<const std::byte> bytes);

    std::string text() const; // up to the first zero; UTF-8 for a wide field
    std::uint32_t u32() const;

    std::uint64_t fileOffset() const { return m_file_offset; }
    std::size_t width() const { return m_stored.size(); }
    std::span<const std::byte> bytes() const
    {
        return m_edited.empty() ? m_stored : std::span<const std::byte>(m_edited);
    }
    // What the file image has here: the field's value at the last load or save.
    std::span<const std::byte> storedBytes() const { return m_stored; }
    bool isEdited() const; // holds another value than the file image
    bool isWide() const { return m_wide; }
    // Characters that a text may have: bytes, or 16-bit units in a wide field.
    std::size_t textCapacity() const;

private:
    void set(std::span<const std::byte> source);

    std::uint64_t m_file_offset = 0;
    std::span<const std::byte> m_stored;
    std::vector<std::byte> m_edited; // empty until a value is set: a model has thousands of fields, few are edited
    field_mode m_mode = field_mode::raw;
    bool m_wide = false;
};

} // namespace korvane
