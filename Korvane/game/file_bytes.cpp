#include "Korvane/game/file_bytes.h"

#include "Korvane/archives/mod_folder.h"

#include <algorithm>
#include <vector>

namespace korvane
{

bool file_bytes::open(const game_file& file, failure& why)
{
    m_file = file;
    const pack_file_node* const entry = file.entry();
    if (entry != nullptr && !entry->archive().is_folder && entry->compression() == 0)
    {
        m_size = entry->size();
        return true;
    }
    if (entry != nullptr && !entry->archive().is_folder)
    {
        if (!file.read(m_unpacked, why))
            return false;
        m_size = m_unpacked.size();
        return true;
    }
    const std::string path = entry != nullptr ? diskPathOf(*entry) : file.diskPath();
    if (path.empty())
        return fail(why, failure_kind::not_found, "the file is gone", file.path());
    if (!m_disk.open(path, why))
        return false;
    m_size = m_disk.size();
    return true;
}

bool file_bytes::readAt(std::uint64_t position, std::span<std::byte> target) const
{
    if (position > m_size || target.size() > m_size - position)
        return false;
    if (m_disk.isOpen())
        return m_disk.readAt(position, target);
    if (!m_unpacked.empty())
    {
        const auto from = m_unpacked.bytes().subspan(static_cast<std::size_t>(position), target.size());
        std::copy(from.begin(), from.end(), target.begin());
        return true;
    }
    return target.empty() || m_file.entry()->archive().file.readAt(m_file.entry()->offset() + position, target);
}

std::optional<std::uint64_t> findBytes(const file_bytes& in, std::span<const std::byte> wanted, std::uint64_t from,
                                       const work_port& work)
{
    constexpr std::uint64_t step = std::uint64_t{1} << 20;
    if (wanted.empty() || from > in.size())
        return std::nullopt;
    std::vector<std::byte> piece;
    while (in.size() - from >= wanted.size() && !work.isStopped())
    {
        piece.resize(static_cast<std::size_t>(std::min(step + wanted.size(), in.size() - from)));
        if (!in.readAt(from, piece))
            return std::nullopt;
        const auto found = std::search(piece.begin(), piece.end(), wanted.begin(), wanted.end());
        if (found != piece.end())
            return from + static_cast<std::uint64_t>(found - piece.begin());
        from += piece.size() - (wanted.size() - 1); // it may begin in here and end behind
    }
    return std::nullopt;
}

} // namespace korvane
