#include "Korvane/archives/path_tree.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/archives/internal_path.h"
#include "Korvane/archives/path_chunk.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::size_t looked_ahead = 32; // files

std::uint64_t wordAt(const char* bytes)
{
    std::uint64_t word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

// Paths are hashed and compared sixteen bytes at a time, from their beginning, with zeros behind their end. So a lookup
// reads its own path only in the pieces in which it has just written it; anything else would have to wait until the
// processor has put them together, and lookups could not overlap in their waiting for memory.
using chunk = path_chunk;

// The bytes of a path that ends after left bytes; what lies behind them becomes zero.
chunk lastChunkAt(const char* bytes, std::size_t left)
{
    alignas(64) static constexpr unsigned char masks[2 * sizeof(chunk)] = {255, 255, 255, 255, 255, 255, 255, 255,
                                                                           255, 255, 255, 255, 255, 255, 255, 255};
    return chunkAt(bytes) &
           chunkAt(reinterpret_cast<const char*>(masks) + sizeof(chunk) - std::min(left, sizeof(chunk)));
}

class path_hash
{
public:
    void add(const chunk& bytes)
    {
        const auto words = reinterpret_cast<path_chunk_words>(bytes);
        m_even = mix(m_even, words[0]); // two chains, so that neither waits for the other's product
        m_odd = mix(m_odd, words[1]);
    }
    std::uint64_t value(std::size_t path_size) const { return mix(m_even, m_odd + path_size); }

private:
    static std::uint64_t mix(std::uint64_t a, std::uint64_t b)
    {
        const std::uint64_t product = (a ^ std::rotl(b, 32)) * 0xd6e8feb86659fd93u;
        return product ^ (product >> 32);
    }

    std::uint64_t m_even = 0x9e3779b97f4a7c15u;
    std::uint64_t m_odd = 0x61c8864680b583eau;
};

std::uint64_t hashOf(std::string_view path)
{
    path_hash hash;
    for (std::size_t at = 0; at < path.size(); at += sizeof(chunk))
        hash.add(lastChunkAt(path.data() + at, path.size() - at));
    return hash.value(path.size());
}

bool areEqual(const char* left, const char* right, std::size_t size)
{
    chunk difference{};
    for (std::size_t at = 0; at < size; at += sizeof(chunk))
        difference |= lastChunkAt(left + at, size - at) ^ lastChunkAt(right + at, size - at);
    const auto words = reinterpret_cast<path_chunk_words>(difference);
    return (words[0] | words[1]) == 0;
}

std::uint16_t tagOf(std::uint64_t hash)
{
    return static_cast<std::uint16_t>(hash >> 48);
}

std::size_t nameStart(std::string_view path)
{
    const std::size_t separator = path.rfind('\\');
    return separator == std::string_view::npos ? 0 : separator + 1;
}

// The form in which a path is looked up, with its hash: "A/b//C\" becomes "a\b\c". Paths longer than any stored one are
// cut, and not found.
class look_up_form
{
public:
    explicit look_up_form(std::string_view path) : m_size(std::min(path.size(), longest))
    {
        path_hash hash;
        std::size_t at = 0;
        for (; at + sizeof(chunk) <= m_size; at += sizeof(chunk))
            hash.add(fold(chunkAt(path.data() + at), at));
        if (at < m_size)
            hash.add(fold(lastChunk(path.data(), at, m_size), at));
        m_hash = hash.value(m_size);
        if (m_has_pairs || (m_size > 0 && (m_text[0] == '\\' || m_text[m_size - 1] == '\\')))
        {
            m_size = dropEmptyComponents(m_text, m_size);
            m_hash = hashOf(view());
        }
    }
    std::string_view view() const { return {m_text, m_size}; }
    std::uint64_t hash() const { return m_hash; }

private:
    static constexpr std::size_t longest = 2048;

    // The bytes from at on, with zeros behind the end, and without reading beyond it.
    static chunk lastChunk(const char* path, std::size_t at, std::size_t size)
    {
        if (size < 8)
        {
            std::uint64_t word = 0;
            std::memcpy(&word, path, size);
            return reinterpret_cast<chunk>(path_chunk_words{word, 0});
        }
        const std::size_t left = size - at;
        const std::uint64_t last = wordAt(path + size - 8);
        if (left <= 8)
            return reinterpret_cast<chunk>(path_chunk_words{last >> (64 - 8 * left), 0});
        return reinterpret_cast<chunk>(path_chunk_words{wordAt(path + at), last >> (128 - 8 * left)});
    }

    chunk fold(chunk text, std::size_t at)
    {
        text ^= (text == '/') & static_cast<unsigned char>('/' ^ '\\');
        text |= (text - 'A' < 26) & static_cast<unsigned char>(0x20);
        std::memcpy(m_text + at, &text, sizeof text);
        const auto found = reinterpret_cast<path_chunk_words>(text == '\\');
        m_has_pairs |= (found[0] & (found[0] << 8 | m_last_was_separator)) != 0;
        m_has_pairs |= (found[1] & (found[1] << 8 | found[0] >> 56)) != 0;
        m_last_was_separator = found[1] >> 56;
        return text;
    }

    char m_text[longest + sizeof(chunk)];
    std::size_t m_size;
    std::uint64_t m_hash;
    std::uint64_t m_last_was_separator = 0; // 0xff: yes
    bool m_has_pairs = false;
};

} // namespace

