#pragma once

// Where a file was found: an entry of the archives, which stay open as long as somebody holds it, or a file on the
// disk. A value that is copied cheaply and read from any thread, and again later.

#include "EASY_GUI/services/byte_source.h"
#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/memory_file.h"
#include "Korvane/archives/path_tree.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <utility>

namespace korvane
{

class game_file
{
public:
    game_file() = default; // nowhere
    explicit game_file(std::shared_ptr<const pack_file_node> entry) : m_po_entry(std::move(entry)) {}
    explicit game_file(std::string disk_path) : m_disk_path(std::move(disk_path)) {}

    explicit operator bool() const { return m_po_entry || !m_disk_path.empty(); }
    const pack_file_node* entry() const { return m_po_entry.get(); } // null: it is not in the archives
    const std::string& diskPath() const { return m_disk_path; }      // empty: it is not on the disk
    // The internal path of an entry, or the path on the disk.
    std::string path() const { return m_po_entry ? std::string(m_po_entry->internalPath()) : m_disk_path; }

    // The whole file, unpacked. On failure bytes stays as it is, and why.path says which file it is. One with more
    // bytes than the limit is refused before memory is taken for it.
    [[nodiscard]] bool read(memory_file& bytes, failure& why,
                            std::uint64_t limit = std::numeric_limits<std::uint64_t>::max()) const;
    // The same piece by piece, from the beginning; the source outlives this value.
    [[nodiscard]] byte_source pieces() const;
    // Fills target with the file's first bytes, unpacked, and gives how many there are: fewer than target has only
    // where the file ends.
    [[nodiscard]] bool readStart(std::span<std::byte> target, std::size_t& count, failure& why) const;

private:
    std::shared_ptr<const pack_file_node> m_po_entry;
    std::string m_disk_path;
};

} // namespace korvane
