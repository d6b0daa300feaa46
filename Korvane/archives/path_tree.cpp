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

constexpr std::uint64_t root_hash = 0x9e3779b97f4a7c15u;
constexpr std::size_t longest_run = 64;

std::uint64_t mix(std::uint64_t a, std::uint64_t b)
{
    const std::uint64_t product = (a ^ std::rotl(b, 32)) * 0xd6e8feb86659fd93u;
    return product ^ (product >> 32);
}

// The hash of a path is made component by component, so that a file's hash starts from its folder's.
std::uint64_t hashComponent(std::uint64_t hash, std::string_view name)
{
    const char* bytes = name.data();
    std::size_t left = name.size();
    for (; left >= 8; left -= 8, bytes += 8)
    {
        std::uint64_t word;
        std::memcpy(&word, bytes, 8);
        hash = mix(hash, word);
    }
    std::uint64_t tail = 0;
    std::memcpy(&tail, bytes, left);
    return mix(mix(hash, tail), name.size());
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
        std::replace(m_text, m_text + m_size, '/', '\\');
        if (hasEmptyComponents(view()))
            m_size = dropEmptyComponents(m_text, m_size);
    }
    std::string_view view() const { return {m_text, m_size}; }

private:
    char m_text[2048];
    std::size_t m_size;
};

} // namespace

bool hasEmptyComponents(std::string_view path)
{
    if (path.empty() || path.front() == '\\' || path.back() == '\\')
        return true;
    for (std::size_t i = 1; i < path.size(); ++i)
        if (path[i] == '\\' && path[i - 1] == '\\')
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
    std::uint64_t hash = root_hash;
    for (std::size_t begin = 0; begin <= form.size();)
    {
        const std::size_t end = std::min(form.find('\\', begin), form.size());
        hash = hashComponent(hash, form.substr(begin, end - begin));
        begin = end + 1;
    }
    const slot* const found = findSlot(form, hash);
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
        std::uint64_t folder_hash = root_hash;
        const std::uint32_t folder = folderOf(folder_path, folder_hash);
        hashes.clear();
        std::size_t end = begin;
        for (; end < entered.size() && hashes.size() < longest_run; ++end)
        {
            const std::string_view path = entered[end].internalPath();
            const std::string_view name = path.substr(std::min(name_at, path.size()));
            if (path.substr(0, name_at) != folder_path || name.find('\\') != std::string_view::npos)
                break;
            hashes.push_back(hashComponent(folder_hash, name));
            __builtin_prefetch(&m_slots[static_cast<std::size_t>(hashes.back()) & (m_slots.size() - 1)]);
        }
        for (std::size_t i = begin; i < end; ++i)
            m_nodes[findOrAdd(entered[i].internalPath(), name_at, hashes[i - begin], folder)].m_file = &entered[i];
        begin = end;
    }
}

// The node of a folder given with its closing separator, made with all its parents where it is missing.
std::uint32_t path_tree::folderOf(std::string_view path, std::uint64_t& hash)
{
    hash = root_hash;
    std::uint32_t node = 0;
    for (std::size_t begin = 0; begin < path.size();)
    {
        const std::size_t end = path.find('\\', begin);
        hash = hashComponent(hash, path.substr(begin, end - begin));
        node = findOrAdd(path.substr(0, end), begin, hash, node);
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
    *found = {static_cast<std::uint32_t>(hash >> 32), index};
    if (m_nodes.size() * 4 > m_slots.size() * 3)
        grow(m_slots.size() * 2);
    return index;
}

const path_tree::slot* path_tree::findSlot(std::string_view path, std::uint64_t hash) const
{
    const std::size_t mask = m_slots.size() - 1;
    const auto tag = static_cast<std::uint32_t>(hash >> 32);
    for (std::size_t at = static_cast<std::size_t>(hash) & mask;; at = (at + 1) & mask)
    {
        const slot& candidate = m_slots[at];
        if (candidate.node == 0 || (candidate.hash == tag && m_nodes[candidate.node].path() == path))
            return &candidate;
    }
}

void path_tree::grow(std::size_t slot_count)
{
    // A slot keeps only half of its hash, so the other half is made again from the path.
    std::vector<slot> old = std::exchange(m_slots, std::vector<slot>(slot_count));
    const std::size_t mask = slot_count - 1;
    for (const slot& moved : old)
    {
        if (moved.node == 0)
            continue;
        std::uint64_t hash = root_hash;
        const std::string_view path = m_nodes[moved.node].path();
        for (std::size_t begin = 0; begin <= path.size();)
        {
            const std::size_t end = std::min(path.find('\\', begin), path.size());
            hash = hashComponent(hash, path.substr(begin, end - begin));
            begin = end + 1;
        }
        std::size_t at = static_cast<std::size_t>(hash) & mask;
        while (m_slots[at].node != 0)
            at = (at + 1) & mask;
        m_slots[at] = moved;
    }
}

} // namespace korvane
