#pragma once

// A file's bytes as the rows of a list: position, bytes, and what they are as characters. Made for files of any size:
// what a row shows is read page by page when it is seen, and not by the list's thread. A row whose page is not there
// yet is empty, and the page stands in wanted(). One thread.

#include "EASY_GUI/services/list_model.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

class hex_rows : public list_model
{
public:
    static constexpr std::uint64_t page_size = 16384;

    // Told once when a row is asked for whose page is not there; wanted() says which.
    std::function<void()> onWanted;

    void restart(std::uint64_t file_size); // of another file; no page is there
    // The pages that are wanted, and no longer are.
    std::vector<std::uint64_t> takeWanted();
    // Its bytes; none: it cannot be read.
    void take(std::uint64_t page, std::vector<std::byte> bytes);

    std::size_t bytesInRow() const { return m_width; } // 16, and more where there would be too many rows for a list
    std::size_t rowOf(std::uint64_t position) const { return static_cast<std::size_t>(position / m_width); }
    std::uint64_t positionOf(std::size_t row) const { return std::uint64_t{row} * m_width; }

    std::span<const list_column> columns() const override;
    std::size_t rowCount() const override { return static_cast<std::size_t>((m_size + m_width - 1) / m_width); }
    std::string text(std::size_t row, std::size_t column) const override;
    row_mark mark(std::size_t row) const override;

private:
    const std::vector<std::byte>* pageOf(std::size_t row) const;

    std::uint64_t m_size = 0;
    std::size_t m_width = 16;
    std::map<std::uint64_t, std::vector<std::byte>> m_pages;
    mutable std::set<std::uint64_t> m_wanted;
};

// "1f40", "0x1f40" and "8,000" as the person means them: with 0x or a letter a position in sixteens, else in tens.
// Nothing: that is no number.
[[nodiscard]] std::optional<std::uint64_t> positionIn(std::string_view typed);
// What is looked for among bytes: "0x1f 40" those bytes, else the text itself.
[[nodiscard]] std::vector<std::byte> bytesIn(std::string_view typed);

} // namespace korvane
