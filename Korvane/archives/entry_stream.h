#pragma once

// The bytes of an archive's entry piece by piece, unpacked on the way (pack_entry.h): for those who bring them to the
// disk, whatever their size. Takes about two MiB, and for a compressed entry what its format needs to look back. One
// thread; the entry outlives it.

#include "EASY_GUI/services/failure.h"
#include "Korvane/archives/entry_decoder.h"
#include "Korvane/archives/path_tree.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace korvane
{

class entry_stream
{
public:
    explicit entry_stream(const pack_file_node& entry) : m_entry(entry) {}

    // The next bytes, valid until the next call; none at the end, and only after all of the entry was found to be
    // right. On failure why.path is the internal path and names the archive. An entry unpacked to more than
    // max_unpacked_size bytes is refused, as readEntry() does.
    [[nodiscard]] bool next(std::span<const std::byte>& piece, failure& why);

private:
    bool readStored(std::size_t most, failure& why);
    bool nextUnpacked(std::span<const std::byte>& piece, failure& why);
    bool begin(failure& why);
    bool finish(std::span<std::byte> target, failure& why);
    bool failAt(failure_kind kind, std::string what, std::uint64_t offset, const char* field, failure& why) const;

    const pack_file_node& m_entry;
    std::vector<std::byte> m_stored;   // a piece of the archive
    std::span<const std::byte> m_data; // of it, what is not unpacked yet
    std::vector<std::byte> m_unpacked;
    std::unique_ptr<entry_decoder> m_decoder;
    std::uint64_t m_read = 0;     // bytes of the entry
    std::uint64_t m_produced = 0; // unpacked bytes
    std::uint64_t m_size = 0;     // that these are to be
    bool m_is_finished = false;   // all of it, and nothing behind it
};

} // namespace korvane
