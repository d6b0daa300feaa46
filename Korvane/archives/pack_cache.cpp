#include "Korvane/archives/pack_cache.h"

#include "EASY_GUI/services/byte_reader.h"
#include "EASY_GUI/services/byte_source.h"
#include "EASY_GUI/services/byte_writer.h"
#include "EASY_GUI/services/config_keys.h"
#include "EASY_GUI/services/file_system.h"
#include "EASY_GUI/services/memory_file.h"
#include "EASY_GUI/services/parallel.h"
#include "EASY_GUI/services/text.h"
#include "Korvane/archives/checksum.h"
#include "Korvane/archives/tree_image.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <optional>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::uint32_t tables_mark = 0x3143504bu; // "KPC1"
constexpr std::size_t trailer_size = 80;
constexpr std::size_t smallest_archive = 4 + 4 + 4 + 8 + 8 + 4 + 4; // bytes in the list
constexpr std::size_t text_block = std::size_t{128} << 10;
constexpr std::size_t written_at_once = std::size_t{4} << 20;
constexpr std::uint64_t worth_a_thread = std::uint64_t{4} << 20; // bytes of text

// Where the parts of a cache lie; stands at its end.
struct trailer
{
    enum part
    {
        list, // the archives
        files,
        nodes,
        slots,
        text, // then follows the trailer
        part_count
    };

    std::uint64_t list_at = 0;
    std::uint64_t list_size = 0;
    tree_image_counts counts;
    std::array<std::uint64_t, part_count> checksums = {};

    std::uint64_t sizeOf(int wanted) const
    {
        const std::array<std::uint64_t, part_count> sizes = {
            list_size, std::uint64_t{counts.entries} * counts.entry_size,
            std::uint64_t{counts.nodes} * counts.node_size, std::uint64_t{counts.slots} * counts.slot_size,
            counts.text};
        return sizes[static_cast<std::size_t>(wanted)];
    }
    std::uint64_t positionOf(int wanted) const
    {
        std::uint64_t position = list_at;
        for (int each = 0; each < wanted; ++each)
            position += sizeOf(each);
        return position;
    }
};

// --- writing --------------------------------------------------------------------------------------------------------

// Every text of the cache: its length and one, its bytes, and a zero.
struct size_counter
{
    std::uint64_t size = 0;
    void u32(std::uint32_t) { size += 4; }
    void text(std::string_view value) { size += 4 + value.size() + 1; }
};

class memory_writer
{
public:
    explicit memory_writer(std::span<std::byte> target) : m_at(target.data()) {}
    void u32(std::uint32_t value) { put(&value, sizeof value); }
    void text(std::string_view value)
    {
        u32(static_cast<std::uint32_t>(value.size() + 1));
        put(value.data(), value.size());
        *m_at++ = std::byte{0};
    }

private:
    void put(const void* bytes, std::size_t size)
    {
        if (size > 0) // an empty text may have no place
            std::memcpy(m_at, bytes, size);
        m_at += size;
    }
    std::byte* m_at;
};

// The part that stands by itself: identification, count, and all files of all archives.
template <typename sink>
void writeEntries(const path_tree& tree, sink& out, const std::stop_token& stop)
{
    out.text(pack_cache::identification);
    out.u32(static_cast<std::uint32_t>(tree.entryCount()));
    for (const std::span<const pack_file_node>& files : tree.entries())
    {
        if (stop.stop_requested())
            return; // half of it, which nobody keeps
        for (const pack_file_node& file : files)
        {
            out.text(file.fileName());
            out.text(file.packPath());
            out.text(file.internalPath());
            out.text(file.extension());
            out.u32(file.size());
            out.u32(file.offset());
            out.u32(file.compression());
            out.text(file.archive().format);
            out.text(file.timeStamp() != 0 ? std::to_string(file.timeStamp()) : std::string());
        }
    }
}

// Folders may be given relative to the one that somebody works in.
std::string absolutePath(const std::string& path)
{
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(toPath(path), error);
    return error ? path : toUtf8(absolute);
}

void writeText(byte_writer& out, std::string_view text)
{
    out.u32(static_cast<std::uint32_t>(text.size() + 1));
    out.text(text);
    out.u8(0);
}