std::string_view pack_file_node::fileName() const
{
    return korvane::fileName(internalPath());
}

std::string_view pack_file_node::extension() const
{
    const std::string_view name = fileName();
    const std::size_t dot = name.rfind('.');
    return dot == std::string_view::npos ? std::string_view() : name.substr(dot + 1);
}

path_tree::path_tree()
{
    m_nodes.emplace_back();
    m_nodes.front().m_path = "";
    grow(64);
}

path_tree::node_pointer path_tree::getNodeFromInternalPath(std::string_view path) const
{
    const path_node* const node = find(path);
    return node ? node_pointer(shared_from_this(), node) : nullptr;
}

const path_node* path_tree::find(std::string_view path) const
{
    const look_up_form looked_up(path);
    const std::string_view form = looked_up.view();
    if (form.empty())
        return &m_nodes.front();
    const slot* const found = findSlot(form, looked_up.hash());
    return found->node != 0 ? &m_nodes[found->node] : nullptr;
}

const path_node* path_tree::findStored(std::string_view path) const
{
    // Into a place with readable bytes behind it.
    const std::string copy = std::string(path) + std::string(readable_behind_paths, '\0');
    const std::string_view stored = std::string_view(copy).substr(0, path.size());
    const slot* const found = path.empty() ? nullptr : findSlot(stored, hashOf(stored));
    return found && found->node != 0 ? &m_nodes[found->node] : nullptr;
}

const pack_file_node* path_tree::findFile(std::string_view path) const
{
    const auto fileOf = [](const path_node* node) { return node ? node->file() : nullptr; };
    if (path.find('/') != std::string_view::npos)
        if (const pack_file_node* const stored = fileOf(findStored(toLower(path))))
            return stored;
    if (const pack_file_node* const file = fileOf(find(path)))
        return file;
    const std::string normal = normalInternalPath(path);
    if (const pack_file_node* const file = fileOf(find(normal)))
        return file;
    prepareForMisses();
    const auto found = m_po_odd->find(normal);
    return found == m_po_odd->end() ? nullptr : found->second;
}

void path_tree::prepareForMisses() const
{
    const std::lock_guard lock(m_odd_lock); // once made, it stays as it is
    if (!m_po_odd)
        indexOdd();
}

const pack_file_node* path_tree::copyBelow(const pack_file_node& file) const
{
    const pack_file_node* found = nullptr;
    for (const std::span<const pack_file_node>& files : m_entries)
        for (const pack_file_node& each : files)
        {
            if (&each.archive() == &file.archive())
                return found;
            if (each.internalPath() == file.internalPath())
                found = &each;
        }
    return found;
}

void path_tree::indexOdd() const
{
    auto index = std::make_unique<std::unordered_map<std::string, const pack_file_node*>>();
    for (const std::span<const pack_file_node>& files : m_entries)
        for (const pack_file_node& file : files)
            if (isOddlyStored(file.internalPath()))
                (*index)[normalInternalPath(file.internalPath())] = &file; // the last one wins
    m_po_odd = std::move(index);
}

std::vector<const path_node*> path_tree::children(const path_node& folder) const
{
    std::vector<const path_node*> list;
    for (std::uint32_t child = folder.m_first_child; child != 0; child = m_nodes[child].m_next_sibling)
        list.push_back(&m_nodes[child]);
    std::sort(list.begin(), list.end(),
              [](const path_node* left, const path_node* right) { return left->name() < right->name(); });
    return list;
}

