#include "Korvane/archives/tree_image.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <string>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::uint32_t no_file = 0xffffffffu;

// Little-endian numbers one behind the other.
class number_writer
{
public:
    explicit number_writer(std::byte* target) : m_at(target) {}
    void u32(std::uint32_t value) { put(value); }
    void u16(std::uint16_t value) { put(value); }

private:
    template <typename number>
    void put(number value)
    {
        static_assert(std::endian::native == std::endian::little);
        std::memcpy(m_at, &value, sizeof value);
        m_at += sizeof value;
    }
    std::byte* m_at;
};

std::uint32_t u32At(const std::byte* bytes)
{
    return littleEndian<std::uint32_t>(bytes);
}

std::uint16_t u16At(const std::byte* bytes)
{
    return littleEndian<std::uint16_t>(bytes);
}

bool isWrong(failure& why, const char* what, std::size_t number)
{
    return fail(why, failure_kind::malformed, std::string(what) + " " + std::to_string(number) + " leads nowhere");
}

} // namespace

tree_image::tree_image(const path_tree& tree) : m_tree(tree)
{
    // Nodes take their paths from the entries, in the same order: one walk finds where each path will stand.
    m_path_at.resize(tree.m_nodes.size());
    std::uint64_t text = 0;
    std::size_t node = 1;
    for (const std::span<const pack_file_node>& files : tree.m_entries)
        for (const pack_file_node& file : files)
        {
            for (; node < tree.m_nodes.size() && tree.m_nodes[node].m_path == file.internalPath().data(); ++node)
                m_path_at[node] = static_cast<std::uint32_t>(text);
            text += file.internalPath().size();
        }
    const std::uint64_t entries = tree.entryCount();
    m_is_possible = text < no_file && entries < no_file && node == tree.m_nodes.size() && tree.m_slots.size() < no_file;
    m_counts = {static_cast<std::uint32_t>(entries), static_cast<std::uint32_t>(tree.m_nodes.size()),
                static_cast<std::uint32_t>(tree.m_slots.size()), static_cast<std::uint32_t>(text)};
}

void tree_image::writeTables(std::byte* target) const
{
    number_writer out(target);
    std::uint32_t path_at = 0;
    std::vector<std::pair<const pack_file_node*, std::uint32_t>> first; // of each archive, and its number
    std::uint32_t number = 0;
    for (const std::span<const pack_file_node>& files : m_tree.m_entries)
    {
        first.emplace_back(files.data(), number);
        number += static_cast<std::uint32_t>(files.size());
        for (const pack_file_node& file : files)
        {
            out.u32(path_at);
            out.u16(static_cast<std::uint16_t>(file.internalPath().size()));
            out.u16(file.compression());
            out.u32(file.size());
            out.u32(file.offset());
            out.u32(file.timeStamp());
            path_at += static_cast<std::uint32_t>(file.internalPath().size());
        }
    }
    std::size_t archive = 0; // neighbours mostly come from one
    const auto numberOf = [&](const pack_file_node* file) {
        for (std::size_t i = 0; file && i < first.size(); ++i, archive = (archive + 1) % first.size())
            if (file >= first[archive].first && file < first[archive].first + m_tree.m_entries[archive].size())
                return first[archive].second + static_cast<std::uint32_t>(file - first[archive].first);
        return no_file;
    };
    for (std::size_t i = 0; i < m_tree.m_nodes.size(); ++i)
    {
        const path_node& node = m_tree.m_nodes[i];
        out.u32(m_path_at[i]);
        out.u16(node.m_path_length);
        out.u16(node.m_name_at);
        out.u32(numberOf(node.m_file));
        out.u32(node.m_first_child);
        out.u32(node.m_next_sibling);
    }
    for (const path_tree::slot& each : m_tree.m_slots)
    {
        out.u32(m_path_at[each.node]);
        out.u32(each.node);
        out.u16(each.path_length);
        out.u16(each.tag);
    }
}

void tree_image::writeText(std::byte* target) const
{
    std::byte* at = target;
    for (const std::span<const pack_file_node>& files : m_tree.m_entries)
        for (const pack_file_node& file : files)
        {
            std::memcpy(at, file.internalPath().data(), file.internalPath().size());
            at += file.internalPath().size();
        }
}

bool tree_image_reader::read(std::vector<std::unique_ptr<archive_record>> archives, failure& why)
{
    if (m_counts.nodes == 0 || m_counts.nodes >= m_counts.slots || !std::has_single_bit(m_counts.slots) ||
        m_counts.slots < path_tree::bucket_size || m_text.size() != m_counts.text)
        return fail(why, failure_kind::malformed, "the sizes of the tables contradict each other");
    return readFiles(archives, why) && readNodes(why) && hangsTogether(why) && readSlots(why);
}

