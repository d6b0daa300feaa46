#include "EASY_GUI/services/byte_reader.h"

#include <utility>

namespace korvane
{

std::span<const std::byte> byte_reader::bytes(std::uint64_t size, std::string_view field)
{
    if (m_failure || size > left())
    {
        missing(size, field);
        return {};
    }
    m_field_position = m_position;
    const auto result = m_bytes.subspan(static_cast<std::size_t>(m_position), static_cast<std::size_t>(size));
    m_position += size;
    return result;
}

std::span<const std::byte> byte_reader::zeroTerminated(std::size_t unit_bytes, std::string_view field)
{
    if (m_failure)
        return {};
    const auto rest = m_bytes.subspan(static_cast<std::size_t>(m_position));
    for (std::size_t end = 0; unit_bytes <= rest.size() - end; end += unit_bytes)
    {
        const bool is_zero = rest[end] == std::byte{0} && (unit_bytes == 1 || rest[end + 1] == std::byte{0});
        if (is_zero)
        {
            m_field_position = m_position;
            m_position += end + unit_bytes;
            return rest.first(end);
        }
    }
    m_field_position = m_position;
    fail(failure_kind::truncated, "the text has no terminating zero before the end", field);
    return {};
}

byte_reader byte_reader::sub(std::uint64_t size, std::string_view field)
{
    const std::uint64_t begin = m_base + m_position;
    byte_reader block(bytes(size, field), begin);
    block.m_context = m_context;
    block.m_failure = m_failure;
    return block;
}

void byte_reader::seek(std::uint64_t position, std::string_view field)
{
    if (m_failure)
        return;
    m_field_position = position;
    if (position > m_bytes.size())
        fail(failure_kind::truncated,
             "the position " + std::to_string(m_base + position) + " lies beyond the end at " +
                 std::to_string(m_base + m_bytes.size()),
             field);
    else
        m_position = position;
}

void byte_reader::missing(std::uint64_t wanted, std::string_view field)
{
    if (m_failure)
        return;
    m_field_position = m_position;
    fail(failure_kind::truncated,
         "the data ends too early: expected " + std::to_string(wanted) + " bytes but " + std::to_string(left()) +
             " are left",
         field);
}

bool byte_reader::fail(failure_kind kind, std::string what, std::string_view field)
{
    return failAt(m_field_position, kind, std::move(what), field);
}

bool byte_reader::failAt(std::uint64_t position, failure_kind kind, std::string what, std::string_view field)
{
    if (m_failure)
        return false;
    m_failure.kind = kind;
    m_failure.what = std::move(what);
    m_failure.offset = m_base + position;
    m_failure.field = m_context;
    if (!m_context.empty() && !field.empty())
        m_failure.field += ", ";
    m_failure.field += field;
    return false;
}

bool byte_reader::finish(failure& why) const
{
    if (!m_failure)
        return true;
    if (!why)
        why = m_failure;
    return false;
}

} // namespace korvane
