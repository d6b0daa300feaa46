#include "Korvane/archives/entry_decoder.h"

#include "EASY_GUI/services/byte_reader.h"

#include <lz4frame.h>
#include <lzma.h>
#include <zstd.h>
#include <zstd_errors.h>

#include <algorithm>
#include <cstdlib>
#include <new>

namespace korvane
{

namespace
{

std::string holdsOnly(const char* what, std::uint64_t left, std::uint64_t size)
{
    return std::string(what) + " holds " + std::to_string(size - left) + " of " + std::to_string(size) + " bytes";
}

class zstd_decoder : public entry_decoder
{
public:
    zstd_decoder() : m_context(ZSTD_createDCtx(), &ZSTD_freeDCtx)
    {
        if (!m_context)
            throw std::bad_alloc();
    }

    std::string endFault(std::uint64_t data_left, std::uint64_t target_left, std::uint64_t target_size) const override
    {
        if (!m_is_at_end || data_left > 0)
            return damaged(
                ZSTD_getErrorString(target_left == 0 ? ZSTD_error_dstSize_tooSmall : ZSTD_error_srcSize_wrong));
        return target_left == 0 ? std::string() : holdsOnly("the Zstandard frame", target_left, target_size);
    }

protected:
    bool step(std::span<const std::byte>& data, std::span<std::byte>& target) override
    {
        if (m_is_at_end && data.empty()) // else it would wait for the next frame
            return false;
        ZSTD_inBuffer in = {data.data(), data.size(), 0};
        ZSTD_outBuffer out = {target.data(), target.size(), 0};
        const std::size_t result = ZSTD_decompressStream(m_context.get(), &out, &in);
        data = data.subspan(in.pos);
        target = target.subspan(out.pos);
        if (ZSTD_isError(result))
            m_damage = damaged(ZSTD_getErrorName(result));
        m_is_at_end = result == 0;
        return m_damage.empty() && in.pos + out.pos > 0;
    }

private:
    static std::string damaged(const char* error) { return std::string("the Zstandard frame is damaged: ") + error; }

    std::unique_ptr<ZSTD_DCtx, decltype(&ZSTD_freeDCtx)> m_context;
    bool m_is_at_end = false;
};

class lz4_decoder : public entry_decoder
{
public:
    lz4_decoder() : m_context(nullptr, &LZ4F_freeDecompressionContext)
    {
        LZ4F_dctx* raw = nullptr;
        if (LZ4F_isError(LZ4F_createDecompressionContext(&raw, LZ4F_VERSION)))
            throw std::bad_alloc();
        m_context.reset(raw);
    }

    std::string endFault(std::uint64_t data_left, std::uint64_t target_left, std::uint64_t) const override
    {
        if (!m_is_at_end)
            return data_left == 0 ? "the LZ4 frame ends too early"
                                  : "the LZ4 frame holds more bytes than the entry says";
        return target_left == 0 ? "" : "the LZ4 frame holds fewer bytes than the entry says";
    }

protected:
    bool step(std::span<const std::byte>& data, std::span<std::byte>& target) override
    {
        if (m_is_at_end) // what lies behind the frame is no part of it
            return false;
        std::size_t produced = target.size();
        std::size_t consumed = data.size();
        const std::size_t hint =
            LZ4F_decompress(m_context.get(), target.data(), &produced, data.data(), &consumed, nullptr);
        if (LZ4F_isError(hint))
            m_damage = std::string("the LZ4 frame is damaged: ") + LZ4F_getErrorName(hint);
        data = data.subspan(consumed);
        target = target.subspan(produced);
        m_is_at_end = hint == 0;
        return m_damage.empty() && consumed + produced > 0;
    }

private:
    std::unique_ptr<LZ4F_dctx, decltype(&LZ4F_freeDecompressionContext)> m_context;
    bool m_is_at_end = false;
};

class lzma_decoder : public entry_decoder
{
public:
    explicit lzma_decoder(std::size_t wanted) : m_wanted(wanted) {}
    ~lzma_decoder() override { lzma_end(&m_stream); }

