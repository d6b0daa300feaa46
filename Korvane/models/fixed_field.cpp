#include "Korvane/models/fixed_field.h"

#include "EASY_GUI/services/text.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cstring>

namespace korvane
{

namespace
{

std::u16string wideUntilZero(std::span<const std::byte> bytes)
{
    std::u16string text;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
    {
        const auto unit =
            static_cast<char16_t>(std::to_integer<unsigned>(bytes[i]) | (std::to_integer<unsigned>(bytes[i + 1]) << 8));
        if (unit == 0)
            break;
        text += unit;
    }
    return text;
}

} // namespace

void fixed_field::setText(std::string_view text)
{
    if (!m_wide)
        return set(std::as_bytes(std::span(text)));
    std::u16string units = utf16FromUtf8(text);
    units.resize(std::min(units.size(), textCapacity())); // the last unit stays zero
    static_assert(std::endian::native == std::endian::little);
    set(std::as_bytes(std::span(units)));
}

void fixed_field::setU32(std::uint32_t value)
{
    static_assert(std::endian::native == std::endian::little);
    set(std::as_bytes(std::span(&value, 1)));
}

void fixed_field::set(std::span<const std::byte> source)
{
    if (width() == 0)
        return;
    const std::size_t room = m_mode == field_mode::zero_padded ? width() - 1 : width();
    m_edited.assign(width(), std::byte{0});
    const auto kept = source.first(std::min(source.size(), room));
    std::copy(kept.begin(), kept.end(), m_edited.begin());
}

void fixed_field::setBytes(std::span<const std::byte> bytes)
{
    assert(bytes.size() == width());
    m_edited.assign(bytes.begin(), bytes.end());
}

bool fixed_field::isEdited() const
{
    return !m_edited.empty() && !std::equal(m_edited.begin(), m_edited.end(), m_stored.begin(), m_stored.end());
}

std::size_t fixed_field::textCapacity() const
{
    const std::size_t characters = m_wide ? width() / 2 : width();
    return characters > 0 && m_mode == field_mode::zero_padded ? characters - 1 : characters;
}

std::string fixed_field::text() const
{
    return m_wide ? utf8FromUtf16(wideUntilZero(bytes())) : std::string(untilZero(bytes()));
}

std::uint32_t fixed_field::u32() const
{
    std::uint32_t value = 0;
    std::memcpy(&value, bytes().data(), std::min(width(), sizeof value));
    return value;
}

} // namespace korvane
