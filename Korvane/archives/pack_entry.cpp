#include "Korvane/archives/pack_entry.h"

#include "EASY_GUI/services/byte_reader.h"
#include "Korvane/archives/entry_decoder.h"
#include "Korvane/archives/loose_file.h"
#include "Korvane/archives/mod_folder.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace korvane
{

namespace
{

constexpr std::size_t first_piece = 4096; // of the stored bytes, for an entry's start; each further one doubles them

bool checkLength(std::uint64_t size, std::uint64_t limit, std::uint64_t data_size, std::uint64_t ratio, failure& why)
{
    std::string what;
    if (size > limit)
        what =
            std::to_string(size) + " unpacked bytes are more than the " + std::to_string(limit) + " that are allowed";
    else if (size / ratio > data_size)
        what = std::to_string(size) + " unpacked bytes cannot come out of " + std::to_string(data_size);
    else
        return true;
    why = {failure_kind::malformed, std::move(what), {}, 0, "unpacked length"};
    return false;
}

bool withPlace(const pack_file_node& entry, failure& why)
{
    why.path = placeOf(entry);
    return false;
}

bool failReading(const pack_file_node& entry, failure_kind kind, std::string what, std::uint64_t offset, failure& why)
{
    why = {kind, std::move(what), placeOf(entry), offset, "entry data"};
    return false;
}

bool unpackStart(const pack_file_node& entry, std::span<std::byte> target, std::size_t& count, failure& why)
{
    std::vector<std::byte> stored;
    std::unique_ptr<entry_decoder> decoder;
    std::span<std::byte> left;
    for (std::size_t done = 0; done < entry.size();)
    {
        const std::size_t size = std::min<std::size_t>(entry.size() - done, std::max(done, first_piece));
        stored.resize(size);
        if (!entry.archive().file.readAt(entry.offset() + std::uint64_t{done}, stored))
            return failReading(entry, failure_kind::unreadable, "the bytes cannot be read (was the archive changed?)",
                               entry.offset(), why);
        std::span<const std::byte> data(stored);
        if (!decoder)
        {
            if (data.size() < 4)
                break;
            count = std::min<std::size_t>(target.size(), littleEndian<std::uint32_t>(data.data()));
            left = target.first(count);
            data = data.subspan(4);
            decoder = entry_decoder::make(data, count);
        }
        if (!left.empty() && !decoder->decode(data, left))
            return failReading(entry, failure_kind::malformed, "the compressed data is damaged", 4, why);
        if (left.empty())
            return true;
        done += size;
    }
    return failReading(entry, failure_kind::malformed, "the compressed data ends too early", entry.size(), why);
}

bool findModFile(const pack_file_node& entry, std::string& path, failure& why)
{
    path = diskPathOf(entry);
    return !path.empty() || fail(why, failure_kind::not_found, "the file is gone from the mod folder") ||
           withPlace(entry, why);
}

} // namespace

std::string placeOf(const pack_file_node& entry)
{
    return std::string(entry.internalPath()) + " in " + entry.packPath();
}

bool readUnpackedSize(std::span<const std::byte> start, std::uint64_t stored_size, std::uint64_t limit,
                      std::uint32_t& size, failure& why)
{
    byte_reader in(start);
    const std::uint32_t length = in.u32("unpacked length");
    if (!in.finish(why) || !checkLength(length, std::min(limit, max_unpacked_size), stored_size - 4,
                                        entry_decoder::largestRatio(start.subspan(4)), why))
        return false;
    size = length;
    return true;
}

bool unpackEntry(std::span<const std::byte> stored, memory_file& bytes, failure& why, std::uint64_t limit)
{
    std::uint32_t size = 0;
    if (!readUnpackedSize(stored, stored.size(), limit, size, why))
        return false;
    std::span<const std::byte> data = stored.subspan(4);
    memory_file unpacked(size);
    std::span<std::byte> target = unpacked.mutableBytes();
    const std::unique_ptr<entry_decoder> decoder = entry_decoder::make(data, size);
    std::string fault;
    if (!decoder->decode(data, target))
        fault = decoder->damage();
    else
        fault = decoder->faultAtEnd(data, target, size);
    if (!fault.empty())
    {
        why = {failure_kind::malformed, std::move(fault), {}, 4, "compressed data"};
        return false;
    }
    bytes = std::move(unpacked);
    return true;
}

bool readEntry(const pack_file_node& entry, memory_file& bytes, failure& why, std::uint64_t limit)
{
    if (entry.archive().is_folder)
    {
        std::string path;
        return findModFile(entry, path, why) && readLooseFile(path, bytes, why, limit);
    }
    if (entry.size() > limit)
        return fail(why, failure_kind::malformed,
                    std::to_string(entry.size()) + " bytes are more than the " + std::to_string(limit) +
                        " that are allowed") ||
               withPlace(entry, why);
    memory_file stored(entry.size());
    if (!entry.archive().file.readAt(entry.offset(), stored.mutableBytes()))
    {
        why = {failure_kind::unreadable,
               "the bytes cannot be read (was the archive changed?)",
               {},
               entry.offset(),
               "entry data"};
        return withPlace(entry, why);
    }
    if (entry.compression() == 0)
    {
        bytes = std::move(stored);
        return true;
    }
    return unpackEntry(stored.bytes(), bytes, why, limit) || withPlace(entry, why);
}

bool readEntryStart(const pack_file_node& entry, std::span<std::byte> target, std::size_t& count, failure& why)
{
    if (entry.archive().is_folder)
    {
        std::string path;
        return findModFile(entry, path, why) && readLooseStart(path, target, count, why);
    }
    if (entry.compression() != 0)
        return unpackStart(entry, target, count, why);
    count = std::min<std::size_t>(target.size(), entry.size());
    return entry.archive().file.readAt(entry.offset(), target.first(count)) ||
           failReading(entry, failure_kind::unreadable, "the bytes cannot be read (was the archive changed?)",
                       entry.offset(), why);
}

} // namespace korvane