    std::string endFault(std::uint64_t data_left, std::uint64_t target_left, std::uint64_t target_size) const override
    {
        // No size is stored and there need be no end mark: full is done, but for the few bytes with which a stream
        // ends.
        constexpr std::size_t longest_end = 32;
        if (target_left > 0)
            return holdsOnly("the LZMA data", target_left, target_size);
        return data_left <= longest_end ? "" : "the LZMA data holds more bytes than the entry says";
    }

protected:
    bool step(std::span<const std::byte>& data, std::span<std::byte>& target) override
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
        if (!target.empty() && result != LZMA_OK && result != LZMA_BUF_ERROR && result != LZMA_STREAM_END)
            m_damage = "the LZMA data is damaged";
        return false; // one step does all that can be done
    }

private:
    bool open(std::span<const std::byte>& data)
    {
        constexpr std::size_t properties_size = 5;
        lzma_filter filters[2] = {{LZMA_FILTER_LZMA1, nullptr}, {LZMA_VLI_UNKNOWN, nullptr}};
        if (data.size() < properties_size)
            m_damage = "the LZMA data ends inside its properties";
        else if (lzma_properties_decode(&filters[0], nullptr, reinterpret_cast<const std::uint8_t*>(data.data()),
                                        properties_size) != LZMA_OK)
            m_damage = "the compression is none that is known (Zstandard, LZ4, LZMA)";
        if (!m_damage.empty())
            return false;
        const std::unique_ptr<void, decltype(&std::free)> options(filters[0].options, &std::free);
        auto* const lzma = static_cast<lzma_options_lzma*>(filters[0].options);
        // The dictionary never needs to be larger than what is wanted, for nothing refers back beyond the beginning; a
        // damaged property must not cost memory.
        lzma->dict_size = std::clamp<std::uint32_t>(static_cast<std::uint32_t>(m_wanted), LZMA_DICT_SIZE_MIN,
                                                    std::max(lzma->dict_size, std::uint32_t{LZMA_DICT_SIZE_MIN}));
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

std::uint32_t magicOf(std::span<const std::byte> data)
{
    return data.size() >= 4 ? littleEndian<std::uint32_t>(data.data()) : 0;
}

} // namespace

std::unique_ptr<entry_decoder> entry_decoder::make(std::span<const std::byte> data, std::size_t wanted)
{
    switch (magicOf(data))
    {
    case zstd_frame_magic:
        return std::make_unique<zstd_decoder>();
    case lz4_frame_magic:
        return std::make_unique<lz4_decoder>();
    default:
        return std::make_unique<lzma_decoder>(wanted);
    }
}

// By the formats' own rules. Zstandard: a block takes four bytes or more and holds at most 128 KiB. LZ4: a byte more
// lengthens a match by 255. LZMA: the longest match, 273 bytes, takes 14 bits of the highest probability, 2017/2048,
// together 0.31 bits: 7100.
std::uint64_t entry_decoder::largestRatio(std::span<const std::byte> data)
{
    const std::uint32_t magic = magicOf(data);
    return magic == zstd_frame_magic ? 32768 : magic == lz4_frame_magic ? 255 : 7200;
}

bool entry_decoder::decode(std::span<const std::byte>& data, std::span<std::byte>& target)
{
    while (!data.empty() && !target.empty() && step(data, target))
    {
    }
    return m_damage.empty();
}

bool entry_decoder::drain(std::span<const std::byte>& data, std::span<std::byte>& target)
{
    while (!target.empty() && step(data, target))
    {
    }
    return m_damage.empty();
}

std::string entry_decoder::faultAtEnd(std::span<const std::byte> data, std::span<std::byte> target,
                                      std::uint64_t target_size, std::uint64_t further)
{
    while (step(data, target))
    {
    }
    return m_damage.empty() ? endFault(data.size(), target.size() + further, target_size) : m_damage;
}

} // namespace korvane
