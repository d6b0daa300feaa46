#include "tools/demo_data/pack_writer.h"

#include "EASY_GUI/services/byte_writer.h"

#include <lz4frame.h>
#include <lzma.h>
#include <zstd.h>

#include <algorithm>
#include <cassert>
#include <limits>
#include <new>
#include <utility>

namespace korvane::demo
{

namespace
{

// Low levels: the archives are made anew at every call, and what they save hardly differs.
constexpr int zstd_level = 1;
constexpr std::uint32_t lzma_level = 0;
constexpr std::uint32_t time_stamp_flag = 0x40;
constexpr std::size_t length_size = 4, lzma_properties_size = 5;

void append(std::vector<std::byte>& target, std::span<const std::byte> bytes)
{
    target.insert(target.end(), bytes.begin(), bytes.end());
}

// The compressors fail only where memory ends: the room is what they ask for.
std::size_t checked(bool is_good, std::size_t size)
{
    if (!is_good)
        throw std::bad_alloc();
    return size;
}

std::size_t zstdInto(std::span<std::byte> room, std::span<const std::byte> bytes)
{
    const std::size_t size = ZSTD_compress(room.data(), room.size(), bytes.data(), bytes.size(), zstd_level);
    return checked(!ZSTD_isError(size), size);
}

std::size_t lz4Into(std::span<std::byte> room, std::span<const std::byte> bytes)
{
    const std::size_t size = LZ4F_compressFrame(room.data(), room.size(), bytes.data(), bytes.size(), nullptr);
    return checked(!LZ4F_isError(size), size);
}

std::size_t lzmaInto(std::span<std::byte> room, std::span<const std::byte> bytes)
{
    lzma_options_lzma options;
    if (lzma_lzma_preset(&options, lzma_level))
        throw std::bad_alloc();
    const lzma_filter filters[] = {{LZMA_FILTER_LZMA1, &options}, {LZMA_VLI_UNKNOWN, nullptr}};
    auto* const out = reinterpret_cast<std::uint8_t*>(room.data());
    checked(lzma_properties_encode(&filters[0], out) == LZMA_OK, 0);
    std::size_t size = lzma_properties_size;
    const lzma_ret result = lzma_raw_buffer_encode(
        filters, nullptr, reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size(), out, &size, room.size());
    return checked(result == LZMA_OK, size);
}

std::size_t roomFor(std::size_t size, pack_compression compression)
{
    switch (compression)
    {
    case pack_compression::zstd:
        return ZSTD_compressBound(size);
    case pack_compression::lz4:
        return LZ4F_compressFrameBound(size, nullptr);
    default: // LZMA that finds nothing to do grows by a few bytes in a thousand
        return lzma_properties_size + size + size / 16 + 128;
    }
}

} // namespace

std::vector<std::byte> packed(std::span<const std::byte> bytes, pack_compression compression)
{
    if (compression == pack_compression::none)
        return {bytes.begin(), bytes.end()};
    byte_writer out;
    out.u32(static_cast<std::uint32_t>(bytes.size()));
    out.zeros(roomFor(bytes.size(), compression));
    std::vector<std::byte> result = out.take();
    const std::span<std::byte> room = std::span(result).subspan(length_size);
    const std::size_t size = compression == pack_compression::zstd  ? zstdInto(room, bytes)
                             : compression == pack_compression::lz4 ? lz4Into(room, bytes)
                                                                    : lzmaInto(room, bytes);
    result.resize(length_size + size);
    return result;
}

void pack_writer::add(std::string_view internal_path, std::span<const std::byte> bytes, pack_compression compression)
{
    assert(m_format == pack_format::pfh5 || compression == pack_compression::none);
    const std::size_t before = m_data.size();
    if (compression == pack_compression::none)
        append(m_data, bytes);
    else
        append(m_data, packed(bytes, compression));
    assert(m_data.size() <= std::numeric_limits<std::uint32_t>::max());

    std::string path(internal_path);
    std::replace(path.begin(), path.end(), '/', '\\');
    byte_writer record;
    record.u32(static_cast<std::uint32_t>(m_data.size() - before));
    if (m_format == pack_format::pfh5)
        record.u8(compression == pack_compression::none ? 0 : 1);
    if (m_has_time_stamps)
        record.u32(time_stamp);
    record.text(path);
    record.zeros(1);
    append(m_index, record.view());
    ++m_entry_count;
}

std::vector<std::byte> pack_writer::take()
{
    byte_writer names;
    for (const std::string& name : m_archive_names)
    {
        names.text(name);
        names.zeros(1);
    }
    byte_writer head;
    head.text(m_format == pack_format::pfh5 ? "PFH5" : "PFH4");
    head.u32(m_has_time_stamps ? time_stamp_flag : 0);
    head.u32(static_cast<std::uint32_t>(m_archive_names.size()));
    head.u32(static_cast<std::uint32_t>(names.size()));
    head.u32(m_entry_count);
    head.u32(static_cast<std::uint32_t>(m_index.size()));
    head.zeros(4);
    head.bytes(names.view());
    head.bytes(m_index);
    std::vector<std::byte> archive = std::exchange(m_data, {});
    archive.insert(archive.begin(), head.view().begin(), head.view().end());
    m_index.clear();
    m_entry_count = 0;
    return archive;
}

} // namespace korvane::demo
