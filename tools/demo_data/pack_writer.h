#pragma once

// Builds a .pack archive in memory (docs/formats/pack.md), PFH4 or PFH5. The same calls give the same bytes on every
// system.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace korvane::demo
{

enum class pack_format
{
    pfh4,
    pfh5 // can hold compressed entries
};

enum class pack_compression
{
    none,
    zstd,
    lz4,
    lzma
};

// What a compressed entry stores: its unpacked length, then the compressed bytes. With none: the bytes as they are.
[[nodiscard]] std::vector<std::byte> packed(std::span<const std::byte> bytes, pack_compression compression);

class pack_writer
{
public:
    // What an archive with time stamps says of each of its files.
    static constexpr std::uint32_t time_stamp = 1'600'000'000;

    pack_writer(pack_format format, bool has_time_stamps, std::vector<std::string> archive_names = {})
        : m_format(format)
        , m_has_time_stamps(has_time_stamps)
        , m_archive_names(std::move(archive_names))
    {
    }

    // The internal path is stored as given, with '\' for '/'. Only a PFH5 archive takes a compression other than none.
    // All together is to stay below 4 GiB.
    void add(std::string_view internal_path, std::span<const std::byte> bytes,
             pack_compression compression = pack_compression::none);

    std::size_t entryCount() const { return m_entry_count; }

    // The whole archive; afterwards the writer is empty.
    [[nodiscard]] std::vector<std::byte> take();

private:
    pack_format m_format;
    bool m_has_time_stamps;
    std::vector<std::string> m_archive_names;
    std::uint32_t m_entry_count = 0;
    std::vector<std::byte> m_index, m_data;
};

} // namespace korvane::demo
