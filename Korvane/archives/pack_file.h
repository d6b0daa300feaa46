#pragma once

// Reads the header and the index of one .pack archive (docs/formats/pack.md). The whole index is read and checked
// before anything enters the tree: an archive is in it as a whole or not at all.

#include "EASY_GUI/services/failure.h"
#include "EASY_GUI/services/log_port.h"
#include "Korvane/archives/path_tree.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace korvane
{

struct pack_header
{
    std::string magic; // "PFH5"
    std::uint32_t flags = 0;
    std::uint32_t name_count = 0;
    std::uint32_t names_size = 0; // read, but the names are counted byte by byte
    std::uint32_t file_count = 0;
    std::uint32_t index_size = 0;
    std::uint32_t header_size = 0;

    static constexpr std::uint32_t time_stamp_flag = 0x40;
    bool hasTimeStamps() const { return (flags & time_stamp_flag) != 0; }
    bool hasCompressionBytes() const { return magic == "PFH5"; }
};

class pack_file
{
public:
    // An internal path has at most so many bytes.
    static constexpr std::size_t max_path = 1023;
    // An archive names at most so many others.
    static constexpr std::uint32_t max_names = 65536;

    // Reads the header from an archive's first bytes; bytes may be shorter than a header when the file is. Throws
    // std::runtime_error("Unknown .PACK file format") for a magic that is none of PFH0, PFH2 to PFH5: the one exception
    // that leaves this folder.
    [[nodiscard]] static bool readHeader(std::span<const std::byte> bytes, pack_header& header, failure& why);

    // The archive goes into that tree, whose memory takes the index.
    explicit pack_file(path_tree& tree) : m_po_tree(&tree) {}

    // Opens the archive at a path on disk and reads and checks header and index. Afterwards enter() puts it into the
    // tree. A failure leaves nothing in the tree's memory.
    [[nodiscard]] bool open(const std::string& path, failure& why);
    // The same in two steps. The index goes into that memory, which is the tree's, too (path_tree::addMemory()).
    [[nodiscard]] bool openHeader(const std::string& path, failure& why);
    [[nodiscard]] bool readIndex(arena& memory, failure& why);

    const pack_header& header() const { return m_header; }
    const std::vector<std::string>& archiveNames() const { return m_archive_names; }
    std::size_t entryCount() const { return m_entry_count; }
    // Open as far as open() came; not for use after enter().
    const positioned_file& file() const { return m_archive->file; }
    // Files that were left out because their data does not lie inside the archive: their paths.
    const std::vector<std::string>& leftOut() const { return m_left_out; }

    // Enters everything into the tree.
    void enter();

    // The tree of all archives, for the whole process; null before the first load. Replaced as a whole, by
    // publishGame() of game_loader.h.
    static std::shared_ptr<const path_tree> sm_poPathTree;

private:
    std::uint64_t largestIndex() const;
    bool readParts(failure& why);
    bool readBlock(std::size_t size, failure& why);
    bool readNames(std::size_t& position, failure& why);
    bool readRecords(std::size_t position, failure& why);
    bool failAt(failure& why, failure_kind kind, std::string what, std::size_t position, std::string field) const;

    path_tree* m_po_tree;
    arena* m_po_memory = nullptr; // while the index is read
    std::unique_ptr<archive_record> m_archive;
    pack_header m_header;
    std::span<char> m_index; // names and records, in the tree's memory; paths in it become lower case
    std::vector<std::string> m_archive_names;
    std::span<pack_file_node> m_entries; // the first m_entry_count of them
    std::size_t m_entry_count = 0;
    std::vector<std::uint64_t> m_hashes; // of their paths
    std::vector<std::string> m_left_out;
};

// The node of an internal path in the tree of all archives; null, with a line in the log, when there is no tree yet.
[[nodiscard]] path_tree::node_pointer getNodeFromInternalPath(std::string_view path, const log_port& log = {});

} // namespace korvane
