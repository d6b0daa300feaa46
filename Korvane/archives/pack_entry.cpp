#include "Korvane/archives/pack_entry.h"

#include "EASY_GUI/services/byte_reader.h"

#include <lz4frame.h>
#include <lzma.h>
#include <zstd.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::size_t lzma_properties_size = 5;

// What one byte can unpack to at most, by the formats' own rules. Zstandard: a block takes four bytes or more and holds
// at most 128 KiB. LZ4: a byte more lengthens a match by 255. LZMA: the longest match, 273 bytes, takes 14 bits of the
// highest probability, 2017/2048, together 0.31 bits: 7100.
constexpr std::uint64_t zstd_ratio = 32768;
constexpr std::uint64_t lz4_ratio = 255;
constexpr std::uint64_t lzma_ratio = 7200;

bool failUnpacking(failure& why, std::string what)
{
    why = {failure_kind::malformed, std::move(what), {}, 4, "compressed data"};
    return false;
}

bool unpackZstd(std::span<const std::byte> frame, std::span<std::byte> target, failure& why)
{
    const std::size_t size = ZSTD_decompress(target.data(), target.size(), frame.data(), frame.size());
    if (ZSTD_isError(size))
        return failUnpacking(why, std::string("the Zstandard frame is damaged: ") + ZSTD_getErrorName(size));
    return size == target.size() || failUnpacking(why, "the Zstandard frame holds " + std::to_string(size) + " of " +
                                                           std::to_string(target.size()) + " bytes");
}

bool unpackLz4(std::span<const std::byte> frame, std::span<std::byte> target, failure& why)
{
    LZ4F_dctx* raw = nullptr;
    if (LZ4F_isError(LZ4F_createDecompressionContext(&raw, LZ4F_VERSION)))
        throw std::bad_alloc();
    const std::unique_ptr<LZ4F_dctx, decltype(&LZ4F_freeDecompressionContext)> context(raw,
                                                                                       LZ4F_freeDecompressionContext);
    std::size_t hint = 1;
    while (hint != 0)
    {
        std::size_t produced = target.size();
        std::size_t consumed = frame.size();
        hint = LZ4F_decompress(context.get(), target.data(), &produced, frame.data(), &consumed, nullptr);
        if (LZ4F_isError(hint))
            return failUnpacking(why, std::string("the LZ4 frame is damaged: ") + LZ4F_getErrorName(hint));
        frame = frame.subspan(consumed);
        target = target.subspan(produced);
        if (hint != 0 && consumed == 0 && produced == 0)
            return failUnpacking(why, frame.empty() ? "the LZ4 frame ends too early"
                                                    : "the LZ4 frame holds more bytes than the entry says");
    }
    return target.empty() || failUnpacking(why, "the LZ4 frame holds fewer bytes than the entry says");
}

bool unpackLzma(std::span<const std::byte> data, std::span<std::byte> target, failure& why)
{
    if (data.size() < lzma_properties_size)
        return failUnpacking(why, "the LZMA data ends inside its properties");
    lzma_filter filters[2] = {{LZMA_FILTER_LZMA1, nullptr}, {LZMA_VLI_UNKNOWN, nullptr}};
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(data.data());
    if (lzma_properties_decode(&filters[0], nullptr, bytes, lzma_properties_size) != LZMA_OK)
        return failUnpacking(why, "the compression is none that is known (Zstandard, LZ4, LZMA)");
    const std::unique_ptr<void, decltype(&std::free)> options(filters[0].options, &std::free);
    auto* const lzma = static_cast<lzma_options_lzma*>(filters[0].options);
    // The dictionary never needs to be larger than what comes out; a damaged property must not cost memory.
    lzma->dict_size = std::clamp<std::uint32_t>(static_cast<std::uint32_t>(target.size()), LZMA_DICT_SIZE_MIN,
                                                std::max(lzma->dict_size, std::uint32_t{LZMA_DICT_SIZE_MIN}));

    lzma_stream stream = LZMA_STREAM_INIT;
    if (lzma_raw_decoder(&stream, filters) != LZMA_OK)
        throw std::bad_alloc();
    const std::unique_ptr<lzma_stream, decltype(&lzma_end)> owner(&stream, &lzma_end);
    stream.next_in = bytes + lzma_properties_size;
    stream.avail_in = data.size() - lzma_properties_size;
    stream.next_out = reinterpret_cast<std::uint8_t*>(target.data());
    stream.avail_out = target.size();
    const lzma_ret result = lzma_code(&stream, LZMA_RUN);
    // No size is stored and there need be no end mark: full is done, but for the few bytes with which a stream ends.
    constexpr std::size_t longest_end = 32;
    if (stream.avail_out == 0)
        return stream.avail_in <= longest_end ||
               failUnpacking(why, "the LZMA data holds more bytes than the entry says");
    return failUnpacking(why, result == LZMA_DATA_ERROR
                                  ? "the LZMA data is damaged"
                                  : "the LZMA data holds " + std::to_string(target.size() - stream.avail_out) + " of " +
                                        std::to_string(target.size()) + " bytes");
}

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
    why.path = std::string(entry.internalPath()) + " in " + entry.packPath();
    return false;
}

} // namespace

bool unpackEntry(std::span<const std::byte> stored, memory_file& bytes, failure& why, std::uint64_t limit)
{
    byte_reader in(stored);
    const std::uint32_t size = in.u32("unpacked length");
    if (!in.finish(why))
        return false;
    const auto data = stored.subspan(4);
    const std::uint32_t magic = data.size() >= 4 ? littleEndian<std::uint32_t>(data.data()) : 0;
    const std::uint64_t ratio = magic == zstd_frame_magic  ? zstd_ratio
                                : magic == lz4_frame_magic ? lz4_ratio
                                                           : lzma_ratio;
    if (!checkLength(size, std::min(limit, max_unpacked_size), data.size(), ratio, why))
        return false;
    memory_file unpacked(size);
    const std::span<std::byte> target = unpacked.mutableBytes();
    const bool is_good = magic == zstd_frame_magic  ? unpackZstd(data, target, why)
                         : magic == lz4_frame_magic ? unpackLz4(data, target, why)
                                                    : unpackLzma(data, target, why);
    if (is_good)
        bytes = std::move(unpacked);
    return is_good;
}

bool readEntry(const pack_file_node& entry, memory_file& bytes, failure& why, std::uint64_t limit)
{
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

} // namespace korvane
