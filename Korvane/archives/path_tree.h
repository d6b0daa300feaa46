#pragma once

// The tree of internal paths: every file of every indexed archive by its path, the archive entered last winning. One
// tree is built by one thread and then only read, from any thread; it owns all its nodes and the text of their paths.
// Whoever holds a node (a shared pointer into the tree) keeps the whole tree alive, so that a re-read, which builds a
// new tree, takes nothing away from anybody.
//
// Made for a million files: nodes are small records in arrays, found through one hash table over whole paths, and a
// folder's children are sorted when somebody asks for them.

#include "EASY_GUI/services/arena.h"
#include "EASY_GUI/services/positioned_file.h"

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace korvane
{

// One archive: what is known of the file on disk, or of a mod folder that stands for one (mod_folder.h). Entries refer
// to it.
struct archive_record
{
    std::string name;             // file name as the folder listing gives it
    std::string path;             // on disk
    std::string format;           // "PFH5", "folder"
    bool is_folder = false;       // then the file is never open, and entries have no offset
    std::uint32_t file_count = 0; // in the tree
    positioned_file file;         // open as long as the tree lives
};

// One file inside one archive.
class pack_file_node
{
public:
    pack_file_node(const archive_record& archive, std::string_view path, std::uint32_t size, std::uint32_t offset,
                   std::uint8_t compression, std::uint32_t time_stamp)
        : m_archive(&archive)
        , m_path(path.data())
        , m_size(size)
        , m_offset(offset)
        , m_time_stamp(time_stamp)
        , m_path_length(static_cast<std::uint16_t>(path.size()))
        , m_compression(compression)
    {
    }

    std::string_view internalPath() const { return {m_path, m_path_length}; } // lower case, '\' between components
    std::string_view fileName() const;                                        // after the last '\' or '/'
    std::string_view extension() const;                                       // of the file name, without the dot
    const std::string& packPath() const { return m_archive->path; }
    const archive_record& archive() const { return *m_archive; }
    std::uint32_t size() const { return m_size; }     // bytes in the archive
    std::uint32_t offset() const { return m_offset; } // from the start of the archive
    std::uint8_t compression() const { return m_compression; }
    std::uint32_t timeStamp() const { return m_time_stamp; } // kept, not interpreted

private:
    const archive_record* m_archive;
    const char* m_path;
    std::uint32_t m_size;
    std::uint32_t m_offset;
    std::uint32_t m_time_stamp;
    std::uint16_t m_path_length;
    std::uint8_t m_compression;
};

// A folder or a file of the tree.
class path_node
{
public:
    std::string_view name() const { return {m_path + m_name_at, std::size_t{m_path_length} - m_name_at}; }
    std::string_view path() const { return {m_path, m_path_length}; } // empty for the root
    const pack_file_node* file() const { return m_file; }             // null for a folder

private:
    friend class path_tree;
    friend class tree_image;
    friend class tree_image_reader;
    const char* m_path = nullptr;
    const pack_file_node* m_file = nullptr;
    std::uint32_t m_first_child = 0; // 0: none, for the root is nobody's child
    std::uint32_t m_next_sibling = 0;
    std::uint16_t m_path_length = 0;
    std::uint16_t m_name_at = 0;
};

class path_tree : public std::enable_shared_from_this<path_tree>
{
public:
    using node_pointer = std::shared_ptr<const path_node>;

    path_tree();
    path_tree(const path_tree&) = delete;
    path_tree& operator=(const path_tree&) = delete;

    // The node of a path with '\' or '/' between its components, in any case; empty components are dropped and an empty
    // path is the root. Null when there is none. The pointer keeps the tree alive.
    node_pointer getNodeFromInternalPath(std::string_view path) const;
    // The same without sharing: valid as long as the caller holds the tree.
    const path_node* find(std::string_view path) const;
    // The node of a path exactly as it is stored, where '/' is an ordinary character.
    const path_node* findStored(std::string_view path) const;
    // The file of a path as a person, a model or a definition spells it: '\' or '/', in any case, blanks and separators
    // at its ends passed over. What an archive stores just so counts first; last of all the stored paths that have a
    // '/' or such blanks themselves. Null when there is none, or only a folder. Valid as long as the caller holds the
    // tree. This is the one way in which files are looked up, but where a listing goes from path to path.
    const pack_file_node* findFile(std::string_view path) const;
    // Makes what the first look-up of a path that nothing holds would wait for. Any thread.
    void prepareForMisses() const;
    // The copy of a file that would count without it: that of the archive that was entered last before its own. Null
    // when there is none. Looks through every archive.
    const pack_file_node* copyBelow(const pack_file_node& file) const;

    const path_node& root() const { return m_nodes.front(); }
    std::vector<const path_node*> children(const path_node& folder) const; // ordered by name
    // Without looking at all of them.
    bool hasMoreChildren(const path_node& folder, std::size_t count) const;
    // Those that have something in them, in the same order.
    std::vector<const path_node*> folders(const path_node& folder) const;
    // The winning files below a folder, at any depth, ordered by path.
    std::vector<const pack_file_node*> filesBelow(const path_node& folder) const;
    bool isFolder(const path_node& node) const { return node.m_first_child != 0; }
    // Numbers that stand for nodes: 0 is the root.
    std::size_t numberOf(const path_node& node) const { return static_cast<std::size_t>(&node - m_nodes.data()); }
    const path_node& node(std::size_t number) const { return m_nodes[number]; }
    // The winning file of every path, ordered by path (bytes).
    std::vector<const pack_file_node*> files() const;
    // The same as the numbers of their nodes: half the memory.
    std::vector<std::uint32_t> fileNumbers() const;
    // The file that counts for an entry's path: itself, or the one that hides it.
    const pack_file_node* winnerOf(const pack_file_node& file) const;

    // In the order in which they were entered.
    const std::vector<std::unique_ptr<archive_record>>& archives() const { return m_archives; }
    // Every file of every archive, in the same order.
    const std::vector<std::span<const pack_file_node>>& entries() const { return m_entries; }
    std::size_t entryCount() const;

    // A path may be read so far beyond its end: whoever allocates text adds this.
    static constexpr std::size_t readable_behind_paths = 16;

    // --- building -------------------------------------------------------------------------------------------------
    // Where paths and files of archives to come are put; they live as long as the tree.
    arena& memory() { return m_memories.front(); }
    // Another one, for one more thread that reads archives; it stays the tree's.
    arena& addMemory() { return m_memories.emplace_back(); }
    // Enters an archive's files in their order. They lie in memory() and refer to the archive; their paths are lower
    // case, without empty components, not empty, and lie there, too, with some bytes behind them that may be read.
    // The hashes are those of hashesOf(), which any thread may have made; none: they are made here.
    void enter(std::unique_ptr<archive_record> archive, std::span<const pack_file_node> files,
               std::span<const std::uint64_t> hashes = {});
    [[nodiscard]] static std::vector<std::uint64_t> hashesOf(std::span<const pack_file_node> files);
    // Makes room for so many more files, so that no rehashing interrupts the entering.
    void reserve(std::size_t file_count);

private:
    friend class tree_image;
    friend class tree_image_reader;

    // Holds what a lookup compares, so that it need not fetch the node as well.
    struct slot
    {
        const char* path = nullptr;
        std::uint32_t node = 0; // 0: free, for the root needs no slot
        std::uint16_t path_length = 0;
        std::uint16_t tag = 0; // the hash's high bits
    };

    struct ordered_child
    {
        const path_node* node;
        bool is_folder;
    };
    template <typename visitor>
    void visitFiles(const path_node& folder, const visitor& visit) const;
    void addChildren(const path_node& folder, std::vector<ordered_child>& list) const;
    static bool comesBefore(const ordered_child& left, const ordered_child& right);

    static constexpr std::size_t bucket_size = 4; // slots in a line of the cache

    std::size_t bucketOf(std::uint64_t hash) const
    {
        return static_cast<std::size_t>(hash) & (m_slots.size() - 1) & ~(bucket_size - 1);
    }
    static const slot* freeSlot(const slot* bucket);
    std::uint32_t folderOf(std::string_view path);
    std::uint32_t findOrAdd(std::string_view path, std::size_t name_at, std::uint64_t hash, std::uint32_t parent);
    const slot* findSlot(std::string_view path, std::uint64_t hash) const;
    void grow(std::size_t slot_count);
    void indexOdd() const;

    large_vector<path_node> m_nodes; // the root first
    large_vector<slot> m_slots;      // a power of two, in buckets
    std::vector<std::unique_ptr<archive_record>> m_archives;
    std::vector<std::span<const pack_file_node>> m_entries;
    std::list<arena> m_memories{1};
    // Made when a look-up first finds nothing else: the oddly stored files by their normal paths.
    mutable std::mutex m_odd_lock;
    mutable std::unique_ptr<std::unordered_map<std::string, const pack_file_node*>> m_po_odd;
};

} // namespace korvane