bool path_tree::hasMoreChildren(const path_node& folder, std::size_t count) const
{
    std::uint32_t child = folder.m_first_child;
    for (; child != 0 && count > 0; --count)
        child = m_nodes[child].m_next_sibling;
    return child != 0;
}

std::vector<const path_node*> path_tree::folders(const path_node& folder) const
{
    std::vector<const path_node*> list;
    for (std::uint32_t child = folder.m_first_child; child != 0; child = m_nodes[child].m_next_sibling)
        if (isFolder(m_nodes[child]))
            list.push_back(&m_nodes[child]);
    std::sort(list.begin(), list.end(),
              [](const path_node* left, const path_node* right) { return left->name() < right->name(); });
    return list;
}

std::vector<const pack_file_node*> path_tree::files() const
{
    return filesBelow(m_nodes.front());
}

std::vector<const pack_file_node*> path_tree::filesBelow(const path_node& folder) const
{
    std::vector<const pack_file_node*> list;
    if (&folder == &m_nodes.front())
        list.reserve(m_nodes.size());
    visitFiles(folder, [&list](const path_node& node) { list.push_back(node.m_file); });
    return list;
}

std::vector<std::uint32_t> path_tree::fileNumbers() const
{
    std::vector<std::uint32_t> list;
    list.reserve(m_nodes.size());
    visitFiles(m_nodes.front(),
               [&](const path_node& node) { list.push_back(static_cast<std::uint32_t>(numberOf(node))); });
    return list;
}

const pack_file_node* path_tree::winnerOf(const pack_file_node& file) const
{
    const std::string_view path = file.internalPath();
    return m_nodes[findSlot(path, hashOf(path))->node].m_file;
}

// Folder by folder: whole paths would be compared over and over in their long common beginnings.
template <typename visitor>
void path_tree::visitFiles(const path_node& folder, const visitor& visit) const
{
    std::vector<ordered_child> waiting; // the next one last
    addChildren(folder, waiting);
    while (!waiting.empty())
    {
        const ordered_child next = waiting.back();
        waiting.pop_back();
        if (next.is_folder)
            addChildren(*next.node, waiting);
        else
            visit(*next.node);
    }
}

// What stands in a folder, in reverse order of the paths; a node that is file and folder stands there twice.
void path_tree::addChildren(const path_node& folder, std::vector<ordered_child>& list) const
{
    const auto begin = static_cast<std::ptrdiff_t>(list.size());
    for (std::uint32_t child = folder.m_first_child; child != 0; child = m_nodes[child].m_next_sibling)
    {
        const path_node& node = m_nodes[child];
        if (node.m_file)
            list.push_back({&node, false});
        if (node.m_first_child != 0)
            list.push_back({&node, true});
    }
    std::sort(list.begin() + begin, list.end(),
              [](const ordered_child& left, const ordered_child& right) { return comesBefore(right, left); });
}

// A folder's paths go on with a separator behind its name.
bool path_tree::comesBefore(const ordered_child& left, const ordered_child& right)
{
    const std::string_view a = left.node->name();
    const std::string_view b = right.node->name();
    const std::size_t common = std::min(a.size(), b.size());
    const int order = std::memcmp(a.data(), b.data(), common);
    if (order != 0)
        return order < 0;
    const auto next = [common](std::string_view name, bool is_folder) {
        return name.size() > common ? static_cast<unsigned char>(name[common]) : is_folder ? '\\' : -1;
    };
    return next(a, left.is_folder) < next(b, right.is_folder);
}

std::size_t path_tree::entryCount() const
{
    std::size_t count = 0;
    for (const std::span<const pack_file_node>& files : m_entries)
        count += files.size();
    return count;
}

void path_tree::reserve(std::size_t file_count)
{
    const std::size_t nodes = m_nodes.size() + file_count + file_count / 16;
    m_nodes.reserve(nodes);
    if (nodes * 4 > m_slots.size() * 3)
        grow(std::bit_ceil(nodes * 4 / 3 + 1));
}

std::vector<std::uint64_t> path_tree::hashesOf(std::span<const pack_file_node> files)
{
    std::vector<std::uint64_t> hashes;
    hashes.reserve(files.size());
    for (const pack_file_node& file : files)
        hashes.push_back(hashOf(file.internalPath()));
    return hashes;
}