std::vector<std::byte> listOf(const indexed_archives& indexed)
{
    byte_writer out;
    out.u32(static_cast<std::uint32_t>(indexed.archives.size()));
    std::size_t in_tree = 0;
    for (const archive_listing& listing : indexed.archives)
    {
        const archive_record* const archive =
            listing.damage.empty() ? indexed.tree->archives()[in_tree++].get() : nullptr;
        writeText(out, absolutePath(listing.path));
        writeText(out, archive ? archive->format : "");
        writeText(out, listing.damage);
        out.u64(listing.size);
        out.u64(static_cast<std::uint64_t>(listing.modification_time));
        out.u32(archive ? archive->file_count : 0);
        out.u32(static_cast<std::uint32_t>(listing.left_out.size()));
        for (const std::string& path : listing.left_out)
            writeText(out, path);
    }
    return out.take();
}

// In pieces, so that a stop is seen between them.
byte_source inPieces(std::span<const std::byte> bytes, const std::stop_token& stop)
{
    return [bytes, stop](std::span<const std::byte>& piece, failure& why) mutable {
        if (stop.stop_requested())
            return fail(why, failure_kind::refused, "it was stopped");
        piece = bytes.first(std::min(bytes.size(), written_at_once));
        bytes = bytes.subspan(piece.size());
        return true;
    };
}

std::vector<std::byte> trailerBytes(const trailer& end)
{
    byte_writer out;
    out.u64(end.list_at);
    out.u64(end.list_size);
    out.u32(end.counts.entries);
    out.u32(end.counts.nodes);
    out.u32(end.counts.slots);
    out.u32(end.counts.text);
    for (const std::uint64_t sum : end.checksums)
        out.u64(sum);
    out.u32(trailer_size);
    out.u32(tables_mark);
    return out.take();
}

// --- reading --------------------------------------------------------------------------------------------------------

bool readTrailer(const positioned_file& file, trailer& end, failure& why)
{
    std::array<std::byte, trailer_size> bytes;
    if (file.size() < trailer_size || !file.readAt(file.size() - trailer_size, bytes))
        return fail(why, failure_kind::truncated, "it is too short");
    byte_reader in(bytes);
    end.list_at = in.u64("position of the archives");
    end.list_size = in.u64("size of the archives");
    end.counts.entries = in.u32("file count");
    end.counts.nodes = in.u32("node count");
    end.counts.slots = in.u32("slot count");
    end.counts.text = in.u32("text size");
    for (std::uint64_t& sum : end.checksums)
        sum = in.u64("checksum");
    const bool is_marked = in.u32("trailer size") == trailer_size && in.u32("mark") == tables_mark;
    if (!in.finish(why))
        return false;
    const std::uint64_t content = file.size() - trailer_size;
    const bool fits = end.list_at <= content && end.list_size <= content - end.list_at &&
                      end.positionOf(trailer::part_count) == content;
    return (is_marked && fits) || fail(why, failure_kind::malformed, "its end is not that of a cache");
}

std::string readText(byte_reader& in, std::string_view field)
{
    const std::uint32_t length = in.u32(field);
    const std::span<const std::byte> text = in.bytes(length, field);
    if (length == 0)
        return {};
    return std::string(reinterpret_cast<const char*>(text.data()), text.empty() ? 0 : text.size() - 1);
}

// The list of the cache, compared with the archives as they are now. Those of the tree come with their files open.
bool readList(std::span<const std::byte> bytes, const std::vector<std::string>& paths,
              std::vector<archive_listing>& listings, std::vector<std::unique_ptr<archive_record>>& archives,
              failure& why)
{
    byte_reader in(bytes);
    const std::uint32_t count = in.u32("archive count");
    if (count != paths.size() || !in.fits(count, smallest_archive))
        return fail(why, failure_kind::refused, "it is of other archives");
    for (const std::string& path : paths)
    {
        archive_listing listing;
        const std::string recorded = readText(in, "path");
        listing.path = path;
        auto archive = std::make_unique<archive_record>();
        archive->format = readText(in, "format");
        listing.damage = readText(in, "damage");
        listing.size = in.u64("size");
        listing.modification_time = static_cast<std::int64_t>(in.u64("modification time"));
        archive->file_count = in.u32("file count");
        const std::uint32_t left_out = in.u32("count of files left out");
        if (!in.fits(left_out, 5))
            return in.finish(why) && fail(why, failure_kind::malformed, "more files were left out than there is text");
        for (std::uint32_t i = 0; i < left_out; ++i)
            listing.left_out.push_back(readText(in, "file left out"));
        if (!in.finish(why))
            return false;
        if (recorded != absolutePath(path))
            return fail(why, failure_kind::refused, "it is of other archives");
        failure ignored;
        if (!archive->file.open(path, ignored) || archive->file.size() != listing.size ||
            archive->file.modificationTime() != listing.modification_time)
            return fail(why, failure_kind::refused, "an archive has changed since: " + path);
        archive->path = path;
        archive->name = fileName(path);
        if (listing.damage.empty())
            archives.push_back(std::move(archive));
        listings.push_back(std::move(listing));
    }
    return true;
}