template <typename reader>
bool tree_image_reader::readTable(std::size_t count, std::size_t record_size, failure& why, reader read)
{
    for (std::size_t done = 0; done < count;)
    {
        const std::size_t records = std::min(count - done, block_records);
        const std::span<const std::byte> block = m_tables(records * record_size);
        if (block.size() != records * record_size)
            return fail(why, failure_kind::truncated, "the tables cannot be read");
        for (std::size_t i = 0; i < records; ++i)
            if (!read(block.data() + i * record_size, done + i))
                return false;
        done += records;
    }
    return true;
}

bool tree_image_reader::readFiles(std::vector<std::unique_ptr<archive_record>>& archives, failure& why)
{
    m_files = m_tree.memory().allocate<pack_file_node>(m_counts.entries);
    std::vector<std::size_t> ends; // of each archive's files
    for (std::unique_ptr<archive_record>& archive : archives)
    {
        const std::size_t begin = ends.empty() ? 0 : ends.back();
        if (archive->file_count > m_files.size() - begin)
            return fail(why, failure_kind::malformed, "the archives have more files than there are");
        ends.push_back(begin + archive->file_count);
        m_tree.m_entries.push_back(m_files.subspan(begin, archive->file_count));
        m_tree.m_archives.push_back(std::move(archive));
    }
    if ((ends.empty() ? 0 : ends.back()) != m_files.size())
        return fail(why, failure_kind::malformed, "the archives have fewer files than there are");

    std::size_t of = 0;
    return readTable(m_files.size(), tree_image_counts::entry_size, why, [&](const std::byte* in, std::size_t number) {
        while (number == ends[of])
            ++of;
        const archive_record& archive = *m_tree.m_archives[of];
        const std::uint32_t path_at = u32At(in), size = u32At(in + 8), offset = u32At(in + 12);
        const std::uint16_t length = u16At(in + 4);
        if (!isText(path_at, length) || offset > archive.file.size() || size > archive.file.size() - offset)
            return isWrong(why, "file", number);
        std::construct_at(&m_files[number], archive, std::string_view(m_text.data() + path_at, length), size, offset,
                          static_cast<std::uint8_t>(in[6]), u32At(in + 16));
        return true;
    });
}

bool tree_image_reader::readNodes(failure& why)
{
    m_tree.m_nodes.clear();
    m_tree.m_nodes.reserve(m_counts.nodes);
    return readTable(m_counts.nodes, tree_image_counts::node_size, why, [&](const std::byte* in, std::size_t number) {
        path_node node;
        const std::uint32_t path_at = u32At(in), file = u32At(in + 8);
        node.m_path = m_text.data() + path_at;
        node.m_path_length = u16At(in + 4);
        node.m_name_at = u16At(in + 6);
        node.m_file = file == no_file ? nullptr : m_files.data() + file;
        node.m_first_child = u32At(in + 12);
        node.m_next_sibling = u32At(in + 16);
        if (!isText(path_at, node.m_path_length) || node.m_name_at > node.m_path_length ||
            (file != no_file && file >= m_files.size()) || node.m_first_child >= m_counts.nodes ||
            node.m_next_sibling >= m_counts.nodes || (number == 0) != (node.m_path_length == 0))
            return isWrong(why, "node", number);
        m_tree.m_nodes.push_back(node);
        return true;
    });
}

// Every node but the root is the child of exactly one folder, which has a lower number: so it is a tree.
bool tree_image_reader::hangsTogether(failure& why) const
{
    const large_vector<path_node>& nodes = m_tree.m_nodes;
    std::vector<bool> is_child(nodes.size());
    std::size_t children = 0;
    for (std::uint32_t folder = 0; folder < nodes.size(); ++folder)
    {
        // The newest child stands first, so numbers fall along the list.
        std::uint32_t above = m_counts.nodes;
        for (std::uint32_t child = nodes[folder].m_first_child; child != 0; child = nodes[child].m_next_sibling)
        {
            if (child <= folder || child >= above || is_child[child])
                return isWrong(why, "child", child);
            is_child[child] = true;
            above = child;
            ++children;
        }
    }
    return children + 1 == nodes.size() || fail(why, failure_kind::malformed, "some paths are in no folder");
}

bool tree_image_reader::readSlots(failure& why)
{
    m_tree.m_slots.clear();
    m_tree.m_slots.reserve(m_counts.slots);
    std::size_t free_buckets = 0;
    const auto readSlot = [&](const std::byte* in, std::size_t number) {
        const std::uint32_t path_at = u32At(in), node = u32At(in + 4);
        const std::uint16_t length = u16At(in + 8);
        // A search ends at a bucket whose last slot is free.
        free_buckets += node == 0 && number % path_tree::bucket_size == path_tree::bucket_size - 1 ? 1u : 0u;
        if (!isText(path_at, length) || node >= m_counts.nodes || (node == 0) != (length == 0))
            return isWrong(why, "slot", number);
        m_tree.m_slots.push_back({m_text.data() + path_at, node, length, u16At(in + 10)});
        return true;
    };
    return readTable(m_counts.slots, tree_image_counts::slot_size, why, readSlot) &&
           (free_buckets > 0 || fail(why, failure_kind::malformed, "the table of paths is full"));
}

} // namespace korvane
