#include "Korvane/archives/entry_stream.h"

#include "EASY_GUI/services/byte_reader.h"
#include "Korvane/archives/pack_entry.h"

#include <algorithm>
#include <string>
#include <utility>

namespace korvane
{

namespace
{

constexpr std::size_t piece_size = std::size_t{1} << 20;

} // namespace

bool entry_stream::failAt(failure_kind kind, std::string what, std::uint64_t offset, const char* field,
                          failure& why) const
{
    why = {kind, std::move(what), placeOf(m_entry), offset, field};
    return false;
}

bool entry_stream::readStored(std::size_t most, failure& why)
{
    m_stored.resize(static_cast<std::size_t>(std::min<std::uint64_t>(most, m_entry.size() - m_read)));
    if (!m_entry.archive().file.readAt(m_entry.offset() + m_read, m_stored))
        return failAt(failure_kind::unreadable, "the bytes cannot be read (was the archive changed?)", m_entry.offset(),
                      "entry data", why);
    m_read += m_stored.size();
    m_data = m_stored;
    return true;
}

bool entry_stream::next(std::span<const std::byte>& piece, failure& why)
{
    if (m_entry.compression() != 0)
        return nextUnpacked(piece, why);
    if (!readStored(piece_size, why))
        return false;
    piece = m_stored;
    return true;
}

bool entry_stream::begin(failure& why)
{
    if (!readStored(piece_size, why))
        return false;
    std::uint32_t size = 0;
    if (!readUnpackedSize(m_data, m_entry.size(), max_unpacked_size, size, why))
    {
        why.path = placeOf(m_entry);
        return false;
    }
    m_size = size;
    m_data = m_data.subspan(4);
    m_decoder = entry_decoder::make(m_data, size);
    return true;
}

// Behind the last byte of what comes out a few more may lie in the archive; how many does not matter when they are
// more than that.
bool entry_stream::finish(std::span<std::byte> target, failure& why)
{
    constexpr std::uint64_t enough = 65536;
    std::vector<std::byte> rest(m_data.begin(), m_data.end());
    const std::uint64_t further = m_size - m_produced - m_unpacked.size();
    m_data = {};
    if (m_read < m_entry.size())
    {
        const auto more = static_cast<std::size_t>(std::min(enough, m_entry.size() - m_read));
        if (!readStored(more, why))
            return false;
        rest.insert(rest.end(), m_stored.begin(), m_stored.end());
    }
    const std::string fault = m_decoder->faultAtEnd(rest, target, m_size, further);
    m_is_finished = true;
    return fault.empty() || failAt(failure_kind::malformed, fault, 4, "compressed data", why);
}

bool entry_stream::nextUnpacked(std::span<const std::byte>& piece, failure& why)
{
    if (!m_decoder && !begin(why))
        return false;
    m_unpacked.resize(static_cast<std::size_t>(std::min<std::uint64_t>(piece_size, m_size - m_produced)));
    std::span<std::byte> target = m_unpacked;
    while (!target.empty())
    {
        if (m_data.empty() && m_read < m_entry.size() && !readStored(piece_size, why))
            return false;
        const bool is_all_read = m_read == m_entry.size();
        const std::size_t left = target.size() + m_data.size();
        if (!(is_all_read ? m_decoder->drain(m_data, target) : m_decoder->decode(m_data, target)))
            return failAt(failure_kind::malformed, m_decoder->damage(), 4, "compressed data", why);
        if (left == target.size() + m_data.size())
            break; // nothing more can be done: finish() says why
    }
    const std::size_t count = m_unpacked.size() - target.size();
    const bool is_over = m_produced + count == m_size || !target.empty();
    if (is_over && !m_is_finished && !finish(target, why))
        return false;
    m_produced += count;
    piece = std::span(m_unpacked).first(count);
    return true;
}

} // namespace korvane
