#pragma once

// A whole tree of internal paths as one block of bytes, and back, with its tables ready for use: putting a million
// paths into their table is most of the time that indexing takes. Used by pack_cache (docs/formats/pack_cache.md,
// "Tables", says what stands where).

#include "EASY_GUI/services/byte_reader.h"
#include "EASY_GUI/services/failure.h"
#include "Korvane/archives/path_tree.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <utility>
#include <vector>

namespace korvane
{

// How large the parts of an image are.
struct tree_image_counts
{
    std::uint32_t entries = 0; // of all archives
    std::uint32_t nodes = 0;   // the root included
    std::uint32_t slots = 0;   // a power of two, more than nodes
    std::uint32_t text = 0;    // bytes

    static constexpr std::size_t entry_size = 20, node_size = 20, slot_size = 12;
};

// Taking a tree apart: what a writer of an image needs to know, in the order of the image.
class tree_image
{
public:
    explicit tree_image(const path_tree& tree);

    // False when there is more text than an image can hold.
    bool isPossible() const { return m_is_possible; }
    const tree_image_counts& counts() const { return m_counts; }

    // Both fill exactly what counts() says.
    void writeTables(std::byte* target) const;
    void writeText(std::byte* target) const;

private:
    const path_tree& m_tree;
    tree_image_counts m_counts;
    std::vector<std::uint32_t> m_path_at; // of each node
    bool m_is_possible = false;
};

// Puts a tree together again. Every number is checked, so that a tree made of wrong bytes may hold wrong paths, but is
// as safe to use as any other. A tree that could not be put together is good for nothing.
class tree_image_reader
{
public:
    // Records are asked for in blocks of so many; the last one of a table is smaller.
    static constexpr std::size_t block_records = 8192;
    // Gives the next bytes of the tables; empty when they cannot be had.
    using table_port = std::function<std::span<const std::byte>(std::size_t size_bytes)>;

    // Text lies in the tree's memory with the bytes behind it that a tree wants; it need not be there yet.
    tree_image_reader(path_tree& tree, const tree_image_counts& counts, std::span<const char> text, table_port tables)
        : m_tree(tree)
        , m_counts(counts)
        , m_text(text)
        , m_tables(std::move(tables))
    {
    }

    // The archives in their order, each with its count of files.
    [[nodiscard]] bool read(std::vector<std::unique_ptr<archive_record>> archives, failure& why);

private:
    template <typename reader>
    bool readTable(std::size_t count, std::size_t record_size, failure& why, reader read);
    bool readFiles(std::vector<std::unique_ptr<archive_record>>& archives, failure& why);
    bool readNodes(failure& why);
    bool hangsTogether(failure& why) const;
    bool readSlots(failure& why);
    bool isText(std::uint32_t at, std::uint32_t length) const
    {
        return at <= m_text.size() && length <= m_text.size() - at;
    }

    path_tree& m_tree;
    tree_image_counts m_counts;
    std::span<const char> m_text;
    table_port m_tables;
    std::span<pack_file_node> m_files;
};

} // namespace korvane
