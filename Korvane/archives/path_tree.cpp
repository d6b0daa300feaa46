#include "Korvane/archives/path_tree.h"

#include "EASY_GUI/services/text.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::uint64_t seed = 0x9e3779b97f4a7c15u;
constexpr std::size_t longest_run = 64;

constexpr std::uint64_t ones = 0x0101010101010101u;
constexpr std::uint64_t separators = '\\' * ones;

std::uint64_t wordAt(const char* bytes)
{
    std::uint64_t word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

// The high bit of every byte that is zero (and perhaps of one above such a byte: enough to know whether there is any).
std::uint64_t zeroBytes(std::uint64_t word)
{
    return (word - ones) & ~word & (0x80u * ones);
}

std::uint64_t mix(std::uint64_t a, std::uint64_t b)
{
    const std::uint64_t product = (a ^ std::rotl(b, 32)) * 0xd6e8feb86659fd93u;
    return product ^ (product >> 32);
}

std::uint64_t hashBytes(std::string_view text)
{
    const char* bytes = text.data();
    std::size_t left = text.size();
    std::uint64_t even = seed;
    std::uint64_t odd = ~seed;
    for (; left >= 16; left -= 16, bytes += 16) // two chains, so that neither waits for the other's product
    {
        even = mix(even, wordAt(bytes));
        odd = mix(odd, wordAt(bytes + 8));
    }
    if (left >= 8)
    {
        even = mix(even, wordAt(bytes));
        bytes += 8;
        left -= 8;
    }
    std::uint64_t tail = 0;
    std::memcpy(&tail, bytes, left);
    return mix(mix(even, tail), odd + text.size());
}

// The hash of a path is made of its folder's and its name's, so that the files of one folder share the first.
std::uint64_t hashInFolder(std::uint64_t folder_hash, std::string_view name)
{
    return mix(folder_hash, hashBytes(name));
}

std::uint64_t hashPath(std::string_view path, std::size_t name_at)
{
    return hashInFolder(hashBytes(path.substr(0, name_at)), path.substr(name_at));
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

// The form in which a path is looked up: "A/b//C\" becomes "a\b\c". Paths longer than any stored one are cut, and not
// found.
class look_up_form
{
public:
    explicit look_up_form(std::string_view path) : m_size(std::min(path.size(), sizeof m_text))
    {
        std::memcpy(m_text, path.data(), m_size);
        lowerInPlace(m_text, m_size);
        for (char* slash = m_text; (slash = findSlash(slash)) != nullptr;)
            *slash = '\\';
        if (hasEmptyComponents(view()))
            m_size = dropEmptyComponents(m_text, m_size);
    }
    std::string_view view() const { return {m_text, m_size}; }

private:
    char* findSlash(char* from)
    {
        return static_cast<char*>(std::memchr(from, '/', static_cast<std::size_t>(m_text + m_size - from)));
    }

    char m_text[2048];
    std::size_t m_size;
};

} // namespace

bool hasEmptyComponents(std::string_view path)
{
    if (path.empty() || path.front() == '\\' || path.back() == '\\')
        return true;
    // Eight neighbours at a time: a byte of the sum is zero where a separator follows a separator.
    std::size_t at = 1;
    for (; at + 8 <= path.size(); at += 8)
        if (zeroBytes((wordAt(path.data() + at) ^ separators) | (wordAt(path.data() + at - 1) ^ separators)) != 0)
            return true;
    for (; at < path.size(); ++at)
        if (path[at] == '\\' && path[at - 1] == '\\')
            return true;
    return false;
}

std::size_t dropEmptyComponents(char* path, std::size_t length)
{
    std::size_t kept = 0;
    for (std::size_t i = 0; i < length; ++i)
        if (path[i] != '\\' || (kept > 0 && path[kept - 1] != '\\'))
            path[kept++] = path[i];
    return kept > 0 && path[kept - 1] == '\\' ? kept - 1 : kept;
}

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
    const slot* const found = findSlot(form, hashPath(form, nameStart(form)));
    return found->node != 0 ? &m_nodes[found->node] : nullptr;
}