void path_tree::enter(std::unique_ptr<archive_record> archive, std::span<const pack_file_node> entered,
                      std::span<const std::uint64_t> known)
{
    m_archives.push_back(std::move(archive));
    m_entries.push_back(entered);
    m_po_odd.reset();
    const std::vector<std::uint64_t> made =
        known.size() == entered.size() ? std::vector<std::uint64_t>() : hashesOf(entered);
    const std::span<const std::uint64_t> hashes = made.empty() ? known : std::span(made);
    std::string_view folder_path;
    std::uint32_t folder = 0;
    for (std::size_t i = 0; i < entered.size(); ++i)
    {
        // The table's line of a file that stands further on is on its way when it is needed.
        if (i + looked_ahead < entered.size())
            __builtin_prefetch(&m_slots[bucketOf(hashes[i + looked_ahead])], 1);
        // Neighbours in an index mostly lie in one folder.
        const std::string_view path = entered[i].internalPath();
        if (!path.starts_with(folder_path) || path.find('\\', folder_path.size()) != std::string_view::npos)
        {
            folder_path = path.substr(0, nameStart(path));
            folder = folderOf(folder_path);
        }
        m_nodes[findOrAdd(path, folder_path.size(), hashes[i], folder)].m_file = &entered[i];
    }
}

// The node of a folder given with its closing separator, made with all its parents where it is missing.
std::uint32_t path_tree::folderOf(std::string_view path)
{
    std::uint32_t node = 0;
    for (std::size_t begin = 0; begin < path.size();)
    {
        const std::size_t end = path.find('\\', begin);
        node = findOrAdd(path.substr(0, end), begin, hashOf(path.substr(0, end)), node);
        begin = end + 1;
    }
    return node;
}

std::uint32_t path_tree::findOrAdd(std::string_view path, std::size_t name_at, std::uint64_t hash, std::uint32_t parent)
{
    slot* found = const_cast<slot*>(findSlot(path, hash));
    if (found->node != 0)
        return found->node;
    const auto index = static_cast<std::uint32_t>(m_nodes.size());
    path_node node;
    node.m_path = path.data();
    node.m_path_length = static_cast<std::uint16_t>(path.size());
    node.m_name_at = static_cast<std::uint16_t>(name_at);
    node.m_next_sibling = std::exchange(m_nodes[parent].m_first_child, index);
    m_nodes.push_back(node);
    *found = {path.data(), index, static_cast<std::uint16_t>(path.size()), tagOf(hash)};
    if (m_nodes.size() * 4 > m_slots.size() * 3)
        grow(m_slots.size() * 2);
    return index;
}

const path_tree::slot* path_tree::findSlot(std::string_view path, std::uint64_t hash) const
{
    const std::size_t mask = m_slots.size() - 1;
    const std::uint16_t tag = tagOf(hash);
    for (std::size_t at = bucketOf(hash);; at = (at + bucket_size) & mask)
    {
        // Without a branch for each slot: a wrong guess would throw away the next lookup's work, which otherwise
        // goes on while this one waits for memory.
        const slot* const bucket = &m_slots[at];
        unsigned alike = 0;
        for (unsigned i = 0; i < bucket_size; ++i)
            alike |= static_cast<unsigned>((bucket[i].tag == tag) & (bucket[i].path_length == path.size())) << i;
        for (; alike != 0; alike &= alike - 1)
        {
            const slot& candidate = bucket[std::countr_zero(alike)];
            if (areEqual(candidate.path, path.data(), path.size()))
                return &candidate;
        }
        if (bucket[bucket_size - 1].node == 0) // a bucket fills from its beginning
            return freeSlot(bucket);
    }
}

const path_tree::slot* path_tree::freeSlot(const slot* bucket)
{
    while (bucket->node != 0)
        ++bucket;
    return bucket;
}

void path_tree::grow(std::size_t slot_count)
{
    // A slot keeps only part of its hash, so the rest is made again from the path.
    const large_vector<slot> old = std::exchange(m_slots, large_vector<slot>(slot_count));
    const std::size_t mask = slot_count - 1;
    for (const slot& moved : old)
    {
        if (moved.node == 0)
            continue;
        const std::string_view path(moved.path, moved.path_length);
        std::size_t at = bucketOf(hashOf(path));
        while (m_slots[at + bucket_size - 1].node != 0)
            at = (at + bucket_size) & mask;
        *const_cast<slot*>(freeSlot(&m_slots[at])) = moved;
    }
}

} // namespace korvane