// The tables block by block, through one small buffer that stays in the processor's cache.
class table_blocks
{
public:
    table_blocks(const positioned_file& file, const trailer& end)
        : m_file(file)
        , m_end(end)
        , m_position(end.positionOf(trailer::files))
    {
    }

    // Empty when they cannot be read.
    std::span<const std::byte> next(std::size_t size)
    {
        while (m_done == m_end.sizeOf(m_part) && m_part < trailer::slots)
            endPart();
        m_buffer.resize(size);
        if (size > m_end.sizeOf(m_part) - m_done || !m_file.readAt(m_position, m_buffer))
            return {};
        m_sum.add(m_buffer);
        m_done += size;
        m_position += size;
        return m_buffer;
    }

    // After everything was read: whether it is what was written.
    bool areRight()
    {
        endPart();
        return m_are_right;
    }

private:
    void endPart()
    {
        m_are_right = m_are_right && m_sum.value() == m_end.checksums[static_cast<std::size_t>(m_part)];
        m_sum = {};
        m_done = 0;
        ++m_part;
    }

    const positioned_file& m_file;
    const trailer& m_end;
    std::uint64_t m_position;
    std::vector<std::byte> m_buffer;
    checksum m_sum;
    std::uint64_t m_done = 0;
    int m_part = trailer::files;
    bool m_are_right = true;
};

// The text in pieces, by way of a buffer that stays in the processor's cache: systems that look at a target page by
// page before they read into it fetch each fresh page twice otherwise.
bool loadText(const positioned_file& file, const trailer& end, std::span<std::byte> text)
{
    std::vector<std::byte> buffer(std::min(text.size(), text_block));
    std::uint64_t position = end.positionOf(trailer::text);
    checksum sum;
    for (std::span<std::byte> rest = text; !rest.empty();)
    {
        const std::span<std::byte> piece = std::span(buffer).first(std::min(rest.size(), buffer.size()));
        if (!file.readAt(position, piece))
            return false;
        sum.add(piece);
        std::copy(piece.begin(), piece.end(), rest.begin());
        rest = rest.subspan(piece.size());
        position += piece.size();
    }
    return sum.value() == end.checksums[trailer::text];
}

} // namespace

cache_use cacheUseOf(const config_file& config)
{
    for (const cache_use use : {cache_use::always, cache_use::never})
        if (config.contains(config_keys::cache_use, nameOf(use)))
            return use;
    return cache_use::where_it_pays;
}

std::string_view nameOf(cache_use use)
{
    return use == cache_use::always ? "always" : use == cache_use::never ? "never" : "";
}

pack_cache pack_cache::of(const config_file& config, const std::string& config_path)
{
    const std::filesystem::path folder =
        toPath(config_path.empty() ? config_file::defaultPath() : config_path).parent_path();
    const std::vector<std::string> recorded = config.get(config_keys::packs_cache);
    const bool is_usable = !recorded.empty() && recorded.front().ends_with(".cache");
    const std::string name = is_usable ? recorded.front() : std::string(file_name);
    return pack_cache(existingPathAnyCase(toUtf8(folder / toPath(name))));
}

bool pack_cache::mayReplace() const
{
    std::error_code error;
    if (equalsIgnoringCase(fileName(m_path), file_name) || !std::filesystem::exists(toPath(m_path), error))
        return true;
    positioned_file file;
    failure ignored;
    std::array<std::byte, 4 + identification.size()> start;
    if (!file.open(m_path, ignored))
        return false;
    return file.readAt(0, start) && std::memcmp(start.data() + 4, identification.data(), identification.size()) == 0;
}

bool pack_cache::remove(failure& why) const
{
    if (!mayReplace())
        return fail(why, failure_kind::refused, "there is a file of that name which is no cache", m_path);
    std::error_code error;
    std::filesystem::remove(toPath(m_path), error);
    return !error || fail(why, failure_kind::refused, "it cannot be deleted: " + displayText(error.message()), m_path);
}

