#include "Korvane/archives/entry_start.h"

#include "EASY_GUI/services/byte_reader.h"
#include "Korvane/archives/pack_entry.h"

#include <lz4frame.h>
#include <lzma.h>
#include <zstd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace korvane
{

namespace
{

constexpr std::size_t first_piece = 4096; // of the stored bytes; each further piece is as large as all before it

// A decoder that takes stored bytes piece by piece until the target is full.
class start_decoder
{
public:
    virtual ~start_decoder() = default;
    // Both move on over what was used. False: the data is damaged.
    virtual bool decode(std::span<const std::byte>& data, std::span<std::byte>& target) = 0;
};

class zstd_start : public start_decoder
{
public:
    zstd_start() : m_context(ZSTD_createDCtx(), &ZSTD_freeDCtx)
    {
        if (!m_context)
            throw std::bad_alloc();
    }
    bool decode(std::span<const std::byte>& data, std::span<std::byte>& target) override
    {
        ZSTD_inBuffer in = {data.data(), data.size(), 0};
        ZSTD_outBuffer out = {target.data(), target.size(), 0};
        const std::size_t result = ZSTD_decompressStream(m_context.get(), &out, &in);
        data = data.subspan(in.pos);
        target = target.subspan(out.pos);
        return !ZSTD_isError(result);
    }

private:
    std::unique_ptr<ZSTD_DCtx, decltype(&ZSTD_freeDCtx)> m_context;
};

class lz4_start : public start_decoder
{
public:
    lz4_start() : m_context(nullptr, &LZ4F_freeDecompressionContext)
    {
        LZ4F_dctx* raw = nullptr;
        if (LZ4F_isError(LZ4F_createDecompressionContext(&raw, LZ4F_VERSION)))
            throw std::bad_alloc();
        m_context.reset(raw);
    }
    bool decode(std::span<const std::byte>& data, std::span<std::byte>& target) override
    {
        std::size_t produced = target.size();
        std::size_t consumed = data.size();
        const std::size_t hint =
            LZ4F_decompress(m_context.get(), target.data(), &produced, data.data(), &consumed, nullptr);
        data = data.subspan(consumed);
        target = target.subspan(produced);
        return !LZ4F_isError(hint);
    }

private:
    std::unique_ptr<LZ4F_dctx, decltype(&LZ4F_freeDecompressionContext)> m_context;
};

class lzma_start : public start_decoder
{
public:
    // The dictionary need not be larger than what is wanted, for nothing refers back beyond the beginning.
    explicit lzma_start(std::size_t wanted) : m_wanted(wanted) {}
    ~lzma_start() override { lzma_end(&m_stream); }
    bool decode(std::span<const std::byte>& data, std::span<std::byte>& target) override
    {
        if (!m_is_open && !open(data))
            return false;
        m_stream.next_in = reinterpret_cast<const std::uint8_t*>(data.data());
        m_stream.avail_in = data.size();
        m_stream.next_out = reinterpret_cast<std::uint8_t*>(target.data());
        m_stream.avail_out = target.size();
        const lzma_ret result = lzma_code(&m_stream, LZMA_RUN);
        data = data.last(m_stream.avail_in);
        target = target.last(m_stream.avail_out);
        return result == LZMA_OK || result == LZMA_BUF_ERROR || result == LZMA_STREAM_END;
    }

private:
    bool open(std::span<const std::byte>& data)
    {
        constexpr std::size_t properties_size = 5;
        lzma_filter filters[2] = {{LZMA_FILTER_LZMA1, nullptr}, {LZMA_VLI_UNKNOWN, nullptr}};
        if (data.size() < properties_size ||
            lzma_properties_decode(&filters[0], nullptr, reinterpret_cast<const std::uint8_t*>(data.data()),
                                   properties_size) != LZMA_OK)
            return false;
        const std::unique_ptr<void, decltype(&std::free)> options(filters[0].options, &std::free);
        static_cast<lzma_options_lzma*>(filters[0].options)->dict_size =
            std::max(static_cast<std::uint32_t>(m_wanted), std::uint32_t{LZMA_DICT_SIZE_MIN});
        if (lzma_raw_decoder(&m_stream, filters) != LZMA_OK)
            throw std::bad_alloc();
        data = data.subspan(properties_size);
        m_is_open = true;
        return true;
    }

    lzma_stream m_stream = LZMA_STREAM_INIT;
    std::size_t m_wanted;
    bool m_is_open = false;
};

std::unique_ptr<start_decoder> makeDecoder(std::span<const std::byte> data, std::size_t wanted)
{
    switch (data.size() >= 4 ? littleEndian<std::uint32_t>(data.data()) : 0)
    {
    case zstd_frame_magic:
        return std::make_unique<zstd_start>();
    case lz4_frame_magic:
        return std::make_unique<lz4_start>();
    default:
        return std::make_unique<lzma_start>(wanted);
    }
}

bool failReading(const pack_file_node& entry, failure_kind kind, std::string what, std::uint64_t offset, failure& why)
{
    why = {kind, std::move(what), std::string(entry.internalPath()) + " in " + entry.packPath(), offset, "entry data"};
    return false;
}

bool unpackStart(const pack_file_node& entry, std::span<std::byte> target, std::size_t& count, failure& why)
{
    std::vector<std::byte> stored;
    std::unique_ptr<start_decoder> decoder;
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
            decoder = makeDecoder(data, count);
        }
        while (!left.empty() && !data.empty())
        {
            const std::size_t before = data.size() + left.size();
            if (!decoder->decode(data, left))
                return failReading(entry, failure_kind::malformed, "the compressed data is damaged", 4, why);
            if (data.size() + left.size() == before)
                break; // at the frame's end
        }
        if (left.empty())
            return true;
        done += size;
    }
    return failReading(entry, failure_kind::malformed, "the compressed data ends too early", entry.size(), why);
}

} // namespace

bool readEntryStart(const pack_file_node& entry, std::span<std::byte> target, std::size_t& count, failure& why)
{
    if (entry.compression() != 0)
        return unpackStart(entry, target, count, why);
    count = std::min<std::size_t>(target.size(), entry.size());
    return entry.archive().file.readAt(entry.offset(), target.first(count)) ||
           failReading(entry, failure_kind::unreadable, "the bytes cannot be read (was the archive changed?)",
                       entry.offset(), why);
}

} // namespace korvane
