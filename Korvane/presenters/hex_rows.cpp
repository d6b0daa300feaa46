#include "Korvane/presenters/hex_rows.h"

#include "Korvane/jobs/file_preview.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::uint64_t most_rows = 100'000'000; // of the system's lists
constexpr std::size_t most_pages = 64;

bool isHexDigit(char each)
{
    return (each >= '0' && each <= '9') || (each >= 'a' && each <= 'f') || (each >= 'A' && each <= 'F');
}

bool hasHexMark(std::string_view typed)
{
    return typed.starts_with("0x") || typed.starts_with("0X");
}

} // namespace

void hex_rows::restart(std::uint64_t file_size)
{
    m_size = file_size;
    m_pages.clear();
    m_wanted.clear();
    m_width = 16;
    while (m_size / m_width >= most_rows)
        m_width *= 2;
}

std::vector<std::uint64_t> hex_rows::takeWanted()
{
    const std::set<std::uint64_t> wanted = std::exchange(m_wanted, {});
    return {wanted.begin(), wanted.end()};
}

void hex_rows::take(std::uint64_t page, std::vector<std::byte> bytes)
{
    if (m_pages.size() >= most_pages)
    {
        const auto first = m_pages.begin();
        const auto last = std::prev(m_pages.end());
        const bool is_first_farther =
            page > first->first && page - first->first > last->first - std::min(page, last->first);
        m_pages.erase(is_first_farther ? first : last);
    }
    m_pages[page] = std::move(bytes);
}

std::span<const list_column> hex_rows::columns() const
{
    static constexpr list_column all[] = {{"Position", 90}, {"Bytes", 400}, {"Text", 0}};
    return all;
}

const std::vector<std::byte>* hex_rows::pageOf(std::size_t row) const
{
    const std::uint64_t page = positionOf(row) / page_size;
    if (const auto found = m_pages.find(page); found != m_pages.end())
        return &found->second;
    if (m_wanted.insert(page).second && m_wanted.size() == 1 && onWanted)
        onWanted();
    return nullptr;
}

std::string hex_rows::text(std::size_t row, std::size_t column) const
{
    const std::uint64_t position = positionOf(row);
    if (column == 0)
    {
        std::array<char, 20> digits{};
        std::snprintf(digits.data(), digits.size(), "%08llx", static_cast<unsigned long long>(position));
        return digits.data();
    }
    const std::vector<std::byte>* const page = pageOf(row);
    const std::uint64_t from = position % page_size;
    if (page == nullptr)
        return {};
    if (from >= page->size())
        return column == 1 ? "cannot be read" : "";
    const std::span bytes = std::span(*page).subspan(static_cast<std::size_t>(from));
    const std::span shown = bytes.first(std::min(bytes.size(), m_width));
    return column == 1 ? hexText(shown) : characterText(shown);
}

row_mark hex_rows::mark(std::size_t row) const
{
    const auto found = m_pages.find(positionOf(row) / page_size);
    return found != m_pages.end() && positionOf(row) % page_size >= found->second.size() ? row_mark::error
                                                                                         : row_mark::plain;
}

std::optional<std::uint64_t> positionIn(std::string_view typed)
{
    std::string digits;
    for (const char each : typed.substr(hasHexMark(typed) ? 2 : 0))
        if (each != ' ' && each != ',')
            digits += each;
    const bool is_hex = hasHexMark(typed) || digits.find_first_not_of("0123456789") != std::string::npos;
    std::uint64_t position = 0;
    const char* const end = digits.data() + digits.size();
    const auto read = std::from_chars(digits.data(), end, position, is_hex ? 16 : 10);
    return read.ec == std::errc() && read.ptr == end ? std::optional(position) : std::nullopt;
}

std::vector<std::byte> bytesIn(std::string_view typed)
{
    std::string digits;
    if (hasHexMark(typed))
        for (const char each : typed.substr(2))
            if (each != ' ')
                digits += each;
    std::vector<std::byte> bytes;
    if (!digits.empty() && digits.size() % 2 == 0 && std::all_of(digits.begin(), digits.end(), isHexDigit))
        for (std::size_t i = 0; i < digits.size(); i += 2)
        {
            unsigned value = 0;
            std::from_chars(digits.data() + i, digits.data() + i + 2, value, 16);
            bytes.push_back(static_cast<std::byte>(value));
        }
    else
        for (const char each : typed)
            bytes.push_back(static_cast<std::byte>(each));
    return bytes;
}

} // namespace korvane