bool pack_cache::readExtent(cache_extent& extent, failure& why) const
{
    positioned_file file;
    trailer end;
    std::array<std::byte, 4> count;
    if (!file.open(m_path, why) || !readTrailer(file, end, why))
        return false;
    if (end.list_size < count.size() || !file.readAt(end.list_at, count))
        return fail(why, failure_kind::malformed, "it is damaged");
    extent = {littleEndian<std::uint32_t>(count.data()), end.counts.entries};
    return true;
}

bool pack_cache::recordIn(config_file& config)
{
    return config.get(config_keys::packs_cache).empty() &&
           config.add(config_keys::packs_cache, {std::string(file_name)}, false);
}

bool pack_cache::load(const std::vector<std::string>& archive_paths, indexed_archives& indexed, failure& why) const
{
    why = {};
    positioned_file file;
    trailer end;
    if (!file.open(m_path, why) || !readTrailer(file, end, why))
        return false;
    indexed_archives loaded;
    std::vector<std::unique_ptr<archive_record>> archives;
    memory_file list(static_cast<std::size_t>(end.list_size));
    if (!file.readAt(end.list_at, list.mutableBytes()) || checksumOf(list.bytes()) != end.checksums[trailer::list])
        return fail(why, failure_kind::malformed, "it is damaged");
    if (!readList(list.bytes(), archive_paths, loaded.archives, archives, why))
        return false;

    // The text is read on another core while this one puts the tables together: they only point into it.
    loaded.tree = std::make_shared<path_tree>();
    const std::span<char> text =
        loaded.tree->memory().allocate<char>(end.counts.text + path_tree::readable_behind_paths).first(end.counts.text);
    table_blocks tables(file, end);
    bool is_text_right = false;
    {
        const auto load = [&] { is_text_right = loadText(file, end, std::as_writable_bytes(text)); };
        std::optional<side_work> other;
        if (end.counts.text >= worth_a_thread)
            other.emplace(load);
        else
            load();
        tree_image_reader reader(*loaded.tree, end.counts, text,
                                 [&tables](std::size_t size) { return tables.next(size); });
        if (!reader.read(std::move(archives), why))
            return false;
        if (other)
            other->finish();
    }
    if (!is_text_right || !tables.areRight())
        return fail(why, failure_kind::malformed, "it is damaged");
    indexed = std::move(loaded);
    return true;
}

bool pack_cache::write(const indexed_archives& indexed, failure& why, const std::stop_token& stop) const
{
    if (!mayReplace())
        return fail(why, failure_kind::refused, "there is a file of that name which is no cache", m_path);
    for (const archive_listing& archive : indexed.archives)
        if (!archive.is_certain)
            return fail(why, failure_kind::refused, "an archive cannot be read now: " + archive.path, m_path);
    const path_tree& tree = *indexed.tree;
    const tree_image image(tree);
    if (!image.isPossible())
        return fail(why, failure_kind::refused, "the archives have too many files for a cache", m_path);
    size_counter entries;
    writeEntries(tree, entries, stop);
    const std::vector<std::byte> list = listOf(indexed);
    trailer end;
    end.list_at = entries.size;
    end.list_size = list.size();
    end.counts = image.counts();

    const std::uint64_t size = end.positionOf(trailer::part_count) + trailer_size;
    memory_file bytes(static_cast<std::size_t>(size));
    const auto partOf = [&](int part) {
        return bytes.mutableBytes().subspan(static_cast<std::size_t>(end.positionOf(part)),
                                            static_cast<std::size_t>(end.sizeOf(part)));
    };
    memory_writer out(bytes.mutableBytes());
    if (!stop.stop_requested())
        writeEntries(tree, out, stop);
    if (stop.stop_requested())
        return fail(why, failure_kind::refused, "it was stopped");
    std::copy(list.begin(), list.end(), partOf(trailer::list).begin());
    image.writeTables(partOf(trailer::files).data());
    image.writeText(partOf(trailer::text).data());
    for (int part = 0; part < trailer::part_count && !stop.stop_requested(); ++part)
        end.checksums[static_cast<std::size_t>(part)] = checksumOf(partOf(part));
    const std::vector<std::byte> last = trailerBytes(end);
    std::copy(last.begin(), last.end(), bytes.mutableBytes().last(trailer_size).begin());
    return writeWholeFile(m_path, inPieces(bytes.bytes(), stop), why, write_safety::replaceable);
}

} // namespace korvane
