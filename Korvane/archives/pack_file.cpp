#include "Korvane/archives/pack_file.h"

#include "EASY_GUI/services/byte_reader.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/internal_path.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::size_t longest_header = 32;

std::uint32_t headerSize(std::string_view magic)
{
    if (magic == "PFH0")
        return 24;
    if (magic == "PFH2" || magic == "PFH3")
        return 32;
    if (magic == "PFH4" || magic == "PFH5")
        return 28;
    throw std::runtime_error("Unknown .PACK file format");
}

} // namespace

std::shared_ptr<const path_tree> pack_file::sm_poPathTree;

bool pack_file::readHeader(std::span<const std::byte> bytes, pack_header& header, failure& why)
{
    byte_reader in(bytes);
    const auto magic = in.bytes(4, "magic");
    if (!in.finish(why))
        return false;
    header.magic.assign(reinterpret_cast<const char*>(magic.data()), magic.size());
    header.header_size = headerSize(header.magic);
    header.flags = in.u32("flags");
    header.name_count = in.u32("archive name count");
    header.names_size = in.u32("archive name list size");
    header.file_count = in.u32("file count");
    header.index_size = in.u32("file index size");
    in.skip(header.header_size - 24, "header end");
    return in.finish(why);
}

bool pack_file::open(const std::string& path, failure& why)
{
    return openHeader(path, why) && readIndex(m_po_tree->memory(), why);
}

bool pack_file::openHeader(const std::string& path, failure& why)
{
    m_archive = std::make_unique<archive_record>();
    m_archive->path = path;
    m_archive->name = fileName(path);
    if (!m_archive->file.open(path, why))
        return false;
    const positioned_file& file = m_archive->file;
    std::array<std::byte, longest_header> start;
    const std::size_t available = static_cast<std::size_t>(std::min<std::uint64_t>(file.size(), start.size()));
    if (!file.readAt(0, std::span(start).first(available)))
        return fail(why, failure_kind::unreadable, "the header cannot be read", path);
    if (!readHeader(std::span(start).first(available), m_header, why))
    {
        why.path = path;
        return false;
    }
    m_archive->format = m_header.magic;
    return true;
}

bool pack_file::readIndex(arena& memory, failure& why)
{
    m_po_memory = &memory;
    const arena::mark before = memory.position();
    if (readParts(why))
        return true;
    memory.goBackTo(before);
    return false;
}

bool pack_file::failAt(failure& why, failure_kind kind, std::string what, std::size_t position, std::string field) const
{
    why = {kind, std::move(what), m_archive->path, m_header.header_size + position, std::move(field)};
    return false;
}

bool pack_file::readParts(failure& why)
{
    const std::uint64_t left =
        m_archive->file.size() - std::min<std::uint64_t>(m_archive->file.size(), m_header.header_size);
    const std::uint64_t wanted = std::uint64_t{m_header.names_size} + m_header.index_size;
    if (wanted > left || wanted > 0xffffffffu)
        return failAt(why, failure_kind::malformed,
                      "archive name list and file index of " + std::to_string(wanted) + " bytes do not fit the " +
                          std::to_string(left) + " bytes behind the header",
                      0, "file index size");
    const std::size_t smallest_record =
        4 + (m_header.hasCompressionBytes() ? 1u : 0u) + (m_header.hasTimeStamps() ? 4u : 0u) + 1;
    if (m_header.file_count > m_header.index_size / smallest_record)
        return failAt(why, failure_kind::malformed,
                      std::to_string(m_header.file_count) + " files do not fit an index of " +
                          std::to_string(m_header.index_size) + " bytes",
                      0, "file count");

    if (m_header.name_count > max_names)
        return failAt(why, failure_kind::malformed,
                      std::to_string(m_header.name_count) + " archive names are more than the " +
                          std::to_string(max_names) + " that an archive may have",
                      0, "archive name count");
    std::size_t position = 0;
    return readBlock(static_cast<std::size_t>(m_header.names_size + largestIndex()), why) && readNames(position, why) &&
           readRecords(position, why);
}

// What the records can take of the index: they have at most so many bytes each. An archive's header may claim more.
std::uint64_t pack_file::largestIndex() const
{
    return std::min<std::uint64_t>(m_header.index_size, std::uint64_t{m_header.file_count} * (9 + max_path + 1));
}

// The first size bytes behind the header, in one block; a longer one replaces a shorter one.
bool pack_file::readBlock(std::size_t size, failure& why)
{
    const std::uint64_t left = m_archive->file.size() - m_header.header_size;
    if (size > left)
        return failAt(why, failure_kind::truncated, "the file index runs past the end of the archive", 0, "file index");
    m_index = m_po_memory->allocate<char>(size + path_tree::readable_behind_paths).first(size);
    return m_archive->file.readAt(m_header.header_size, std::as_writable_bytes(m_index)) ||
           failAt(why, failure_kind::unreadable, "the index cannot be read", 0, "file index");
}