std::vector<const path_node*> path_tree::children(const path_node& folder) const
{
    std::vector<const path_node*> list;
    for (std::uint32_t child = folder.m_first_child; child != 0; child = m_nodes[child].m_next_sibling)
        list.push_back(&m_nodes[child]);
    std::sort(list.begin(), list.end(),
              [](const path_node* left, const path_node* right)
              {
                  return left->name() < right->name();
              });
    return list;
}

std::vector<const pack_file_node*> path_tree::files() const
{
    std::vector<const pack_file_node*> list;
    list.reserve(m_nodes.size());
    for (const path_node& node : m_nodes)
        if (node.m_file)
            list.push_back(node.m_file);
    std::sort(list.begin(), list.end(),
              [](const pack_file_node* left, const pack_file_node* right)
              {
                  return left->internalPath() < right->internalPath();
              });
    return list;
}

std::size_t path_tree::entryCount() const
{
    std::size_t count = 0;
    for (const std::vector<pack_file_node>& files : m_entries)
        count += files.size();
    return count;
}

archive_record& path_tree::addArchive(archive_record archive)
{
    m_archives.push_back(std::move(archive));
    return m_archives.back();
}

void path_tree::reserve(std::size_t file_count)
{
    const std::size_t nodes = m_nodes.size() + file_count + file_count / 16;
    m_nodes.reserve(nodes);
    if (nodes * 4 > m_slots.size() * 3)
        grow(std::bit_ceil(nodes * 4 / 3 + 1));
}

void path_tree::enter(std::vector<pack_file_node> files)
{
    m_entries.push_back(std::move(files));
    const std::vector<pack_file_node>& entered = m_entries.back();
    std::vector<std::uint64_t> hashes;
    for (std::size_t begin = 0; begin < entered.size();)
    {
        // Neighbours in an index mostly lie in one folder: such a run is hashed first, so that the table's lines are on
        // their way when they are needed.
        const std::string_view first = entered[begin].internalPath();
        const std::size_t name_at = nameStart(first);
        const std::string_view folder_path = first.substr(0, name_at);
        const std::uint64_t folder_hash = hashBytes(folder_path);
        const std::uint32_t folder = folderOf(folder_path);
        hashes.clear();
        std::size_t end = begin;
        for (; end < entered.size() && hashes.size() < longest_run; ++end)
        {
            const std::string_view path = entered[end].internalPath();
            const std::string_view name = path.substr(std::min(name_at, path.size()));
            if (path.substr(0, name_at) != folder_path || name.find('\\') != std::string_view::npos)
                break;
            hashes.push_back(hashInFolder(folder_hash, name));
            __builtin_prefetch(&m_slots[static_cast<std::size_t>(hashes.back()) & (m_slots.size() - 1)]);
        }
        for (std::size_t i = begin; i < end; ++i)
            m_nodes[findOrAdd(entered[i].internalPath(), name_at, hashes[i - begin], folder)].m_file = &entered[i];
        begin = end;
    }
}

// The node of a folder given with its closing separator, made with all its parents where it is missing.
std::uint32_t path_tree::folderOf(std::string_view path)
{
    std::uint32_t node = 0;
    for (std::size_t begin = 0; begin < path.size();)
    {
        const std::size_t end = path.find('\\', begin);
        node = findOrAdd(path.substr(0, end), begin, hashPath(path.substr(0, end), begin), node);
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
    for (std::size_t at = static_cast<std::size_t>(hash) & mask;; at = (at + 1) & mask)
    {
        const slot& candidate = m_slots[at];
        const bool is_alike = candidate.tag == tag && candidate.path_length == path.size();
        if (candidate.node == 0 || (is_alike && std::memcmp(candidate.path, path.data(), path.size()) == 0))
            return &candidate;
    }
}

void path_tree::grow(std::size_t slot_count)
{
    // A slot keeps only part of its hash, so the rest is made again from the path.
    std::vector<slot> old = std::exchange(m_slots, std::vector<slot>(slot_count));
    const std::size_t mask = slot_count - 1;
    for (const slot& moved : old)
    {
        if (moved.node == 0)
            continue;
        const std::string_view path(moved.path, moved.path_length);
        const std::uint64_t hash = hashPath(path, nameStart(path));
        std::size_t at = static_cast<std::size_t>(hash) & mask;
        while (m_slots[at].node != 0)
            at = (at + 1) & mask;
        m_slots[at] = moved;
    }
}

} // namespace korvane