// The names count byte by byte, whatever their size field says; where the two differ, more may have to be read.
bool pack_file::readNames(std::size_t& position, failure& why)
{
    const std::uint64_t left = m_archive->file.size() - m_header.header_size;
    for (std::uint32_t i = 0; i < m_header.name_count; ++i)
    {
        const void* end = nullptr;
        while (!(end = std::memchr(m_index.data() + position, 0, m_index.size() - position)))
        {
            const std::uint64_t longer = std::min<std::uint64_t>(left, std::uint64_t{m_index.size()} * 2 + 4096);
            if (m_index.size() == left || longer > 0xffffffffu)
                return failAt(why, failure_kind::truncated, "the name has no terminating zero", position,
                              "archive name " + std::to_string(i));
            if (!readBlock(static_cast<std::size_t>(longer), why))
                return false;
        }
        m_archive_names.emplace_back(m_index.data() + position);
        position += m_archive_names.back().size() + 1;
    }
    const std::uint64_t wanted = std::uint64_t{position} + largestIndex();
    if (wanted > 0xffffffffu)
        return failAt(why, failure_kind::malformed, "the file index runs past 4 GiB", position, "file index");
    if (wanted > m_index.size())
        return readBlock(static_cast<std::size_t>(wanted), why);
    m_index = m_index.first(static_cast<std::size_t>(wanted));
    return true;
}

bool pack_file::readRecords(std::size_t position, failure& why)
{
    const std::size_t fixed_size =
        4 + (m_header.hasCompressionBytes() ? 1u : 0u) + (m_header.hasTimeStamps() ? 4u : 0u);
    // Stored offsets do not exist: the files lie one behind the other, in index order, behind the index.
    std::uint64_t offset = std::uint64_t{m_header.header_size} + position + m_header.index_size;
    m_entries = m_po_memory->allocate<pack_file_node>(m_header.file_count);
    for (std::uint32_t i = 0; i < m_header.file_count; ++i)
    {
        const auto place = [i] { return "file index, record " + std::to_string(i); };
        if (fixed_size >= m_index.size() - position)
            return failAt(why, failure_kind::truncated, "the record runs past the index", position, place());
        const char* at = m_index.data() + position;
        const auto size = littleEndian<std::uint32_t>(reinterpret_cast<const std::byte*>(at));
        at += 4;
        const std::uint8_t compression = m_header.hasCompressionBytes() ? static_cast<std::uint8_t>(*at++) : 0;
        const std::uint32_t time_stamp =
            m_header.hasTimeStamps() ? littleEndian<std::uint32_t>(reinterpret_cast<const std::byte*>(at)) : 0;
        position += fixed_size;

        char* const path = m_index.data() + position;
        const std::size_t left = m_index.size() - position;
        const void* const end = std::memchr(path, 0, std::min(left, max_path + 1));
        if (!end)
            return failAt(why, left <= max_path ? failure_kind::truncated : failure_kind::malformed,
                          left <= max_path ? "the path runs past the index"
                                           : "the path is longer than " + std::to_string(max_path) + " bytes",
                          position, place() + ", path");
        std::size_t length = static_cast<std::size_t>(static_cast<const char*>(end) - path);
        position += length + 1;
        lowerInPlace(path, length);
        if (hasEmptyComponents({path, length}))
            length = dropEmptyComponents(path, length);
        const std::uint64_t archive_size = m_archive->file.size();
        const bool is_inside = offset <= 0xffffffffu && offset <= archive_size && size <= archive_size - offset;
        if (is_inside && length > 0)
            std::construct_at(&m_entries[m_entry_count++], *m_archive, std::string_view(path, length), size,
                              static_cast<std::uint32_t>(offset), compression, time_stamp);
        else
            m_left_out.emplace_back(path, length);
        offset += size;
    }
    m_hashes = path_tree::hashesOf(m_entries.first(m_entry_count));
    return true;
}

void pack_file::enter()
{
    m_archive->file_count = static_cast<std::uint32_t>(m_entry_count);
    m_po_tree->enter(std::move(m_archive), m_entries.first(m_entry_count), m_hashes);
}

path_tree::node_pointer getNodeFromInternalPath(std::string_view path, const log_port& log)
{
    if (pack_file::sm_poPathTree)
        return pack_file::sm_poPathTree->getNodeFromInternalPath(path);
    if (log)
        log("path_node::getNodeFromInternalPath():: oTreeNode == nullptr");
    return nullptr;
}

} // namespace korvane
